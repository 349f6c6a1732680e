#pragma once

#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/textbox.h"

#include <cstdint>
#include <string>

namespace merchantry::purchasing {

// One supplier: address, contacts, the store's account number there and the sales person. Update saves, Cancel and Exit do not.
class frmSuppliers_Info : public ui::Form {
public:
    explicit frmSuppliers_Info(ui::Desk& desk);

    // The supplier that the screen shows.
    std::int16_t SupplierID = 0;
    // Shows the supplier of that key, modally.
    void FetchSupplierInfo(std::int16_t SupplierID);
    // The states, in their order.
    void Init_ListBoxes();
    // Fills the fields from the supplier's row; false when that failed.
    bool Populate_FormData();

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void show(const char* column, ui::TextBox& box);
    void txtName_LostFocus();
    void cmdUpdate_Click();
    void write();

    ui::Label lblHeading{*this, "lblHeading", "Supplier Info"};
    ui::TextBox txtName{*this, "txtName"};
    ui::TextBox txtAddress1{*this, "txtAddress1"};
    ui::TextBox txtAddress2{*this, "txtAddress2"};
    ui::TextBox txtAddress3{*this, "txtAddress3"};
    ui::TextBox txtCity{*this, "txtCity"};
    ui::ListBox lbxState{*this, "lbxState"};
    ui::TextBox txtZip{*this, "txtZip"};
    ui::TextBox txtPhone{*this, "txtPhone"};
    ui::TextBox txtFax{*this, "txtFax"};
    ui::TextBox txtEmail{*this, "txtEmail"};
    ui::TextBox txtWebsite{*this, "txtWebsite"};
    ui::TextBox txtAccountNumber{*this, "txtAccountNumber"}; // the store's, with this supplier
    ui::TextBox txtSalesPerson{*this, "txtSalesPerson"};
    ui::Button cmdCancel{*this, "cmdCancel", "&Cancel"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdUpdate{*this, "cmdUpdate", "&Update"};

    db::RecordsetPtr supplier_;
};

} // namespace merchantry::purchasing
