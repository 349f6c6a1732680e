#pragma once

#include "app/ADOUtilities.h"
#include "app/db/ado/recordset.h"
#include "app/failure.h"
#include "customers/accountpanel.h"
#include "customers/accountterms.h"
#include "customers/contactfields.h"
#include "customers/ownfields.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/textbox.h"

#include <cstdint>
#include <string>

namespace merchantry::customers {

// One customer: name and address, the terms of the charge account, the store's own fields. Update saves, Cancel does not; the own fields
// are saved as each cell is left. Contact, terms and own fields are parts with procedures of their own.
class frmCustomer : public ui::Form {
public:
    explicit frmCustomer(ui::Desk& desk);

    // The customer that the screen shows; set before it is shown.
    std::int32_t CustomerID = 0;

    // Reads phone, fax and state, which are not bound.
    void FetchCustomerData();
    // The terms can be changed while Charge Account is ticked.
    void EnableCreditFields() { terms_.enable(); }
    // The store's terms, for those that the customer lacks.
    void LoadCreditDefaults();

private:
    void bindFields();
    void wire();
    void arrange();
    void Form_Load() override;
    void Form_Activate() override;
    void Form_Resize() override { panel_.arrange(); }
    void Form_Unload(bool& cancel) override;

    void load();
    db::RecordsetPtr readCustomer() const;
    std::string tierName(const Value& tier);
    void takeTier();
    void showSales();
    void chkCharge_Click();
    void dcxTierID_Click();
    void noteDuplicate();
    void cmdUpdate_Click();
    bool renewed();
    bool write(app::FailurePlace& place);
    void cmdSalesHist_Click();

    ui::Label lblHeading{*this, "lblHeading", "Customer Information"};
    ui::TextBox FirstName{*this, "txtTextBox(0)"};
    ui::TextBox LastName{*this, "txtTextBox(1)"};
    ui::TextBox Company{*this, "txtTextBox(2)"};
    ui::TextBox Address{*this, "txtTextBox(3)"};
    ui::TextBox Address2{*this, "txtTextBox(4)"};
    ui::TextBox City{*this, "txtTextBox(5)"};
    ui::TextBox Zip{*this, "txtTextBox(6)"};
    ui::TextBox Email{*this, "txtTextBox(7)"};
    ui::TextBox ResaleNo{*this, "txtTextBox(8)"};
    ui::TextBox StoreID{*this, "txtTextBox(9)"};
    ui::TextBox LastUpdated{*this, "txtTextBox(10)"};
    ui::TextBox LastPurchaseDate{*this, "txtTextBox(12)"};
    ui::TextBox TotalSales{*this, "txtTextBox(13)"};
    ContactFields contact_{*this};
    ui::Label lblDuplicate{*this, "lblDuplicate"};
    ui::TextBox Notes{*this, "Notes"};
    ui::CheckBox cbxActive{*this, "cbxActive", "Active"};
    ui::DataCombo dcxTierID{*this, "dcxTierID"};
    ui::CheckBox LayawayCustomer{*this, "chkCheckBox(0)", "Layaway Customer"};
    ui::CheckBox TaxExempt{*this, "chkCheckBox(1)", "Tax Exempt"};
    ui::CheckBox Employee{*this, "chkCheckBox(2)", "Employee"};
    AccountTerms terms_{*this};
    OwnFields ownFields_{*this};
    ui::Button cmdShipTo{*this, "cmdShipTo", "&Ship To..."};
    ui::Button cmdSalesHist{*this, "cmdSalesHist", "Sales &History..."};
    ui::Button cmdCancel{*this, "cmdCancel", "&Cancel"};
    ui::Button cmdUpdate{*this, "cmdUpdate", "&Update"};

    ui::Frame fraCustomer{*this, "fraCustomer"};
    AccountPanel panel_{*this, fraCustomer};
    app::DataControl data_;
    db::RecordsetPtr customer_;
    db::RecordsetPtr tiers_;
    bool loading_ = false;
};

} // namespace merchantry::customers
