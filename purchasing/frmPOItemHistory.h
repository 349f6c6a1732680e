#pragma once

#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <cstdint>
#include <string>

namespace merchantry::purchasing {

// What happened to one line of one order: its receipts and cancellations, and what was open after each. Set the three members, then show it
// modally; ShowPOItemHistory does both.
class frmPOItemHistory : public ui::Form {
public:
    explicit frmPOItemHistory(ui::Desk& desk);

    std::int32_t PONumber = 0;
    std::string SKU;
    std::string MatrixSKU;

private:
    void Form_Load() override;

    struct Event;
    void show(const std::vector<Event>& events);

    ui::Label lblHeading{*this, "lblHeading", "Item History"};
    ui::Label lblPONumber{*this, "lblPONumber"};
    ui::Label lblSKU{*this, "lblSKU"};
    ui::Label lblName{*this, "lblName"};
    ui::Label lblCommitedQty{*this, "lblCommitedQty"};
    ui::Label lblOpenQty{*this, "lblOpenQty"};
    ui::Label lblPONothing{*this, "lblPONothing", "Nothing has been received or cancelled for this item yet."};
    ui::Grid grdPO{*this, "grdPO"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};

    std::int16_t committed_ = 0; // ordered quantity of the line
};

// Shows the history of that line, modally.
void ShowPOItemHistory(std::int32_t PONumber, const std::string& SKU, const std::string& MatrixSKU);

} // namespace merchantry::purchasing
