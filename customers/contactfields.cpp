#include "customers/contactfields.h"

#include "app/modMain.h"
#include "app/modPhone.h"
#include "app/states.h"
#include "base/text.h"

#include <string>

namespace merchantry::customers {

using namespace app;
using namespace ui;
using db::Sql;

ContactFields::ContactFields(Form& form) : cboState(form, "cboState"), txtPhone(form, "txtPhone"), txtFax(form, "txtFax") {
    for (TextBox* box : {&txtPhone, &txtFax}) {
        box->gotFocus = [box] { box->selectAll(); };
        takePhones(*box);
        box->setToolTip("Ten digits are laid out as (555) 123-4567; any other number stays as you type it.");
    }
}

void ContactFields::follow(DataControl& data) {
    const auto phone = [](const Value& stored) { return std::string(trimmed(stored.toText())); };
    data.follow(txtPhone, "PhoneNumber", phone);
    data.follow(txtFax, "FaxNumber", phone);
    data.follow(cboState, "State", [this](const Value& stored) { return stateEntry(cboState, stored.toText()); });
}

void ContactFields::fetch(std::int32_t customer, DataControl& data) {
    fillStates(cboState);
    SetPhone("", txtPhone);
    SetPhone("", txtFax);
    const auto row = openDirect(Sql("sp_GetCustomerData ") + customer);
    if (row->Eof())
        return;
    SetPhone((*row)["PhoneNumber"].text(), txtPhone);
    SetPhone((*row)["FaxNumber"].text(), txtFax);
    cboState.setText(stateEntry(cboState, (*row)["State"].text()));
    for (const Control* control : std::initializer_list<const Control*>{&txtPhone, &txtFax, &cboState})
        data.settle(*control);
}

bool ContactFields::holds(const Control& control) const {
    return &control == &txtPhone || &control == &txtFax || &control == &cboState;
}

bool ContactFields::refused() {
    return phoneRefused(txtPhone, "Invalid phone number. Please reenter.", MessageIcon::Information) ||
           phoneRefused(txtFax, "Invalid fax number. Please reenter.", MessageIcon::Information);
}

void ContactFields::write(std::int32_t customer, const DataControl& data) const {
    const auto kept = [&data](const Control& control, const char* column, const std::string& held) {
        return data.isChanged(control) ? held : (*data.Recordset())[column].text();
    };
    modMain().Conn->Execute(Sql("sp_SetCustomerData ") + customer + ", '" + kept(txtPhone, "PhoneNumber", GetPhone(txtPhone)) + "', '" +
                            kept(txtFax, "FaxNumber", GetPhone(txtFax)) + "', '" + kept(cboState, "State", cboState.text()) + "'");
}

} // namespace merchantry::customers
