#include "app/ADOUtilities.h"

#include "app/failure.h"
#include "base/text.h"
#include "ui/choice.h"
#include "ui/textbox.h"

#include <algorithm>

namespace merchantry::app {
namespace {

bool bindable(const ui::Control& control) {
    switch (control.role()) {
    case ui::Role::TextBox:
    case ui::Role::CheckBox:
    case ui::Role::OptionButton:
    case ui::Role::ListBox:
    case ui::Role::ComboBox:
        return true;
    default:
        return false;
    }
}

void showIn(ui::Control& control, const Value& value) {
    if (auto* box = dynamic_cast<ui::TextBox*>(&control))
        box->setText(value.toText());
    else if (auto* check = dynamic_cast<ui::CheckBox*>(&control))
        check->setValue(value.toFlag());
    else if (auto* option = dynamic_cast<ui::OptionButton*>(&control))
        option->setValue(value.toFlag());
    else if (auto* list = dynamic_cast<ui::ListBox*>(&control))
        list->setListIndex(list->indexOf(value.toText()));
    else if (auto* combo = dynamic_cast<ui::ComboBox*>(&control))
        combo->setText(value.toText());
}

Value heldBy(const ui::Control& control) {
    if (const auto* box = dynamic_cast<const ui::TextBox*>(&control))
        return box->text();
    if (const auto* check = dynamic_cast<const ui::CheckBox*>(&control))
        return check->value();
    if (const auto* option = dynamic_cast<const ui::OptionButton*>(&control))
        return option->value();
    if (const auto* list = dynamic_cast<const ui::ListBox*>(&control))
        return list->text();
    return dynamic_cast<const ui::ComboBox&>(control).text();
}

} // namespace

bool DataControl::isBound(const ui::Control& control) const {
    return std::find(bound_.begin(), bound_.end(), &control) != bound_.end();
}

void DataControl::bind(ui::Control& control) {
    if (isBound(control) || control.dataField.empty() || !bindable(control))
        return;
    bound_.push_back(&control);
    if (rows_ != nullptr && rows_->onRow())
        showIn(control, (*rows_)[control.dataField].Value());
}

void DataControl::show() {
    for (ui::Control* control : bound_)
        showIn(*control, (*rows_)[control->dataField].Value());
}

void DataControl::collect() {
    for (const ui::Control* control : bound_) {
        db::Field field = (*rows_)[control->dataField];
        // A list in which nothing is chosen knows no word for what the column holds, and leaves it.
        if (const auto* list = dynamic_cast<const ui::ListBox*>(control); list != nullptr && list->listIndex() < 0)
            continue;
        const Value held = heldBy(*control);
        // A field that shows a null as nothing and was left so stays null.
        if (field.isNull() && held.toText().empty())
            continue;
        if (field.text() != held.toText())
            field = held.toText().empty() && !field.Type().isText() ? Value() : held;
    }
}

void BindControls(ui::Form& form, DataControl& data) {
    guarded({"", "BindControls"}, [&] {
        for (ui::Control* control : form.controls())
            data.bind(*control);
    });
}

void FillFieldFromCombo(const ui::ComboBox& combo, db::Recordset& target, const std::string& field, db::Recordset& lookup,
                        const std::string& keyColumn) {
    if (combo.text().empty())
        return;
    lookup.MoveFirst();
    lookup.Find(keyColumn + " = '" + combo.text() + "'");
    target[field] = lookup[field].Value();
}

std::string CleanSQLValue(const std::string& value) {
    return replaced(replaced(value, "'", ""), ";", "");
}

} // namespace merchantry::app
