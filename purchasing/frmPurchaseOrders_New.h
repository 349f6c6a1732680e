#pragma once

#include "ui/button.h"
#include "ui/form.h"
#include "ui/label.h"

namespace merchantry::purchasing {

// How shall the new order come about? Shown modally; afterwards one of the three results is true, and the caller unloads it.
class frmPurchaseOrders_New : public ui::Form {
public:
    explicit frmPurchaseOrders_New(ui::Desk& desk);

    bool Auto() const { return ending_ == &cmdGenerate; }
    bool Manual() const { return ending_ == &cmdManual; }
    bool Cancel() const { return ending_ == &cmdCancel; }

private:
    void end(const ui::Button& button);

    ui::Label lblHeading{*this, "lblHeading", "Create a Purchase Order"};
    ui::Button cmdGenerate{*this, "cmdGenerate", "Auto"};
    ui::Label lblGenerate{*this, "lblGenerate", "Orders for what is running low, one per supplier."};
    ui::Button cmdManual{*this, "cmdManual", "Manual"};
    ui::Label lblManual{*this, "lblManual", "One order with a supplier, item by item."};
    ui::Button cmdSkippedItems{*this, "cmdSkippedItems", "View report of items skipped in PO process"};
    ui::Button cmdCancel{*this, "cmdCancel", "Cancel"};

    const ui::Button* ending_ = &cmdCancel; // also the close box
};

} // namespace merchantry::purchasing
