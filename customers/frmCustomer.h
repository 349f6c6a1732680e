#pragma once

#include "app/ADOUtilities.h"
#include "app/db/ado/recordset.h"
#include "app/failure.h"
#include "customers/accountpanel.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/textbox.h"

#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace merchantry::customers {

// One customer: name and address, the terms of the charge account, the store's own fields. Update saves, Cancel does not; the own fields
// are saved as each cell is left.
class frmCustomer : public ui::Form {
public:
    explicit frmCustomer(ui::Desk& desk);

    // The customer that the screen shows; set before it is shown.
    std::int32_t CustomerID = 0;

    // Reads phone, fax and state, which are not bound.
    void FetchCustomerData();
    // The terms can be changed while Charge Account is ticked.
    void EnableCreditFields();
    // The store's terms, for those that the customer lacks.
    void LoadCreditDefaults();

private:
    void bindFields();
    void checkTerms();
    void wire();
    void arrange();
    void Form_Load() override;
    void Form_Activate() override;
    void Form_Resize() override { panel_.arrange(); }
    void Form_Unload(bool& cancel) override;

    void load();
    db::RecordsetPtr readCustomer() const;
    void followUnbound();
    std::string tierName(const Value& tier);
    void takeTier();
    void showAmounts();
    void showFields();
    bool refuseField(int row, const std::string& text);
    void writeField(int row);
    void showSales();
    void fetchData();
    void chkCharge_Click();
    void applyDefaults();
    void dcxTierID_Click();
    void noteDuplicate();
    void cmdUpdate_Click();
    bool renewed();
    bool write(app::FailurePlace& place);
    std::vector<ui::Control*> unbound();
    std::string besideRow(const ui::Control& control, const char* column, const std::string& held);
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
    ui::ComboBox cboState{*this, "cboState"};
    ui::TextBox txtPhone{*this, "txtPhone"};
    ui::TextBox txtFax{*this, "txtFax"};
    ui::Label lblDuplicate{*this, "lblDuplicate"};
    ui::TextBox Notes{*this, "Notes"};
    ui::CheckBox cbxActive{*this, "cbxActive", "Active"};
    ui::DataCombo dcxTierID{*this, "dcxTierID"};
    ui::CheckBox LayawayCustomer{*this, "chkCheckBox(0)", "Layaway Customer"};
    ui::CheckBox TaxExempt{*this, "chkCheckBox(1)", "Tax Exempt"};
    ui::CheckBox Employee{*this, "chkCheckBox(2)", "Employee"};
    ui::CheckBox chkCharge{*this, "chkCharge", "Charge Account"};
    ui::CheckBox chkFinCharge{*this, "chkFinCharge", "Assess Finance Charge"};
    ui::Label lblCreditLimitT{*this, "lblCreditLimitT", "Credit Limit:"};
    ui::TextBox txtCreditLimit{*this, "txtCreditLimit"};
    ui::Label lblAcctBalanceT{*this, "lblAcctBalanceT", "Account Balance:"};
    ui::TextBox txtAcctBalance{*this, "txtAcctBalance"};
    ui::Label lblAPRT{*this, "lblAPRT", "APR:"};
    ui::TextBox txtAPR{*this, "txtAPR"};
    ui::Label lblMinFinChgT{*this, "lblMinFinChgT", "Min. Finance Charge:"};
    ui::TextBox txtMinFinChg{*this, "txtMinFinChg"};
    ui::Label lblGracePeriodT{*this, "lblGracePeriodT", "Grace Period:"};
    ui::TextBox txtGracePeriod{*this, "txtGracePeriod"};
    ui::Grid vsfCustomFields{*this, "vsfCustomFields"};
    ui::Button cmdShipTo{*this, "cmdShipTo", "&Ship To..."};
    ui::Button cmdSalesHist{*this, "cmdSalesHist", "Sales &History..."};
    ui::Button cmdCancel{*this, "cmdCancel", "&Cancel"};
    ui::Button cmdUpdate{*this, "cmdUpdate", "&Update"};

    ui::Frame fraCustomer{*this, "fraCustomer"};
    AccountPanel panel_{*this, fraCustomer};
    app::DataControl data_;
    db::RecordsetPtr customer_;
    db::RecordsetPtr tiers_;
    db::RecordsetPtr fields_;
    std::set<std::string> dateFields_; // those of fields_ that are dates
    bool loading_ = false;
    // The store's terms, as LoadCreditDefaults read them.
    std::int16_t finChargeDefault_ = 1;
    double aprDefault_ = 20;
    std::int16_t overdueDefault_ = 15;
    double minFinChgDefault_ = 5;
};

} // namespace merchantry::customers
