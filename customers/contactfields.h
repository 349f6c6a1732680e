#pragma once

#include "app/ADOUtilities.h"
#include "ui/form.h"
#include "ui/list.h"
#include "ui/textbox.h"

#include <cstdint>

namespace merchantry::customers {

// State, phone and fax of a customer, which are not bound to the row: procedures of their own read and write them.
class ContactFields {
public:
    explicit ContactFields(ui::Form& form);

    // Lets the data know what the fields show of the row, so that it tells what was changed.
    void follow(app::DataControl& data);
    // Shows what the store has; nothing for a customer that is gone. Throws DbError.
    void fetch(std::int32_t customer, app::DataControl& data);
    bool holds(const ui::Control& control) const;
    // Whether a number is refused, which is said.
    bool refused();
    // What the user did not change is written as the data's row has it. Throws DbError.
    void write(std::int32_t customer, const app::DataControl& data) const;

    ui::ComboBox cboState;
    ui::TextBox txtPhone;
    ui::TextBox txtFax;
};

} // namespace merchantry::customers
