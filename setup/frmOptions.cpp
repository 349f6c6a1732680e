#include "setup/frmOptions.h"

#include "app/modMain.h"
#include "app/modPhone.h"
#include "app/states.h"
#include "app/titles.h"
#include "base/guard.h"
#include "base/text.h"
#include "setup/secretbox.h"
#include "ui/desk.h"

namespace merchantry::setup {

using namespace app;
using namespace ui;

frmOptions::frmOptions(Desk& desk) : Form(desk, "frmOptions", "Options") {
    setIcon("options");
    keepSecret(txtMgrOverride, cmdShowOverride);
    for (TextBox* box : {&txtAPR, &txtMinFinChg, &txtPeriod, &txtDeposit, &txtMinDeposit, &txtGVExpiration})
        box->alignRight = true;
    txtMinFinChg.money = txtMinDeposit.money = true;
    cmdExit.isCancel = true;

    for (const OptionField& field : optionFields())
        wire(field);
    for (TextBox* box : {&txtPhone, &txtFax}) {
        takePhones(*box);
        box->setToolTip("Ten digits are laid out as (555) 123-4567; any other number stays as you type it.");
    }
    const std::pair<TextBox*, Label*> marks[] = {
        {&txtAddress1, &lblAddress1}, {&txtCity, &lblCity}, {&txtZip, &lblZip}, {&txtPhone, &lblPhone}};
    for (const auto& [box, label] : marks)
        box->change = [this, box = box, label = label] { mark(*label, !trimmed(box->text()).empty()); };
    cmdExit.click = [this] { unload(); };
    buildLayout();
}

// --- every field, by the table ---

void frmOptions::wire(const OptionField& field) {
    Control* const control = find(field.control);
    if (auto* box = dynamic_cast<TextBox*>(control))
        wireBox(field, *box);
    else if (auto* check = dynamic_cast<CheckBox*>(control))
        check->click = [this, &field, check] { write(field, check->value()); };
    else if (auto* list = dynamic_cast<ListBox*>(control))
        list->click = [this, &field, list] { write(field, list->text()); };
    else if (auto* combo = dynamic_cast<ComboBox*>(control))
        wireCombo(field, *combo);
    else
        optTax.click = Option1.click = [this, &field] { write(field, optTax.value()); };
}

void frmOptions::wireBox(const OptionField& field, TextBox& box) {
    box.lostFocus = [this, &field, &box] { leave(field, box); };
    box.gotFocus = [&box] { box.selectAll(); };
}

// An entry that was typed and not picked is written as the list is left.
void frmOptions::wireCombo(const OptionField& field, ComboBox& combo) {
    combo.click = [this, &field, &combo] { write(field, combo.text()); };
    combo.lostFocus = [this, &field, &combo] {
        if (options_ != nullptr && combo.text() != (*options_)[field.column].text())
            write(field, combo.text());
    };
}

void frmOptions::showField(const OptionField& field) {
    const db::Field stored = (*options_)[field.readAs != nullptr ? field.readAs : field.column];
    Control* const control = find(field.control);
    const Restore showing(showing_, true);
    if (auto* box = dynamic_cast<TextBox*>(control)) {
        if (stored.Type().isText())
            box->maxLength = stored.Type().length; // no more than the column holds
        box->setText(std::string(trimmed(stored.text())));
    } else if (auto* check = dynamic_cast<CheckBox*>(control))
        check->setValue(stored.Value().toFlag());
    else if (auto* list = dynamic_cast<ListBox*>(control))
        list->setListIndex(list->indexOf(stored.text()));
    else if (auto* combo = dynamic_cast<ComboBox*>(control))
        combo->setText(stored.text());
    else
        (stored.Value().toFlag() ? optTax : Option1).setValue(true);
}

// Whoever only passes through a field writes nothing; but a default that is shown and left is accepted.
bool frmOptions::isUntouched(const OptionField& field, const TextBox& box) const {
    return field.initial == nullptr && trimmed(box.text()) == trimmed((*options_)[field.column].text());
}

// A wrong entry is said and keeps the focus; the name keeps only its mark.
void frmOptions::leave(const OptionField& field, TextBox& box) {
    if (options_ == nullptr)
        return;
    const std::string complaint = complaintAbout(field.check, box.text());
    if (field.check == OptionCheck::Name)
        mark(lblName, complaint.empty());
    const bool nothingYet = box.text().empty() && field.check != OptionCheck::Name;
    if ((complaint.empty() || nothingYet) && isUntouched(field, box))
        return;
    if (complaint.empty()) {
        guarded({field.tag, field.procedure}, [&] { write(field, storedValue(field.check, box.text())); });
        return;
    }
    desk().message(complaint, kProduct);
    if (field.check == OptionCheck::Name)
        return;
    if (const auto instead = afterWrong(field.check))
        box.setText(*instead);
    box.setFocus();
}

bool frmOptions::write(const OptionField& field, const Value& value) {
    if (showing_ || options_ == nullptr)
        return false;
    FailurePlace place{field.tag, field.procedure};
    const bool written = guarded(place, [&] {
        try {
            (*options_)[field.column] = value;
            options_->Update();
        } catch (const db::DbError& error) {
            if (error.category() == db::DbError::Category::Conflict)
                place.plain = "Someone else changed this meanwhile. The field shows what is stored now.";
            throw;
        }
    });
    if (!written)
        readAgain();
    guarded({field.tag, field.procedure}, [&] { showField(field); }); // as it is stored
    if (std::string_view(field.control) == "lbxState")
        mark(lblState, !lbxState.text().empty());
    if (std::string_view(field.control) == "cbxPCCHG")
        charge_.enable();
    return written;
}

// After a refused write: the row as the store has it now. By the old values of a row that someone else changed no later write would meet
// it.
void frmOptions::readAgain() {
    options_->CancelUpdate();
    guarded({kOptionsTag, "Form_Load"}, [this] {
        options_->Requery();
        putDefaults();
    });
}

// They stand in the row until it is written for the first time.
void frmOptions::putDefaults() {
    for (const OptionField& field : optionFields())
        if (field.initial != nullptr && (*options_)[field.column].isNull())
            (*options_)[field.column] = Value(std::string(field.initial));
}

// --- the screen ---

void frmOptions::Init_ListBoxes() {
    fillStates(lbxState);
    lbxState.removeEntry(lbxState.indexOf("WY")); // the options never offered it
    lbxQB.clear();
    for (const char* version : {"2002", "2003"})
        lbxQB.add(version);
}

void frmOptions::fillCycles(ComboBox& combo, const db::Sql& statement) {
    combo.clear();
    const auto rows = openDirect(statement);
    for (; !rows->Eof(); rows->MoveNext())
        combo.add((*rows)[0].text());
    rows->Close();
}

void frmOptions::Form_Load() {
    tabOptions.setCurrent(0);
    bool populated = true;
    const bool loaded = guarded({kOptionsTag, "Form_Load", caption() + " - Critical Error"}, [&] {
        options_ = openBroker("bsp_StoreOptions", db::CommandType::StoredProcedure, db::CursorType::Dynamic, db::LockType::Optimistic);
        Init_ListBoxes();
        LoadPCChargeMerch();
        fillCycles(cboGracePeriod, "select Period from GracePeriod order by Period");
        fillCycles(cboBillingCycle, "select Cycle from BillingCycle order by Cycle");
        putDefaults();
        populated = Populate_FormData();
        customFields_.fillTypes();
    });
    if (!loaded || !populated)
        unload();
}

bool frmOptions::Populate_FormData() {
    return guarded({kOptionsTag, "Populate_Form"}, [this] {
        for (const OptionField& field : optionFields())
            showField(field);
        markAll();
        charge_.enable();
        customFields_.load();
    });
}

void frmOptions::Form_Unload(bool& /*cancel*/) {
    guarded({kOptionsTag, "Form_Unload"}, [this] { closeRows(options_); });
}

void frmOptions::mark(Label& label, bool filled) {
    label.setForeColor(filled ? Color::Green : Color::Red);
}

void frmOptions::markAll() {
    for (const auto& [label, box] : {std::pair(&lblName, &txtName), std::pair(&lblAddress1, &txtAddress1), std::pair(&lblCity, &txtCity),
                                     std::pair(&lblZip, &txtZip), std::pair(&lblPhone, &txtPhone)})
        mark(*label, !trimmed(box->text()).empty());
    mark(lblState, !lbxState.text().empty());
}

} // namespace merchantry::setup
