#pragma once

#include "app/codegrid.h"
#include "setup/itemuse.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

namespace merchantry::setup {

// The departments that items belong to. Row 1 is the base department. The database keeps a department that has items or sales.
class frmDepartments : public ui::Form {
public:
    explicit frmDepartments(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;
    app::CodeTable table();

    ui::Label lblHeading{*this, "lblHeading", "Departments"};
    ui::Grid grdDept{*this, "grdDept"};
    ui::Label lblUse{*this, "lblUse"};
    ui::Button cmdShowItems{*this, "cmdShowItems", "Show &Items..."};
    ui::Button cmdAdd{*this, "cmdAdd", "&Add"};
    ui::Button cmdDelete{*this, "cmdDelete", "&Delete"};
    ui::Button CmdExit{*this, "CmdExit", "E&xit"};

    app::CodeGrid codes_{grdDept, table()};
    ItemUse use_{{"MR_frmDepartments", "ShowUse"}, app::ItemGroup::Department, lblUse, cmdShowItems};
};

} // namespace merchantry::setup
