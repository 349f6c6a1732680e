#include "app/ADOUtilities.h"

#include "app/failure.h"
#include "base/text.h"
#include "ui/choice.h"
#include "ui/textbox.h"

#include <algorithm>
#include <utility>

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

const DataControl::Held* DataControl::find(const ui::Control& control) const {
    const auto found = std::find_if(held_.begin(), held_.end(), [&](const Held& held) { return held.control == &control; });
    return found == held_.end() ? nullptr : &*found;
}

bool DataControl::isBound(const ui::Control& control) const {
    return find(control) != nullptr;
}

void DataControl::bind(ui::Control& control) {
    if (isBound(control) || control.dataField.empty() || !bindable(control))
        return;
    held_.push_back({&control, control.dataField, nullptr});
    if (rows_ != nullptr && rows_->onRow())
        showStored(held_.back());
    settle(control);
}

void DataControl::follow(ui::Control& control, std::string column, Shown shown) {
    if (!isBound(control))
        held_.push_back({&control, std::move(column), std::move(shown)});
    settle(control);
}

void DataControl::showStored(Held& held) {
    const Value stored = (*rows_)[held.column].Value();
    showIn(*held.control, held.shown ? Value(held.shown(stored)) : stored);
    held.settled = heldBy(*held.control);
    held.collected = false;
}

void DataControl::show() {
    for (Held& held : held_)
        showStored(held);
}

bool DataControl::isChanged(const ui::Control& control) const {
    const Held* const held = find(control);
    return held != nullptr && heldBy(control) != held->settled;
}

void DataControl::settle(const ui::Control& control) {
    for (Held& held : held_)
        if (held.control == &control) {
            held.settled = heldBy(control);
            held.collected = false;
        }
}

void DataControl::collect() {
    for (Held& held : held_) {
        if (held.shown || (!held.collected && !isChanged(*held.control)))
            continue;
        held.collected = true;
        db::Field field = (*rows_)[held.column];
        // A list in which nothing is chosen knows no word for what the column holds, and leaves it.
        if (const auto* list = dynamic_cast<const ui::ListBox*>(held.control); list != nullptr && list->listIndex() < 0)
            continue;
        const Value value = heldBy(*held.control);
        // A field that shows a null as nothing and was left so stays null.
        if (field.isNull() && value.toText().empty())
            continue;
        if (field.text() != value.toText())
            field = value.toText().empty() && !field.Type().isText() ? Value() : value;
    }
}

Value DataControl::asShown(const Held& held, const Value& stored) {
    const bool flag = held.control->role() == ui::Role::CheckBox || held.control->role() == ui::Role::OptionButton;
    return held.shown ? Value(held.shown(stored)) : flag ? Value(stored.toFlag()) : Value(stored.toText());
}

std::string DataControl::shownText(const ui::Control& control) const {
    const Held* const held = find(control);
    return held == nullptr ? std::string() : asShown(*held, (*rows_)[held->column].Value()).toText();
}

std::vector<const ui::Control*> DataControl::renew(db::RecordsetPtr rows) {
    rows_->CancelUpdate();
    const db::RecordsetPtr before = std::exchange(rows_, std::move(rows));
    std::vector<const ui::Control*> met;
    for (Held& held : held_) {
        const Value stored = (*rows_)[held.column].Value();
        if (stored == (*before)[held.column].Value())
            continue;
        if (!isChanged(*held.control)) {
            showStored(held);
            continue;
        }
        held.settled = asShown(held, stored);
        if (heldBy(*held.control) != held.settled)
            met.push_back(held.control);
    }
    return met;
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
