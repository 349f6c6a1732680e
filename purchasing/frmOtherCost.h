#pragma once

#include "base/currency.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/label.h"
#include "ui/textbox.h"

#include <cstdint>
#include <string>

namespace merchantry::purchasing {

// Freight and the like of one receipt: an amount and what it is for. Set the members, show it modally, read them back.
class frmOtherCost : public ui::Form {
public:
    explicit frmOtherCost(ui::Desk& desk);

    std::int32_t PONumber = 0;
    Currency OtherCost; // whole cents; a negative one is a rebate
    std::string Description;
    bool DialogResult = false; // OK was pressed

private:
    void Form_Load() override;

    void txtDesc_Change();
    bool refused(const char* message);
    void cmdOK_Click();

    ui::Label lblHeading{*this, "lblHeading"};
    ui::Label lblNote{*this, "lblNote", "These other costs will be spread to the items received based on weighted unit cost"};
    ui::TextBox txtAmount{*this, "txtAmount"};
    ui::TextBox txtDesc{*this, "txtDesc"};
    ui::Label lblWarning{*this, "lblWarning"};
    ui::Button cmdCancel{*this, "cmdCancel", "&Cancel"};
    ui::Button cmdOK{*this, "cmdOK", "&OK"};
};

} // namespace merchantry::purchasing
