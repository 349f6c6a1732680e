#pragma once

#include "purchasing/cancelline.h"
#include "purchasing/openlinesform.h"

#include <string>
#include <vector>

namespace merchantry::purchasing {

// Takes open quantity off an order that the supplier will not deliver, all in one transaction; as it opens, everything that is open. Set
// the members, show it modally, read DialogResult.
class frmPOCancel : public OpenLinesForm {
public:
    explicit frmPOCancel(ui::Desk& desk);

private:
    void loadLines() override;
    void showTotals() override;
    OpenLine* lineAt(int row) override;
    void clearLine(int row) override;

    void grdPOItems_BeforeEdit(int row, int column, bool& cancel);
    void grdPOItems_AfterEdit(int row);
    // What is wrong with the quantity typed; nothing, with the line changed, when it can be cancelled.
    std::string refusal(int row, CancelLine& line);
    void cmdOK_Click();

    ui::Button cmdNoCancel{*this, "cmdNoCancel", "&Not Cancelled"};

    std::vector<CancelLine> lines_;
};

} // namespace merchantry::purchasing
