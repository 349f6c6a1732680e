#pragma once

#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/textbox.h"

namespace merchantry::setup {

// The PC Charge page of frmOptions: the program that charges cards, and how it is reached. What its fields write stands in the table of
// optionfields.
class ChargePage {
public:
    explicit ChargePage(ui::Form& form);

    ui::Item item();
    // The processors, in their order.
    void fillMerchants();
    // The rest can be changed while PC Charge is enabled.
    void enable();

private:
    void cmdBrowse_Click();

    ui::CheckBox cbxPCCHG;
    ui::Label lblPCCHG;
    ui::TextBox txtPCCHG; // a directory
    ui::Button cmdBrowse;
    ui::Label lblPCCHGMerch;
    ui::ListBox PCChgMerch; // the processor
    ui::Label lblPCCHGMerchActNum;
    ui::TextBox PCChgMerchActNum;
    ui::Button cmdShowAccount;
    ui::Label lblPCCHGPinPadCom;
    ui::TextBox PCChgPinPadCom;
};

} // namespace merchantry::setup
