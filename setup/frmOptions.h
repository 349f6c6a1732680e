#pragma once

#include "app/db/ado/recordset.h"
#include "setup/chargepage.h"
#include "setup/customfieldspage.h"
#include "setup/optionfields.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/tabset.h"
#include "ui/textbox.h"

#include <string>

namespace merchantry::setup {

// The settings of the store: one row of StoreOptions. Every field is written as it is left or clicked; what it is written to, under which
// check, stands in the table of optionfields. The pages with procedures of their own are classes.
class frmOptions : public ui::Form {
public:
    explicit frmOptions(ui::Desk& desk);

    // The states and the processors, in their order.
    void Init_ListBoxes();
    void LoadPCChargeMerch() { charge_.fillMerchants(); }
    // Shows the row in the fields, and the custom fields; false when that failed, which was reported.
    bool Populate_FormData();

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;
    void buildLayout();
    ui::Item generalPage();
    ui::Item storePage();
    ui::Item creditPage();
    ui::Item layawayPage();
    ui::Item voucherPage();

    // Every field, by the table.
    void wire(const OptionField& field);
    void wireBox(const OptionField& field, ui::TextBox& box);
    void wireCombo(const OptionField& field, ui::ComboBox& combo);
    void showField(const OptionField& field);
    bool isUntouched(const OptionField& field, const ui::TextBox& box) const;
    void leave(const OptionField& field, ui::TextBox& box);
    bool write(const OptionField& field, const Value& value);
    void readAgain();
    void putDefaults();

    void fillCycles(ui::ComboBox& combo, const db::Sql& rows);
    void mark(ui::Label& label, bool filled);
    void markAll();

    ui::Label lblHeading{*this, "lblHeading", "Options"};
    ui::TabSet tabOptions{
        *this,
        "tabOptions",
        {"General Options", "Store Info", "Custom Customer Fields", "Store Credit", "Layaway", "PC Charge", "Gift Vouchers"}};

    // General Options
    ui::CheckBox cbxCustData{*this, "cbxCustData", "Require customer data at time of sale"};
    ui::CheckBox cbxRegGrid{*this, "cbxRegGrid", "Register Grid Locked"};
    ui::CheckBox cbxItemSerial{*this, "cbxItemSerial", "Require item serial number at time of sale"};
    ui::CheckBox cbxItemSerialRec{*this, "cbxItemSerialRec", "Require item serial number upon receipt"};
    ui::CheckBox cbxBackOrder{*this, "cbxBackOrder", "Enable back orders"};
    ui::CheckBox cbxLogOff{*this, "cbxLogOff", "Log off after each sale"};
    ui::CheckBox cbxRec{*this, "cbxRec", "Print receipt after each sale"};
    ui::Frame fraTax{*this, "fraTax", "Taxation"};
    ui::OptionButton optTax{*this, "optTax", "Tax Exclusive (US / Canada)", true};
    ui::OptionButton Option1{*this, "Option1", "Tax Inclusive (Europe) or VAT"};
    ui::Label lblVAT{*this, "lblVAT", "&VAT number:"};
    ui::TextBox txtVAT{*this, "txtVAT"};
    ui::TextBox txtMgrOverride{*this, "txtMgrOverride"};
    ui::Button cmdShowOverride{*this, "cmdShowOverride", "Show"};
    ui::ListBox lbxQB{*this, "lbxQB"};

    // Store Info
    ui::Label lblName{*this, "lblName", "&Name:"};
    ui::TextBox txtName{*this, "txtName"};
    ui::Label lblAddress1{*this, "lblAddress1", "&Address:"};
    ui::TextBox txtAddress1{*this, "txtAddress1"};
    ui::TextBox txtAddress2{*this, "txtAddress2"};
    ui::TextBox txtAddress3{*this, "txtAddress3"};
    ui::Label lblCity{*this, "lblCity", "&City:"};
    ui::TextBox txtCity{*this, "txtCity"};
    ui::Label lblState{*this, "lblState", "&State:"};
    ui::ListBox lbxState{*this, "lbxState"};
    ui::Label lblZip{*this, "lblZip", "&Zip:"};
    ui::TextBox txtZip{*this, "txtZip"};
    ui::Label lblPhone{*this, "lblPhone", "&Phone:"};
    ui::TextBox txtPhone{*this, "txtPhone"};
    ui::TextBox txtFax{*this, "txtFax"};
    ui::TextBox txtEmail{*this, "txtEmail"};
    ui::Label lblIncomplete{*this, "lblIncomplete", "NOTE: Incomplete items are marked in red"};

    CustomFieldsPage customFields_{*this};

    // Store Credit
    ui::ComboBox cboBillingCycle{*this, "cboBillingCycle"};
    ui::ComboBox cboGracePeriod{*this, "cboGracePeriod"};
    ui::TextBox txtAPR{*this, "txtAPR"};
    ui::TextBox txtMinFinChg{*this, "txtMinFinChg"};
    ui::CheckBox chkFinCharge{*this, "chkFinCharge", "Assess &Finance Charge"};

    // Layaway
    ui::TextBox txtPeriod{*this, "txtPeriod"};         // days
    ui::TextBox txtDeposit{*this, "txtDeposit"};       // percent
    ui::TextBox txtMinDeposit{*this, "txtMinDeposit"}; // an amount
    ui::CheckBox chkPrintTickets{*this, "chkPrintTickets", "Print &Hold Tickets"};
    ui::CheckBox chkCommitItems{*this, "chkCommitItems", "&Commit Layaway Items"};

    ChargePage charge_{*this};

    // Gift Vouchers
    ui::TextBox txtGVExpiration{*this, "txtGVExpiration"};
    ui::Label lblDays{*this, "lblDays", "days"};
    ui::Label lblVoucherNote{*this, "lblVoucherNote",
                             "NOTE: When an expired gift voucher is taken back, a sale is recorded for what remains of it."};

    ui::Button cmdExit{*this, "cmdExit", "E&xit"};

    db::RecordsetPtr options_;
    bool showing_ = false; // the screen fills its fields, not the user
};

} // namespace merchantry::setup
