#pragma once

#include "ui/form.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/textbox.h"

#include <functional>
#include <string>
#include <vector>

namespace merchantry::app {

// The panel of VelmoraSearch: which field, and what to look for.
class frmFieldSearch : public ui::Form {
public:
    explicit frmFieldSearch(ui::Desk& desk);

    // Fills the field list and selects the first.
    void setFields(const std::vector<std::string>& fields);
    // As if the user had chosen the field and typed the text; nothing happens for a field that is not offered.
    void setSearch(const std::string& field, const std::string& text);

    std::function<void(const std::string& field, const std::string& text)> changed;
    std::function<void()> gone;

private:
    void Form_Activate() override;
    void Form_Unload(bool& cancel) override;
    void tell();

    ui::ComboBox cboField{*this, "cboField"};
    ui::TextBox txtText{*this, "txtText"};
};

} // namespace merchantry::app
