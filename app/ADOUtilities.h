#pragma once

#include "app/db/ado/recordset.h"
#include "ui/form.h"
#include "ui/list.h"

#include <functional>
#include <string>
#include <vector>

namespace merchantry::app {

// The recordset behind a bound form. Controls are bound to its current row: they show its columns, and what the user enters goes into the
// pending change, which Update of the recordset writes. What a control shows may be less than the row holds (an amount in whole cents), so
// only those that were changed since they showed the row are written. Must live as long as the form's controls are used.
class DataControl {
public:
    // What a control shows for a value of its column.
    using Shown = std::function<std::string(const Value&)>;

    explicit DataControl(db::RecordsetPtr rows = nullptr) : rows_(std::move(rows)) {}
    void setRecordset(db::RecordsetPtr rows) { rows_ = std::move(rows); }
    const db::RecordsetPtr& Recordset() const { return rows_; }

    // Binds one text box, check box, option, list or combo by its dataField; one that is bound already stays as it is.
    void bind(ui::Control& control);
    // A text box or combo that shows a column of the row, and that the screen writes by itself: followed as the bound ones are, never
    // collected. What it holds now counts as what the row holds.
    void follow(ui::Control& control, std::string column, Shown shown);
    bool isBound(const ui::Control& control) const;
    // Shows the current row in all bound controls.
    void show();
    // Whether the control holds something else than the row, as it was shown.
    bool isChanged(const ui::Control& control) const;
    // What the control holds now is how the row's value is shown.
    void settle(const ui::Control& control);
    // Puts what the changed controls hold into the pending change of the current row.
    void collect();
    // Takes the same row as it stands in the store by now. Controls that were not changed show it; the others keep what they hold. Gives
    // those of them whose column became something else meanwhile, and not what they hold.
    std::vector<const ui::Control*> renew(db::RecordsetPtr rows);
    // As the row holds it, in the words in which the control shows it.
    std::string shownText(const ui::Control& control) const;

private:
    struct Held {
        ui::Control* control;
        std::string column;
        Shown shown;            // empty for a bound control
        Value settled{};        // what the control held when it showed the row
        bool collected = false; // since then: the row, or its pending change, may hold another value by now
    };

    const Held* find(const ui::Control& control) const;
    static Value asShown(const Held& held, const Value& stored);
    void showStored(Held& held);

    db::RecordsetPtr rows_;
    std::vector<Held> held_;
};

// Binds every control of the form that names a dataField and is not bound yet. A failure is reported.
void BindControls(ui::Form& form, DataControl& data);

// When the combo's text is not empty: finds it in the lookup's key column, from the first row on, and gives the target's field of that name
// the value that the found row has in the field of that name. An empty combo changes nothing.
void FillFieldFromCombo(const ui::ComboBox& combo, db::Recordset& target, const std::string& field, db::Recordset& lookup,
                        const std::string& keyColumn);

// The text without its apostrophes and semicolons; they are deleted, not doubled.
std::string CleanSQLValue(const std::string& value);

} // namespace merchantry::app
