#pragma once

#include "app/ADOUtilities.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/label.h"
#include "ui/textbox.h"

#include <cstdint>

namespace merchantry::setup {

// One cashier: login, limits and rights. It has no data of its own: it changes the row of the list's recordset. The rights are not shown as
// they are stored: a manager's all stand ticked and locked, anybody else's all clear, to be ticked anew.
class frmCashier_Security : public ui::Form {
public:
    explicit frmCashier_Security(ui::Desk& desk);

    // The row to edit; set before the screen is shown.
    std::int16_t CashierID = 0;

private:
    void bindFields();
    void Form_Load() override;

    void ManagerTimer_Timer();
    void CashierName_LostFocus();
    void cmdUpdate_Click();
    bool hasRow() const;
    bool isTaken(const std::string& name) const;
    bool write(const char* procedure);
    bool mayWrite();

    ui::Label lblHeading{*this, "lblHeading", "Cashier Security Settings"};
    ui::TextBox CashierName{*this, "CashierName"}; // for logging in
    ui::TextBox Password{*this, "Password"};
    ui::Button cmdShowPassword{*this, "cmdShowPassword", "Show"};
    ui::TextBox txtFirstName{*this, "txtFirstName"};
    ui::TextBox txtLastName{*this, "txtLastName"};
    ui::TextBox CashierStoreID{*this, "CashierStoreID"};
    ui::TextBox FloorLimit{*this, "FloorLimit"}; // the drawer limit
    ui::TextBox ReturnLimit{*this, "ReturnLimit"};
    ui::CheckBox ManagerFlag{*this, "ManagerFlag", "&Manager"};
    ui::Frame fraAllow{*this, "fraAllow", "&Allow Cashier to:"};
    ui::CheckBox AllowSerialAdd{*this, "AllowSerialAdd", "&Add Serials"};
    ui::CheckBox AllowUpdateCust{*this, "AllowUpdateCust", "&Update Customer Info"};
    ui::CheckBox AllowTaxStatusChg{*this, "AllowTaxStatusChg", "Change &Tax Status "};
    ui::CheckBox AllowReprint{*this, "AllowReprint", "&Reprint"};
    ui::CheckBox AllowViewCost{*this, "AllowViewCost", "&View Cost"};
    ui::CheckBox AllowExit{*this, "AllowExit", "&Exit"};
    ui::CheckBox AllowHold{*this, "AllowHold", "&Hold"};
    ui::CheckBox AllowDropPayout{*this, "AllowDropPayout", "&Drop Payout"};
    ui::CheckBox AllowNoSale{*this, "AllowNoSale", "N&o Sale"};
    ui::CheckBox AllowPriceChange{*this, "AllowPriceChange", "Change &Price "};
    ui::Label lblRights{*this, "lblRights"}; // what the boxes above mean now
    ui::Button CmdExit{*this, "CmdExit", "E&xit"};
    ui::Button cmdCancel{*this, "cmdCancel", "&Cancel"};
    ui::Button cmdUpdate{*this, "cmdUpdate", "Update"};
    ui::Timer ManagerTimer{*this, "ManagerTimer", 1};

    app::DataControl data_;
};

} // namespace merchantry::setup
