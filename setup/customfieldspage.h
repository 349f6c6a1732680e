#pragma once

#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/list.h"
#include "ui/textbox.h"

namespace merchantry::setup {

// The Custom Customer Fields page of frmOptions: the fields that the store keeps of its customers beside its own columns.
class CustomFieldsPage {
public:
    explicit CustomFieldsPage(ui::Form& form);

    ui::Item item();
    // The types to choose from, once as the screen opens.
    void fillTypes();
    // Shows the store's fields. Throws DbError.
    void load();

private:
    void colour(int row);
    void show(int row, const std::string& name, const std::string& type);
    void cmdAddField_Click();
    void addCustomField();
    bool isTaken(const std::string& name) const;
    void grdFields_Click();
    void removeCustomField();
    ui::Desk& desk() const { return grdFields.form().desk(); }

    ui::Grid grdFields;
    ui::TextBox txtFieldName;
    ui::ListBox lbxDataType;
    ui::Button cmdAddField;
};

} // namespace merchantry::setup
