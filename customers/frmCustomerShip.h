#pragma once

#include "app/ADOUtilities.h"
#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/textbox.h"

#include <utility>
#include <vector>

namespace merchantry::customers {

// Where the customer of frmCustomer wants goods sent. The state is shown and never written, and a customer without such an address gets
// none here: the registers make it.
class frmCustomerShip : public ui::Form {
public:
    explicit frmCustomerShip(ui::Desk& desk);

    // Reads phone, fax and state, which are not bound.
    void FetchShipData();

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;
    void cmdUpdate_Click();
    db::RecordsetPtr read();
    void write();
    std::vector<std::pair<ui::TextBox*, const char*>> phones();

    ui::Label lblHeading{*this, "lblHeading", "Shipping Address"};
    ui::Label lblNone{*this, "lblNone", "This customer has no shipping address. The registers make one with the first order that is sent."};
    ui::TextBox FirstName{*this, "txtTextBox(0)"};
    ui::TextBox LastName{*this, "txtTextBox(1)"};
    ui::TextBox Attn{*this, "txtTextBox(2)"};
    ui::TextBox Company{*this, "txtTextBox(3)"};
    ui::TextBox Address{*this, "txtTextBox(4)"};
    ui::TextBox Address2{*this, "txtTextBox(5)"};
    ui::TextBox City{*this, "txtTextBox(6)"};
    ui::TextBox Zip{*this, "txtTextBox(7)"};
    ui::TextBox Email{*this, "txtTextBox(8)"};
    ui::ComboBox cboState{*this, "cboState"};
    ui::TextBox txtPhone{*this, "txtPhone"};
    ui::TextBox txtFax{*this, "txtFax"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdCancel{*this, "cmdCancel", "&Cancel"};
    ui::Button cmdUpdate{*this, "cmdUpdate", "&Update"};

    app::DataControl data_;
    db::RecordsetPtr address_;
};

} // namespace merchantry::customers
