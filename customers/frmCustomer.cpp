#include "customers/frmCustomer.h"

#include "app/modMain.h"
#include "app/modPhone.h"
#include "app/titles.h"
#include "base/characters.h"
#include "base/guard.h"
#include "base/text.h"
#include "customers/frmCustomerShip.h"
#include "customers/meanwhile.h"
#include "ui/desk.h"

#include <algorithm>

namespace merchantry::customers {

using namespace app;
using namespace ui;
using db::CursorType;
using db::LockType;
using db::Sql;

namespace {

// Of so many digits that the store's column holds it.
bool isWholeNumber(std::string_view text) {
    const std::string_view digits = trimmed(text);
    return !digits.empty() && std::all_of(digits.begin(), digits.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

} // namespace

frmCustomer::frmCustomer(Desk& desk) : Form(desk, "frmCustomer", "Customer Information") {
    setIcon("item");
    bindFields();
    Notes.multiline = true;
    for (TextBox* box : {&LastUpdated, &LastPurchaseDate, &TotalSales})
        box->setLocked(true);
    TotalSales.alignRight = true;
    for (Control* control : controls())
        if (auto* box = dynamic_cast<TextBox*>(control); box != nullptr && box != &Notes && !box->gotFocus)
            box->gotFocus = [box] { box->selectAll(); };
    for (TextBox* box : {&contact_.txtPhone, &Email})
        box->lostFocus = [this, laidOut = box->lostFocus] {
            if (laidOut)
                laidOut();
            noteDuplicate();
        };
    wire();

    asksBeforeLeaving({&ownFields_.vsfCustomFields});
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
                           {&LayawayCustomer, "LayawayCustomer", 0},
                           {&TaxExempt, "TaxExempt", 0},
                           {&Employee, "Employee", 0}};
    for (const Bound& one : bound) {
        one.control->dataField = one.column;
        if (auto* box = dynamic_cast<TextBox*>(one.control))
            box->maxLength = one.length;
    }
}

void frmCustomer::wire() {
    terms_.chkCharge.click = [this] { chkCharge_Click(); };
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
                           fields({field("Stat&e:", contact_.cboState), field("&Zip:", Zip), field("&Phone:", contact_.txtPhone),
                                   field("&Fax:", contact_.txtFax), field("E&mail:", Email), field("Last updated:", LastUpdated)})
                               .stretched(),
                           gap(),
                           column({fields({field("Price t&ier:", dcxTierID), field("&Resale no.:", ResaleNo), field("Store:", StoreID),
                                           field("Sales in all:", TotalSales), field("Last purchase:", LastPurchaseDate)}),
                                   at(lblDuplicate).wide(20).high(2)})
                               .stretched(),
                       }),
                       row({at(cbxActive), at(LayawayCustomer), at(TaxExempt), at(Employee), gap(), at(terms_.chkCharge)}),
                       row({
                               terms_.item(),
                               column(
                                   {at(ownFields_.vsfCustomFields).high(2).wide(20).stretched(), fields({field("No&tes:", Notes).high(1)})})
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
    guarded({kCustomerTag, "Form_Load"}, [this] {
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
    ownFields_.load(CustomerID);
    data_.setRecordset(customer_);
    BindControls(*this, data_);
    contact_.follow(data_);
    data_.follow(dcxTierID, "TierID", [this](const Value& stored) { return tierName(stored); });
    LastPurchaseDate.setText((*customer_)["LastPurchaseDate"].text());
    terms_.showAmounts(data_);
}

db::RecordsetPtr frmCustomer::readCustomer() const {
    return openDirect(Sql("Select * from Customer where ID = ") + CustomerID, CursorType::Keyset, LockType::Optimistic);
}

// Empty for one that is not among the tiers.
std::string frmCustomer::tierName(const Value& tier) {
    tiers_->MoveFirst();
    tiers_->Find("TierID = " + tier.toText());
    return tiers_->onRow() ? (*tiers_)["TierName"].text() : std::string();
}

void frmCustomer::Form_Activate() {
    guarded({kCustomerTag, "Form_Activate"}, [this] { showSales(); });
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
    ownFields_.release();
    for (db::RecordsetPtr* rows : {&customer_, &tiers_})
        closeRows(*rows);
}

void frmCustomer::FetchCustomerData() {
    guarded({kCustomerTag, "FetchCustomerData"}, [this] { contact_.fetch(CustomerID, data_); });
}

void frmCustomer::chkCharge_Click() {
    if (loading_)
        return;
    EnableCreditFields();
    if (terms_.chkCharge.value())
        LoadCreditDefaults();
}

void frmCustomer::LoadCreditDefaults() {
    guarded({kCustomerTag, "LoadCreditDefaults"}, [this] { terms_.loadDefaults(CustomerID); });
}

void frmCustomer::dcxTierID_Click() {
    if (loading_ || customer_ == nullptr || tiers_ == nullptr || guarded({kCustomerTag, "dcxTierID_Change"}, [this] { takeTier(); }))
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
    guarded({kCustomerTag, "NoteDuplicate"}, [this] {
        const auto others =
            openBroker("bsp_CustomersAlike", db::CommandType::StoredProcedure, db::CursorType::Static, LockType::ReadOnly,
                       {intParameter("CustomerID", CustomerID), textParameter("PhoneNumber", 30, GetPhone(contact_.txtPhone)),
                        textParameter("Email", 100, std::string(trimmed(Email.text())))});
        lblDuplicate.setCaption(others->Eof() ? ""
                                              : "Also of " + (*others)["Name"].text() + ": the same " + (*others)["What"].text() + ".");
    });
}

void frmCustomer::cmdUpdate_Click() {
    if (customer_ == nullptr)
        return unload();
    if (contact_.refused())
        return;
    if (!isWholeNumber(StoreID.text())) {
        desk().message("The store is a number; \"" + StoreID.text() + "\" is none.", kProduct);
        StoreID.setFocus();
        return;
    }
    FailurePlace place{.tag = kCustomerTag, .procedure = "cmdUpdate_Click", .plain = "The customer was not saved."};
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
    terms_.showAmounts(data_);
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
    for (Control* control : controls())
        if (!contact_.holds(*control))
            data_.settle(*control);
    place.plain = "The customer was not saved in full.";
    contact_.write(CustomerID, data_);
    return true;
}

void frmCustomer::cmdSalesHist_Click() {
    guarded({kCustomerTag, "cmdSalesHist_Click"}, [this] {
        modMain().doors.ReportWindow("CustSalesHist.rpt", {std::to_string(CustomerID), "", ""}, true, true);
    });
}

} // namespace merchantry::customers
