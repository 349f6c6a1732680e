#include "customers/frmCustomer.h"

#include "app/modMain.h"
#include "app/modPhone.h"
#include "app/states.h"
#include "app/titles.h"
#include "base/characters.h"
#include "base/guard.h"
#include "base/numbers.h"
#include "base/text.h"
#include "customers/frmCustomerShip.h"
#include "customers/meanwhile.h"
#include "ui/desk.h"

#include <algorithm>
#include <cmath>

namespace merchantry::customers {

using namespace app;
using namespace ui;
using db::CursorType;
using db::LockType;
using db::Sql;

namespace {

constexpr const char* kTag = "frmCustomer";
constexpr int kField = 0; // of the store's own fields
constexpr int kFieldValue = 1;

// The amount of a text as currency; an empty text and what is no amount stay.
void showAsCurrency(TextBox& box) {
    if (const auto amount = amountOf(box.text()))
        box.setText(amount->toDisplay());
}

// What a term of the account can be, and what is said of anything else.
struct Term {
    enum class Kind { Money, Percent, Days };
    const char* noNumber;
    const char* outside;
    Kind kind;
};

bool isWithin(double number, Term::Kind kind) {
    constexpr double kMostMoney = 999'999'999.99;
    constexpr double kMostPercent = 100;
    constexpr double kMostDays = 9'999;
    const double most = kind == Term::Kind::Money ? kMostMoney : kind == Term::Kind::Percent ? kMostPercent : kMostDays;
    return number >= 0 && number <= most && (kind != Term::Kind::Days || number == std::floor(number));
}

// Of so many digits that the store's column holds it.
bool isWholeNumber(std::string_view text) {
    const std::string_view digits = trimmed(text);
    return !digits.empty() && std::all_of(digits.begin(), digits.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

// Null for what the term can be.
const char* refusalOf(const std::string& text, const Term& term) {
    const auto number = numberOf(text);
    return !number ? term.noNumber : isWithin(*number, term.kind) ? nullptr : term.outside;
}

// As the field is left. One that is empty as the store has it can be passed: the store's own terms count then.
void checkAsLeft(TextBox& box, const Term& term) {
    const auto before = std::make_shared<std::string>();
    box.gotFocus = [&box, before] {
        *before = box.text();
        box.selectAll();
    };
    box.validate = [&box, term, before](bool& cancel) {
        const char* refusal = box.text().empty() && before->empty() ? nullptr : refusalOf(box.text(), term);
        cancel = refusal != nullptr;
        if (cancel)
            box.form().desk().message(refusal, kProduct);
        else if (term.kind == Term::Kind::Money)
            showAsCurrency(box);
    };
}

} // namespace

frmCustomer::frmCustomer(Desk& desk) : Form(desk, "frmCustomer", "Customer Information") {
    setIcon("item");
    bindFields();
    Notes.multiline = true;
    for (TextBox* box : {&LastUpdated, &LastPurchaseDate, &TotalSales, &txtAcctBalance})
        box->setLocked(true);
    txtGracePeriod.setToolTip("Days after the due day.");
    txtAPR.setToolTip("Percent a year.");
    txtAcctBalance.setToolTip("The sum of what is open; Store Credit Adjustment changes it.");
    for (TextBox* box : {&txtCreditLimit, &txtAcctBalance, &txtAPR, &txtMinFinChg, &txtGracePeriod, &TotalSales})
        box->alignRight = true;
    for (Control* control : controls())
        if (auto* box = dynamic_cast<TextBox*>(control); box != nullptr && box != &Notes)
            box->gotFocus = [box] { box->selectAll(); };
    for (TextBox* box : {&txtPhone, &txtFax}) {
        takePhones(*box);
        box->setToolTip("Ten digits are laid out as (555) 123-4567; any other number stays as you type it.");
    }
    for (TextBox* box : {&txtPhone, &Email})
        box->lostFocus = [this, laidOut = box->lostFocus] {
            if (laidOut)
                laidOut();
            noteDuplicate();
        };
    checkTerms();
    wire();

    asksBeforeLeaving({&vsfCustomFields});
    onKey("F9", [this] { panel_.toggle(); });
    arrange();
    offer("FetchCustomerData", [this](const auto&) {
        FetchCustomerData();
        return std::string();
    });
}

void frmCustomer::bindFields() {
    struct Bound {
        Control* control;
        const char* column;
        int length;
    };
    const Bound bound[] = {{&FirstName, "FirstName", 50},
                           {&LastName, "LastName", 50},
                           {&Company, "Company", 100},
                           {&Address, "Address", 100},
                           {&Address2, "Address2", 100},
                           {&City, "City", 50},
                           {&Zip, "Zip", 20},
                           {&Email, "Email", 100},
                           {&ResaleNo, "ResaleNo", 50},
                           {&StoreID, "StoreID", 9},
                           {&LastUpdated, "LastUpdated", 0},
                           {&Notes, "Notes", 0},
                           {&cbxActive, "Active", 0},
                           {&chkCharge, "ChargeAccount", 0},
                           {&LayawayCustomer, "LayawayCustomer", 0},
                           {&TaxExempt, "TaxExempt", 0},
                           {&Employee, "Employee", 0},
                           {&chkFinCharge, "AssessFinanceCharges", 0},
                           {&txtCreditLimit, "AccountLimit", 0},
                           {&txtAcctBalance, "Balance", 0},
                           {&txtAPR, "APR", 0},
                           {&txtMinFinChg, "MinFinChg", 0},
                           {&txtGracePeriod, "OverdueAfter", 0}};
    for (const Bound& one : bound) {
        one.control->dataField = one.column;
        if (auto* box = dynamic_cast<TextBox*>(one.control))
            box->maxLength = one.length;
    }
}

void frmCustomer::checkTerms() {
    const std::pair<TextBox*, Term> terms[] = {
        {&txtCreditLimit,
         {"You must enter a cedit limit amount", "A credit limit is an amount from $0.00 to $999,999,999.99.", Term::Kind::Money}},
        {&txtAPR, {"You must enter a valid APR", "An APR is a percentage from 0 to 100.", Term::Kind::Percent}},
        {&txtGracePeriod,
         {"You must enter a valid Grace Period", "A grace period is a whole number of days, from 0 to 9,999.", Term::Kind::Days}},
        {&txtMinFinChg,
         {"You must enter a valid minimum finance charge", "A minimum finance charge is an amount from $0.00 to $999,999,999.99.",
          Term::Kind::Money}}};
    for (const auto& [box, term] : terms)
        checkAsLeft(*box, term);
}

void frmCustomer::wire() {
    vsfCustomFields.setColumns({{.heading = "Field", .characters = 12}, {.heading = "Value", .characters = 14}});
    vsfCustomFields.emptyText = "The store has no fields of its own. Store, General Options makes them.";
    vsfCustomFields.beforeEdit = [](int, int column, bool& cancel) { cancel = column == kField; };
    vsfCustomFields.validateEdit = [this](int row, int, const std::string& text, bool& cancel) { cancel = refuseField(row, text); };
    vsfCustomFields.afterEdit = [this](int row, int) { writeField(row); };
    chkCharge.click = [this] { chkCharge_Click(); };
    dcxTierID.click = dcxTierID.change = [this] { dcxTierID_Click(); };
    cmdShipTo.click = [this] { this->desk().showModal(this->desk().form<frmCustomerShip>()); };
    cmdSalesHist.click = [this] { cmdSalesHist_Click(); };
    cmdUpdate.click = [this] { cmdUpdate_Click(); };
    cmdCancel.click = [this] { unload(); };
    cmdCancel.isCancel = cmdCancel.drops = true;
    cmdUpdate.isDefault = true;
    cmdCancel.setToolTip("Leaves without saving. A customer just added stays in the list as \"First Name\".");
}

void frmCustomer::arrange() {
    setLayout(column({
        title(lblHeading),
        row({group(fraCustomer,
                   column({
                       row({
                           fields({field("First &Name:", FirstName), field("&Last Name:", LastName), field("C&ompany:", Company),
                                   field("&Address:", Address), field("Address &2:", Address2), field("Cit&y:", City)})
                               .stretched(),
                           gap(),
                           fields({field("Stat&e:", cboState), field("&Zip:", Zip), field("&Phone:", txtPhone), field("&Fax:", txtFax),
                                   field("E&mail:", Email), field("Last updated:", LastUpdated)})
                               .stretched(),
                           gap(),
                           column({fields({field("Price t&ier:", dcxTierID), field("&Resale no.:", ResaleNo), field("Store:", StoreID),
                                           field("Sales in all:", TotalSales), field("Last purchase:", LastPurchaseDate)}),
                                   at(lblDuplicate).wide(20).high(2)})
                               .stretched(),
                       }),
                       row({at(cbxActive), at(LayawayCustomer), at(TaxExempt), at(Employee), gap(), at(chkCharge)}),
                       row({
                               box("Account",
                                   row({column({fields({field(lblCreditLimitT, txtCreditLimit), field(lblAcctBalanceT, txtAcctBalance)}),
                                                at(chkFinCharge)}),
                                        fields({field(lblAPRT, txtAPR), field(lblMinFinChgT, txtMinFinChg),
                                                field(lblGracePeriodT, txtGracePeriod)})})),
                               column({at(vsfCustomFields).high(2).wide(20).stretched(), fields({field("No&tes:", Notes).high(1)})})
                                   .stretched(),
                           })
                           .stretched(),
                   }))
                 .stretched(2),
             panel_.item()})
            .stretched(),
        buttons({at(cmdShipTo), at(cmdSalesHist), stretch(), note("Update saves and closes; F9 shows the account"), at(cmdCancel),
                 at(cmdUpdate)}),
    }));
}

void frmCustomer::Form_Load() {
    guarded({kTag, "Form_Load"}, [this] {
        loading_ = true;
        const AtEnd loaded([this] { loading_ = false; });
        load();
    });
    EnableCreditFields();
    FetchCustomerData();
    noteDuplicate();
    panel_.refresh(CustomerID);
    nothingUnsaved();
}

void frmCustomer::load() {
    tiers_ = openDirect("Select * from TierDefs", CursorType::Static);
    dcxTierID.fill(*tiers_, "TierName");
    customer_ = readCustomer();
    if (customer_->Eof())
        throw RunTimeError(3021, "The customer is not there any more.");
    dcxTierID.setText(tierName((*customer_)["TierID"].Value()));
    modMain().Conn->Execute(Sql("bsp_CustomerFields ") + CustomerID);
    showFields();
    data_.setRecordset(customer_);
    BindControls(*this, data_);
    followUnbound();
    LastPurchaseDate.setText((*customer_)["LastPurchaseDate"].text());
    showAmounts();
}

db::RecordsetPtr frmCustomer::readCustomer() const {
    return openDirect(Sql("Select * from Customer where ID = ") + CustomerID, CursorType::Keyset, LockType::Optimistic);
}

// What is written beside the row or by its combo, as it is shown.
void frmCustomer::followUnbound() {
    const auto phone = [](const Value& stored) { return std::string(trimmed(stored.toText())); };
    data_.follow(txtPhone, "PhoneNumber", phone);
    data_.follow(txtFax, "FaxNumber", phone);
    data_.follow(cboState, "State", [this](const Value& stored) { return stateEntry(cboState, stored.toText()); });
    data_.follow(dcxTierID, "TierID", [this](const Value& stored) { return tierName(stored); });
}

// Empty for one that is not among the tiers.
std::string frmCustomer::tierName(const Value& tier) {
    tiers_->MoveFirst();
    tiers_->Find("TierID = " + tier.toText());
    return tiers_->onRow() ? (*tiers_)["TierName"].text() : std::string();
}

// An amount that was not changed is shown in whole cents, and stays as it is stored.
void frmCustomer::showAmounts() {
    for (TextBox* box : {&txtCreditLimit, &txtAcctBalance, &txtMinFinChg})
        if (!data_.isChanged(*box)) {
            showAsCurrency(*box);
            data_.settle(*box);
        }
}

// The statement that lists them lacks half of their key, so a cell is written by rows of its own.
void frmCustomer::showFields() {
    const auto listed =
        openDirect(Sql("Select CustFieldName As Field, FieldValue As [Value] from CustomFieldValues where CustID = ") + CustomerID,
                   CursorType::Keyset, LockType::Optimistic);
    dateFields_.clear();
    for (const auto dates = openDirect("SELECT CustFieldName FROM CustomFields WHERE CustFieldType = 'Date'"); !dates->Eof();
         dates->MoveNext())
        dateFields_.insert((*dates)[0].text());
    closeRows(fields_);
    fields_ = openDirect(Sql("Select * from CustomFieldValues where CustID = ") + CustomerID, CursorType::Keyset, LockType::Optimistic);
    vsfCustomFields.setDataRows(0);
    for (; !listed->Eof(); listed->MoveNext())
        vsfCustomFields.addRow({(*listed)["Field"].text(), (*listed)["Value"].text()});
}

// A date must be one, and a text must go into its column; an empty one is no value.
bool frmCustomer::refuseField(int row, const std::string& text) {
    constexpr std::size_t kRoom = 255; // of the store's column
    const std::string name = vsfCustomFields.text(row, kField);
    std::string refusal;
    if (dateFields_.contains(name) && !trimmed(text).empty() && !Date::fromText(trimmed(text)))
        refusal = name + " is a date, as 5/1/1970; \"" + text + "\" is none.";
    else if (characterCount(text) > kRoom)
        refusal = "A field has room for " + std::to_string(kRoom) + " characters; these are " + std::to_string(characterCount(text)) +
                  ". Please shorten it.";
    if (!refusal.empty())
        desk().message(refusal, kProduct);
    return !refusal.empty();
}

// What the store refuses is reported, and the grid shows what it holds.
void frmCustomer::writeField(int row) {
    const bool written = guarded({.tag = kTag, .procedure = "CustomFields_AfterEdit", .plain = "The field was not saved."}, [&] {
        fields_->MoveFirst();
        while (!fields_->Eof() && (*fields_)["CustFieldName"].text() != vsfCustomFields.text(row, kField))
            fields_->MoveNext();
        const std::string text = vsfCustomFields.text(row, kFieldValue);
        (*fields_)["FieldValue"] = text.empty() ? Value() : Value(text);
        fields_->Update();
    });
    if (!written)
        guarded({kTag, "CustomFields_AfterEdit"}, [this] { showFields(); });
}

void frmCustomer::Form_Activate() {
    guarded({kTag, "Form_Activate"}, [this] { showSales(); });
    FirstName.setFocus();
}

// The total stands as the column gives it.
void frmCustomer::showSales() {
    const auto sales = openDirect(Sql("SELECT SUM(TransactionEntry.FullPrice * TransactionEntry.Quantity) AS Total, "
                                      "MAX([Transaction].[Time]) AS LastDate FROM Customer "
                                      "INNER JOIN [Transaction] ON Customer.ID = [Transaction].CustomerID INNER JOIN TransactionEntry ON "
                                      "[Transaction].TransactionNumber = TransactionEntry.TransactionNumber WHERE Customer.ID = ") +
                                  CustomerID);
    TotalSales.setText("$" + (*sales)["Total"].text());
    if (!(*sales)["LastDate"].isNull())
        LastPurchaseDate.setText((*sales)["LastDate"].text());
}

void frmCustomer::Form_Unload(bool& /*cancel*/) {
    data_.setRecordset(nullptr);
    for (db::RecordsetPtr* rows : {&customer_, &tiers_, &fields_})
        closeRows(*rows);
}

void frmCustomer::FetchCustomerData() {
    guarded({kTag, "FetchCustomerData"}, [this] { fetchData(); });
}

void frmCustomer::fetchData() {
    fillStates(cboState);
    SetPhone("", txtPhone);
    SetPhone("", txtFax);
    const auto row = openDirect(Sql("sp_GetCustomerData ") + CustomerID);
    if (row->Eof())
        return;
    SetPhone((*row)["PhoneNumber"].text(), txtPhone);
    SetPhone((*row)["FaxNumber"].text(), txtFax);
    cboState.setText(stateEntry(cboState, (*row)["State"].text()));
    for (Control* control : unbound())
        data_.settle(*control);
}

void frmCustomer::EnableCreditFields() {
    Control* const terms[] = {&chkFinCharge, &lblCreditLimitT, &txtCreditLimit, &txtAcctBalance,  &lblAcctBalanceT, &lblAPRT,
                              &txtAPR,       &lblMinFinChgT,   &txtMinFinChg,   &lblGracePeriodT, &txtGracePeriod};
    for (Control* control : terms)
        control->setEnabled(chkCharge.value());
}

void frmCustomer::chkCharge_Click() {
    if (loading_)
        return;
    EnableCreditFields();
    if (chkCharge.value())
        LoadCreditDefaults();
}

void frmCustomer::LoadCreditDefaults() {
    guarded({kTag, "LoadCreditDefaults"}, [this] {
        const auto options = openDirect(Sql("bsp_GetStoreCreditOptions 1, ") + CustomerID);
        const auto given = [&](const char* column) { return !options->Eof() && !(*options)[column].isNull(); };
        finChargeDefault_ = given("FinChargeDefault") ? (*options)["FinChargeDefault"].Value().toInt16() : std::int16_t{1};
        aprDefault_ = given("FinAPR") ? (*options)["FinAPR"].Value().toNumber() : 20;
        overdueDefault_ = given("OverdueAfter") ? (*options)["OverdueAfter"].Value().toInt16() : std::int16_t{15};
        minFinChgDefault_ = given("MinFinChg") ? (*options)["MinFinChg"].Value().toNumber() : 5;
        applyDefaults();
    });
}

// What the customer has stays.
void frmCustomer::applyDefaults() {
    chkFinCharge.setValue(finChargeDefault_ != 0);
    if (txtAPR.text().empty())
        txtAPR.setText(Value(aprDefault_).toText());
    if (txtGracePeriod.text().empty())
        txtGracePeriod.setText(std::to_string(overdueDefault_));
    if (txtMinFinChg.text().empty())
        txtMinFinChg.setText(Currency::fromDouble(minFinChgDefault_).toDisplay());
}

void frmCustomer::dcxTierID_Click() {
    if (loading_ || customer_ == nullptr || tiers_ == nullptr || guarded({kTag, "dcxTierID_Change"}, [this] { takeTier(); }))
        return;
    loading_ = true;
    const AtEnd shown([this] { loading_ = false; });
    dcxTierID.setText(data_.shownText(dcxTierID)); // the tier that is saved
}

void frmCustomer::takeTier() {
    FillFieldFromCombo(dcxTierID, *customer_, "TierID", *tiers_, "TierName");
}

// Only a note: families share numbers.
void frmCustomer::noteDuplicate() {
    guarded({kTag, "NoteDuplicate"}, [this] {
        const auto others = openBroker("bsp_CustomersAlike", db::CommandType::StoredProcedure, db::CursorType::Static, LockType::ReadOnly,
                                       {intParameter("CustomerID", CustomerID), textParameter("PhoneNumber", 30, GetPhone(txtPhone)),
                                        textParameter("Email", 100, std::string(trimmed(Email.text())))});
        lblDuplicate.setCaption(others->Eof() ? ""
                                              : "Also of " + (*others)["Name"].text() + ": the same " + (*others)["What"].text() + ".");
    });
}

void frmCustomer::cmdUpdate_Click() {
    if (customer_ == nullptr)
        return unload();
    if (phoneRefused(txtPhone, "Invalid phone number. Please reenter.", MessageIcon::Information) ||
        phoneRefused(txtFax, "Invalid fax number. Please reenter.", MessageIcon::Information))
        return;
    if (!isWholeNumber(StoreID.text())) {
        desk().message("The store is a number; \"" + StoreID.text() + "\" is none.", kProduct);
        StoreID.setFocus();
        return;
    }
    FailurePlace place{.tag = kTag, .procedure = "cmdUpdate_Click", .plain = "The customer was not saved."};
    bool written = false;
    if (!guarded(place, [&] { written = renewed() && write(place); }) || !written)
        return;
    nothingUnsaved();
    unload();
}

// Reads what somebody else changed while the screen stood open; false when the user has to look at it first.
bool frmCustomer::renewed() {
    loading_ = true;
    const AtEnd shown([this] { loading_ = false; });
    const bool clear = takeMeanwhile(*this, data_, readCustomer(), "customer");
    customer_ = data_.Recordset();
    showAmounts();
    EnableCreditFields();
    return clear;
}

// The row first, then what is not bound; a failure between the two leaves the row written.
bool frmCustomer::write(FailurePlace& place) {
    data_.collect();
    if (data_.isChanged(dcxTierID))
        takeTier();
    (*customer_)["LastUpdated"] = Value(desk().clock().now());
    customer_->Update();
    const auto beside = unbound();
    for (Control* control : controls())
        if (std::find(beside.begin(), beside.end(), control) == beside.end())
            data_.settle(*control);
    place.plain = "The customer was not saved in full.";
    modMain().Conn->Execute(Sql("sp_SetCustomerData ") + CustomerID + ", '" + besideRow(txtPhone, "PhoneNumber", GetPhone(txtPhone)) +
                            "', '" + besideRow(txtFax, "FaxNumber", GetPhone(txtFax)) + "', '" +
                            besideRow(cboState, "State", cboState.text()) + "'");
    return true;
}

std::vector<Control*> frmCustomer::unbound() {
    return {&txtPhone, &txtFax, &cboState};
}

// Held by the control, or as the store has it where the user changed nothing.
std::string frmCustomer::besideRow(const Control& control, const char* column, const std::string& held) {
    return data_.isChanged(control) ? held : (*customer_)[column].text();
}

void frmCustomer::cmdSalesHist_Click() {
    guarded({kTag, "cmdSalesHist_Click"}, [this] {
        modMain().doors.ReportWindow("CustSalesHist.rpt", {std::to_string(CustomerID), "", ""}, true, true);
    });
}

} // namespace merchantry::customers
