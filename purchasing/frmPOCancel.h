#pragma once

#include "purchasing/openlines.h"
#include "purchasing/supplierframe.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <cstdint>
#include <string>
#include <vector>

namespace merchantry::purchasing {

// Takes open quantity off an order that the supplier will not deliver, all in one transaction; as it opens, everything that is open. Set
// the members, show it modally, read DialogResult.
class frmPOCancel : public ui::Form {
public:
    explicit frmPOCancel(ui::Desk& desk);

    std::int32_t PONumber = 0;
    std::int16_t SupplierID = 0;
    bool DialogResult = false; // a cancellation was posted

private:
    struct CancelLine : OpenLine {
        std::int16_t CancelQty = 0;
        Currency extended() const { return Cost * CancelQty; }
    };

    void Form_Load() override;

    void ShowSupplier();
    void showLines();
    void showTotal();
    void grdPOItems_BeforeEdit(int row, int column, bool& cancel);
    void grdPOItems_AfterEdit(int row);
    // What is wrong with the quantity typed; nothing, with the line changed, when it can be cancelled.
    std::string refusal(int row, CancelLine& line);
    void cmdNoCancel_Click();
    void cmdViewHist_Click();
    void cmdOK_Click();
    void post();

    ui::Label lblHeading{*this, "lblHeading", "Cancel Purchase Order"};
    SupplierFrame supplier_{*this};
    ui::Grid grdPOItems{*this, "grdPOItems"};
    ui::Label lblTotal{*this, "lblTotal"};
    ui::Button cmdNoCancel{*this, "cmdNoCancel", "&Not Cancelled"};
    ui::Button cmdViewHist{*this, "cmdViewHist", "Item &History"};
    ui::Button cmdCancel{*this, "cmdCancel", "C&lose"};
    ui::Button cmdOK{*this, "cmdOK", "&OK"};

    std::vector<CancelLine> lines_;
    std::int32_t CancelNumber_ = -1; // until the database gives one
    std::string saved_;              // the cell before its edit
};

} // namespace merchantry::purchasing
