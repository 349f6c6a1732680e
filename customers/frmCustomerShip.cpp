#include "customers/frmCustomerShip.h"

#include "app/modMain.h"
#include "app/modPhone.h"
#include "app/states.h"
#include "base/text.h"
#include "customers/frmCustomer.h"
#include "customers/meanwhile.h"
#include "ui/desk.h"

namespace merchantry::customers {

using namespace app;
using namespace ui;
using db::CursorType;
using db::LockType;
using db::Sql;

namespace {

constexpr const char* kTag = "frmCustomerShip";

} // namespace

frmCustomerShip::frmCustomerShip(Desk& desk) : Form(desk, "frmCustomerShip", "Shipping Address") {
    setIcon("item");
    struct Bound {
        TextBox* box;
        const char* column;
        int length;
    };
    const Bound bound[] = {{&FirstName, "FirstName", 50}, {&LastName, "LastName", 50}, {&Attn, "Attn", 100},
                           {&Company, "Company", 100},    {&Address, "Address", 100},  {&Address2, "Address2", 100},
                           {&City, "City", 50},           {&Zip, "Zip", 20},           {&Email, "Email", 100}};
    for (const Bound& one : bound) {
        one.box->dataField = one.column;
        one.box->maxLength = one.length;
        one.box->gotFocus = [box = one.box] { box->selectAll(); };
    }
    for (TextBox* box : {&txtPhone, &txtFax}) {
        takePhones(*box);
    }
    cboState.setToolTip("Shown only: a state chosen here is not kept. The registers keep it.");
    cmdUpdate.click = [this] { cmdUpdate_Click(); };
    cmdCancel.click = cmdExit.click = [this] { unload(); };
    cmdCancel.isCancel = cmdCancel.drops = cmdExit.drops = true;
    cmdUpdate.isDefault = true;

    asksBeforeLeaving();
    setLayout(column({
        title(lblHeading),
        at(lblNone),
        row({fields({field("First &Name:", FirstName).wide(24), field("&Last Name:", LastName), field("A&ttention:", Attn),
                     field("C&ompany:", Company), field("&Address:", Address), field("Address &2:", Address2)})
                 .stretched(),
             gap(),
             fields({field("Cit&y:", City).wide(24), field("&State:", cboState), field("&Zip:", Zip), field("&Phone:", txtPhone),
                     field("&Fax:", txtFax), field("&Email:", Email)})
                 .stretched()}),
        buttons({stretch(), note("Update saves and closes; the state is shown only"), at(cmdExit), at(cmdCancel), at(cmdUpdate)}),
    }));
}

void frmCustomerShip::Form_Load() {
    fillStates(cboState);
    guarded({kTag, "Form_Load"}, [this] {
        address_ = read();
        data_.setRecordset(address_);
        BindControls(*this, data_);
        for (const auto& [box, column] : phones())
            data_.follow(*box, column, [](const Value& stored) { return std::string(trimmed(stored.toText())); });
        lblNone.setVisible(address_->Eof());
    });
    FetchShipData();
    nothingUnsaved();
}

void frmCustomerShip::FetchShipData() {
    guarded({kTag, "FetchShipData"}, [this] {
        if (address_ == nullptr || address_->Eof())
            return;
        SetPhone((*address_)["PhoneNumber"].text(), txtPhone);
        SetPhone((*address_)["FaxNumber"].text(), txtFax);
        if (!(*address_)["State"].isNull())
            cboState.setText(stateEntry(cboState, (*address_)["State"].text()));
        for (const auto& [box, column] : phones())
            data_.settle(*box);
    });
}

void frmCustomerShip::Form_Unload(bool& /*cancel*/) {
    data_.setRecordset(nullptr);
    closeRows(address_);
}

void frmCustomerShip::cmdUpdate_Click() {
    if (phoneRefused(txtPhone, "Invalid phone number. Please reenter.", MessageIcon::Information) ||
        phoneRefused(txtFax, "Invalid fax number. Please reenter.", MessageIcon::Information))
        return;
    bool stays = false;
    const bool written = guarded({.tag = kTag, .procedure = "cmdUpdate_Click", .plain = "The address was not saved."}, [&] {
        if (address_ == nullptr || !address_->onRow()) {
            desk().status("Nothing was saved: this customer has no shipping address.");
            return;
        }
        stays = !takeMeanwhile(*this, data_, read(), "address");
        address_ = data_.Recordset();
        if (!stays)
            write();
    });
    if (!written || stays)
        return;
    nothingUnsaved();
    unload();
}

std::vector<std::pair<TextBox*, const char*>> frmCustomerShip::phones() {
    return {{&txtPhone, "PhoneNumber"}, {&txtFax, "FaxNumber"}};
}

db::RecordsetPtr frmCustomerShip::read() {
    return openDirect(Sql("Select * from ShipAddresses where CustomerID = ") + desk().form<frmCustomer>().CustomerID, CursorType::Keyset,
                      LockType::Optimistic);
}

void frmCustomerShip::write() {
    data_.collect();
    for (const auto& [box, column] : phones())
        if (data_.isChanged(*box))
            (*address_)[column] = Value(GetPhone(*box));
    address_->Update();
}

} // namespace merchantry::customers
