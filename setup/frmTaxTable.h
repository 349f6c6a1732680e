#pragma once

#include "ui/form.h"
#include "ui/grid.h"

namespace merchantry::setup {

// A grid and nothing in it: rates are kept by class (frmTaxClasses), and no command leads here.
class frmTaxTable : public ui::Form {
public:
    explicit frmTaxTable(ui::Desk& desk);

private:
    ui::Grid grdTaxTables{*this, "grdTaxTables"};
};

} // namespace merchantry::setup
