#pragma once

#include "app/modMain.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <string>

namespace merchantry::catalog {

// The items of one department or tax class, to look through and open before the department or class is changed or deleted. ShowItems shows
// it modally; only reads.
class frmItemsOf : public ui::Form {
public:
    explicit frmItemsOf(ui::Desk& desk);
    void ShowItems(app::ItemGroup group, int id, const std::string& name);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;
    void read();
    void cmdOpen_Click();

    ui::Label lblHeading{*this, "lblHeading", "Items"};
    ui::Grid grdItems{*this, "grdItems"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdOpen{*this, "cmdOpen", "&Open Item"};

    app::ItemGroup group_ = app::ItemGroup::Department;
    int id_ = 0;
    db::RecordsetPtr rows_;
};

} // namespace merchantry::catalog
