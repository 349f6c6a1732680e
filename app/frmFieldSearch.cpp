#include "app/frmFieldSearch.h"

namespace merchantry::app {

using namespace ui;

frmFieldSearch::frmFieldSearch(Desk& desk) : Form(desk, "frmFieldSearch", "Search") {
    setIcon("search");
    setFixedSize();
    txtText.placeholder = "Type to search";
    txtText.change = [this] { tell(); };
    cboField.click = [this] { tell(); };
    cboField.change = [this] { tell(); };
    setLayout(row({fields({field("&Field:", cboField).wide(16)}), fields({field("Search f&or:", txtText).wide(32)})}));
}

void frmFieldSearch::setFields(const std::vector<std::string>& fields) {
    cboField.clear();
    for (const std::string& field : fields)
        cboField.add(field);
    const auto listener = std::move(changed);
    changed = nullptr;
    cboField.setListIndex(0);
    changed = listener;
}

void frmFieldSearch::setSearch(const std::string& field, const std::string& text) {
    const int index = cboField.indexOf(field);
    if (index < 0)
        return;
    cboField.setListIndex(index);
    txtText.setText(text);
}

// The search begins with its text; all fields are looked through unless one is chosen.
void frmFieldSearch::Form_Activate() {
    txtText.setFocus();
}

void frmFieldSearch::Form_Unload(bool& /*cancel*/) {
    if (gone)
        gone();
}

void frmFieldSearch::tell() {
    if (changed)
        changed(cboField.text(), txtText.text());
}

} // namespace merchantry::app
