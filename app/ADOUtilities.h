#pragma once

#include "app/db/ado/recordset.h"
#include "ui/form.h"
#include "ui/list.h"

#include <string>
#include <vector>

namespace merchantry::app {

// The recordset behind a bound form. Controls are bound to its current row: they show its columns, and what the user enters goes into the
// pending change, which Update of the recordset writes. Must live as long as the form's controls are used.
class DataControl {
public:
    explicit DataControl(db::RecordsetPtr rows = nullptr) : rows_(std::move(rows)) {}
    void setRecordset(db::RecordsetPtr rows) { rows_ = std::move(rows); }
    const db::RecordsetPtr& Recordset() const { return rows_; }

    // Binds one text box, check box, option, list or combo by its dataField; one that is bound already stays as it is.
    void bind(ui::Control& control);
    bool isBound(const ui::Control& control) const;
    // Shows the current row in all bound controls.
    void show();
    // Puts what the controls hold into the pending change of the current row.
    void collect();

private:
    db::RecordsetPtr rows_;
    std::vector<ui::Control*> bound_;
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
