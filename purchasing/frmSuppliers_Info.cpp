#include "purchasing/frmSuppliers_Info.h"

#include "app/failure.h"
#include "app/modMain.h"
#include "app/modPhone.h"
#include "app/states.h"
#include "app/titles.h"
#include "base/lettercase.h"
#include "base/text.h"
#include "ui/desk.h"

#include <algorithm>

namespace merchantry::purchasing {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmSuppliers_Info";

// The first entry that begins with the text, without case; -1 when none does or the text is empty.
int entryBeginning(const ListBox& list, const std::string& text) {
    if (text.empty())
        return -1;
    for (int i = 0; i < list.count(); ++i)
        if (lowerCase(list.entries()[static_cast<std::size_t>(i)].text).starts_with(lowerCase(text)))
            return i;
    return -1;
}

std::string trimmedText(const TextBox& box) {
    return std::string(trimmed(box.text()));
}

} // namespace

frmSuppliers_Info::frmSuppliers_Info(Desk& desk) : Form(desk, "frmSuppliers_Info", "Supplier Info") {
    setIcon("item");
    cmdCancel.isCancel = cmdCancel.drops = cmdExit.drops = true;
    cmdUpdate.isDefault = true;
    cmdCancel.setToolTip("Leaves without saving. A supplier just added stays in the list with its name.");
    const std::pair<TextBox*, int> lengths[] = {{&txtName, 100},         {&txtAddress1, 100},    {&txtAddress2, 100}, {&txtAddress3, 100},
                                                {&txtCity, 50},          {&txtZip, 20},          {&txtEmail, 100},    {&txtWebsite, 255},
                                                {&txtAccountNumber, 50}, {&txtSalesPerson, 100}, {&txtPhone, 30},     {&txtFax, 30}};
    for (const auto& [box, length] : lengths)
        box->maxLength = length;
    for (Control* control : controls())
        if (auto* box = dynamic_cast<TextBox*>(control))
            box->gotFocus = [box] { box->selectAll(); };
    for (TextBox* box : {&txtPhone, &txtFax}) {
        takePhones(*box);
        box->setToolTip("Ten digits are laid out as (555) 123-4567; any other number stays as you type it.");
    }
    txtName.lostFocus = [this] { txtName_LostFocus(); };
    cmdUpdate.click = [this] { cmdUpdate_Click(); };
    cmdCancel.click = [this] { unload(); };
    cmdExit.click = [this] { unload(); };

    asksBeforeLeaving();
    setLayout(column({
        title(lblHeading),
        fields({field("&Name:", txtName).wide(48)}),
        row({
            box("Address", fields({
                               field("&Address:", txtAddress1).wide(22),
                               field("Address &2:", txtAddress2),
                               field("Address &3:", txtAddress3),
                               field("Ci&ty:", txtCity),
                               field("&State:", lbxState),
                               field("&Zip:", txtZip),
                           }))
                .stretched(),
            box("Contact", fields({
                               field("&Phone:", txtPhone).wide(31),
                               field("&Fax:", txtFax),
                               field("&Email:", txtEmail),
                               field("&Website:", txtWebsite),
                               field("Acc&ount number:", txtAccountNumber),
                               field("Sa&les person:", txtSalesPerson),
                           }))
                .stretched(),
        }),
        buttons({stretch(), note("Update saves and closes"), at(cmdExit), at(cmdCancel), at(cmdUpdate)}),
    }));
    offer("FetchSupplierInfo", [this](const auto& arguments) {
        FetchSupplierInfo(static_cast<std::int16_t>(std::stoi(arguments.at(0))));
        return std::string();
    });
}

void frmSuppliers_Info::FetchSupplierInfo(std::int16_t supplier) {
    SupplierID = supplier;
    desk().showModal(*this);
}

void frmSuppliers_Info::Init_ListBoxes() {
    fillStates(lbxState);
}

void frmSuppliers_Info::Form_Load() {
    guarded({kTag, "Form_Load"}, [this] {
        supplier_ = openBroker("bsp_Supplier", db::CommandType::StoredProcedure, db::CursorType::Keyset, db::LockType::Optimistic,
                               {intParameter("SupID", SupplierID)});
        Init_ListBoxes();
        if (Populate_FormData())
            return;
        unload();
        throw RunTimeError(5, "The supplier could not be shown.");
    });
}

void frmSuppliers_Info::show(const char* column, TextBox& box) {
    const db::Field field = (*supplier_)[column];
    box.setText(field.isNull() ? "" : field.text());
}

bool frmSuppliers_Info::Populate_FormData() {
    return guarded({kTag, "Populate_Form"}, [this] {
        const std::pair<const char*, TextBox*> fields[] = {{"Supplier", &txtName},     {"Address1", &txtAddress1},
                                                           {"Address2", &txtAddress2}, {"Address3", &txtAddress3},
                                                           {"City", &txtCity},         {"Zip", &txtZip}};
        for (const auto& [column, box] : fields)
            show(column, *box);
        for (const auto& [column, box] : {std::pair{"Phone", &txtPhone}, std::pair{"Fax", &txtFax}})
            SetPhone((*supplier_)[column].isNull() ? "" : (*supplier_)[column].text(), *box);
        show("AccountNumber", txtAccountNumber);
        show("SalesRep", txtSalesPerson);
        show("Website", txtWebsite);
        if ((*supplier_)["Email"].isNull())
            throw RunTimeError(94, "Invalid use of Null");
        show("Email", txtEmail);
        lbxState.setListIndex((*supplier_)["State"].isNull() ? -1 : entryBeginning(lbxState, (*supplier_)["State"].text()));
    });
}

void frmSuppliers_Info::Form_Unload(bool& /*cancel*/) {
    guarded({kTag, "Form_Unload"}, [this] { closeRows(supplier_); });
}

void frmSuppliers_Info::txtName_LostFocus() {
    if (!txtName.text().empty())
        return;
    desk().message("Please enter a name for this supplier!", kProduct);
    guarded({kTag, "txtName"}, [this] { txtName.setText("SupplierName"); });
}

void frmSuppliers_Info::cmdUpdate_Click() {
    if (phoneRefused(txtPhone, "Invalid phone number. Please reenter.", MessageIcon::None) ||
        phoneRefused(txtFax, "Invalid fax number. Please reenter.", MessageIcon::None))
        return;
    if (guarded({"MR_", "SupplierUpdate"}, [this] { write(); }))
        unload();
}

void frmSuppliers_Info::write() {
    db::Recordset& row = *supplier_;
    row["State"] = Value(lbxState.text());
    row["Address1"] = Value(trimmedText(txtAddress1));
    row["Address2"] = Value(trimmedText(txtAddress2));
    row["Address3"] = Value(trimmedText(txtAddress3));
    row["City"] = Value(trimmedText(txtCity));
    row["Email"] = Value(trimmedText(txtEmail));
    row["Supplier"] = Value(txtName.text());
    row["Zip"] = Value(trimmedText(txtZip));
    row["AccountNumber"] = Value(trimmedText(txtAccountNumber));
    row["SalesRep"] = Value(trimmedText(txtSalesPerson));
    row["Website"] = Value(trimmedText(txtWebsite));
    row["Fax"] = Value(GetPhone(txtFax));
    row["Phone"] = Value(GetPhone(txtPhone));
    row.Update();
}

} // namespace merchantry::purchasing
