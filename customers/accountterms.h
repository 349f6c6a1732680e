#pragma once

#include "app/ADOUtilities.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/label.h"
#include "ui/textbox.h"

#include <cstdint>

namespace merchantry::customers {

// The terms of a customer's charge account, bound to the customer's row: checked as each is left, and to be changed while Charge Account is
// ticked.
class AccountTerms {
public:
    explicit AccountTerms(ui::Form& form);

    ui::Item item();
    // As Charge Account is ticked.
    void enable();
    // Fills in the store's terms where the customer has none; what the customer has stays. Throws DbError.
    void loadDefaults(std::int32_t customer);
    // An amount that was not changed is shown in whole cents, and stays as it is stored.
    void showAmounts(app::DataControl& data);

    ui::CheckBox chkCharge; // stands among the customer's other ticks

private:
    ui::CheckBox chkFinCharge;
    ui::Label lblCreditLimitT;
    ui::TextBox txtCreditLimit;
    ui::Label lblAcctBalanceT;
    ui::TextBox txtAcctBalance;
    ui::Label lblAPRT;
    ui::TextBox txtAPR;
    ui::Label lblMinFinChgT;
    ui::TextBox txtMinFinChg;
    ui::Label lblGracePeriodT;
    ui::TextBox txtGracePeriod;
};

} // namespace merchantry::customers
