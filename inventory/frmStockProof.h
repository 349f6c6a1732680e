#pragma once

#include "app/stockproof.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/label.h"

namespace merchantry::inventory {

// Rebuilds every item's quantity and weighted cost from its ledger and lists what disagrees, item by item. Only reads.
class frmStockProof : public ui::Form {
public:
    explicit frmStockProof(ui::Desk& desk);

private:
    void Form_Unload(bool& cancel) override;

    void cmdProve_Click();
    app::Proof proved();
    void show(const app::Proof& proof);

    ui::Label lblHeading{*this, "lblHeading", "Proof of Stock"};
    ui::Label lblWhat{
        *this, "lblWhat",
        "Rebuilds the quantity and the weighted cost of every item from its movements. The first movement of an item that "
        "disagrees is listed: its ledger is faulty. A stock that differs from its ledger need not be a fault; it can come from "
        "leaving the In Stock field of an item, or from a sale during an adjustment."};
    ui::Label lblState{*this, "lblState"};
    ui::ProgressBar prgProof{*this, "prgProof"};
    ui::Grid grdFound{*this, "grdFound"};
    ui::Button cmdStop{*this, "cmdStop", "&Stop"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdProve{*this, "cmdProve", "&Prove"};

    bool working_ = false;
    bool stop_ = false;
    bool leave_ = false; // closed while at work: goes when the work has ended
};

} // namespace merchantry::inventory
