#include "setup/frmTaxTable.h"

#include "ui/desk.h"

namespace merchantry::setup {

using namespace ui;

frmTaxTable::frmTaxTable(Desk& desk) : Form(desk, "frmTaxTable", "Tax Table") {
    setIcon("items");
    grdTaxTables.editable = false;
    grdTaxTables.emptyText = "Rates are kept under Items, Setup, Tax Classes.";
    setLayout(column({at(grdTaxTables).high(10).wide(60).stretched()}));
    offer("Show", [this](const auto&) {
        this->desk().showModal(*this);
        return std::string();
    });
}

} // namespace merchantry::setup
