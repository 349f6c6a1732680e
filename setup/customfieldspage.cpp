#include "setup/customfieldspage.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/text.h"
#include "setup/optionfields.h"
#include "ui/desk.h"

#include <algorithm>
#include <string>

namespace merchantry::setup {

using namespace app;
using namespace ui;

namespace {

constexpr int kFieldNameLength = 50;

enum FieldsColumn { kNameColumn, kTypeColumn };

} // namespace

CustomFieldsPage::CustomFieldsPage(Form& form)
    : grdFields(form, "grdFields"), txtFieldName(form, "txtFieldName"), lbxDataType(form, "lbxDataType"),
      cmdAddField(form, "cmdAddField", "A&dd Field") {
    txtFieldName.maxLength = kFieldNameLength;
    grdFields.setColumns({{.heading = "Field name"}, {.heading = "Data type", .characters = 12}});
    grdFields.editable = false;
    grdFields.click = [this] { grdFields_Click(); };
    grdFields.dblClick = [this] { grdFields_Click(); }; // and so Enter
    cmdAddField.click = [this] { cmdAddField_Click(); };
}

Item CustomFieldsPage::item() {
    return column({
        at(grdFields).high(5).stretched(),
        fields({
            field("Field &name:", txtFieldName).wide(28),
            field("Data &type:", lbxDataType, {at(cmdAddField)}).wide(12),
        }),
        note("A click on a field, or Enter, asks whether to remove it with everything that customers have in it."),
    });
}

void CustomFieldsPage::fillTypes() {
    for (const char* type : {"Date", "Numeric", "Text"})
        lbxDataType.add(type);
}

// One empty row stands while there is no field.
void CustomFieldsPage::load() {
    const auto rows = openBroker("bsp_CustomFields", db::CommandType::StoredProcedure, db::CursorType::ForwardOnly, db::LockType::ReadOnly);
    grdFields.setDataRows(std::max(1, rows->RecordCount()));
    for (int row = 1; !rows->Eof(); rows->MoveNext(), ++row)
        show(row, (*rows)["CustFieldName"].text(), (*rows)["CustFieldType"].text());
    rows->Close();
    grdFields.setCurrent(1, kNameColumn);
    colour(0);
    colour(1);
}

void CustomFieldsPage::show(int row, const std::string& name, const std::string& type) {
    grdFields.setText(row, kNameColumn, name);
    grdFields.setText(row, kTypeColumn, type);
}

void CustomFieldsPage::colour(int row) {
    for (const int column : {kNameColumn, kTypeColumn})
        grdFields.setCellColor(row, column, Color::Blue);
}

void CustomFieldsPage::cmdAddField_Click() {
    guarded({kOptionsTag, "cmdAddCustField"}, [this] { addCustomField(); });
}

void CustomFieldsPage::addCustomField() {
    auto rows = openBroker("bsp_CustomFields", db::CommandType::StoredProcedure, db::CursorType::Dynamic, db::LockType::Optimistic);
    const std::string name(trimmed(txtFieldName.text()));
    const std::string type = lbxDataType.text();
    if (name.empty() || type.empty())
        return;
    if (isTaken(name)) {
        desk().message("That Customer Field is already present in the database. Please select another.", kProduct);
        return;
    }
    rows->AddNew();
    (*rows)["CustFieldName"] = Value(name);
    (*rows)["CustFieldType"] = Value(type);
    rows->Update();
    const bool first = grdFields.text(1, kNameColumn).empty();
    const int row = first ? 1 : grdFields.dataRows() + 1;
    grdFields.setDataRows(row);
    show(row, name, type);
    colour(row);
    closeRows(rows);
}

bool CustomFieldsPage::isTaken(const std::string& name) const {
    for (int row = 1; row <= grdFields.dataRows(); ++row)
        if (grdFields.text(row, kNameColumn) == name)
            return true;
    return false;
}

void CustomFieldsPage::grdFields_Click() {
    if (grdFields.row() < 1 || grdFields.text(grdFields.row(), kNameColumn).empty())
        return;
    if (desk().message("Are you sure you wish to remove this field? Fields containing data will be destroyed.", "Remove Field",
                       MessageIcon::Question, MessageButtons::YesNo) == Answer::Yes)
        guarded({kOptionsTag, "Form_Unload"}, [this] { removeCustomField(); });
}

void CustomFieldsPage::removeCustomField() {
    const int row = grdFields.row();
    modMain().Conn->Execute(db::Sql("DELETE FROM CustomFields WHERE CustFieldName = '") + grdFields.text(row, kNameColumn) +
                            "' AND CustFieldType = '" + grdFields.text(row, kTypeColumn) + "'");
    if (grdFields.dataRows() > 1)
        grdFields.removeRow(row);
    else
        show(row, "", "");
}

} // namespace merchantry::setup
