#pragma once

#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/tabset.h"

#include <string>

namespace merchantry::catalog {

// The set-up of matrix groups (size, colour) and of the categories in each (S, M, L). Both grids write at each cell.
class frmItemMatrix : public ui::Form {
public:
    explicit frmItemMatrix(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void loadGroups();
    void selectGroup();
    void loadCategories();
    void cmdAddGroup_Click();
    void cmdDeleteGroup_Click();
    void grdMatrixGroups_AfterEdit(int row, int column);
    void grdMatrixGroups_Error();
    void cmdAddCategory_Click();
    void cmdDeleteCategory_Click();
    void grdMatrixCategs_AfterEdit(int row, int column);
    void grdMatrixCategs_Error();

    ui::TabSet tabItemMatrix{*this, "tabItemMatrix", {"Matrix Groups", "Matrix Categories"}};

    // Matrix Groups
    ui::Label lblGroupsNote{*this, "lblGroupsNote",
                            "These are the current matrix groups.  Please note, deleting a group will delete all its members and remove "
                            "these definitions from any items that have them assigned."};
    ui::Grid grdMatrixGroups{*this, "grdMatrixGroups"};
    ui::Button cmdDeleteGroup{*this, "cmdDeleteGroup", "&Delete"};
    ui::Button cmdAddGroup{*this, "cmdAddGroup", "&Add"};

    // Matrix Categories
    ui::Label lblMatrixGroups{*this, "lblMatrixGroups", "Groups"};
    ui::ListBox lbxMatrixGroups{*this, "lbxMatrixGroups"};
    ui::Label lblCategoriesNote{*this, "lblCategoriesNote",
                                "Please note, deleting a category will remove its definition from any item that has it assigned."};
    ui::Grid grdMatrixCategs{*this, "grdMatrixCategs"};
    ui::Button cmdDeleteCategory{*this, "cmdDeleteCategory", "D&elete"};
    ui::Button cmdAddCategory{*this, "cmdAddCategory", "A&dd"};

    ui::Button cmdExit{*this, "cmdExit", "E&xit"};

    db::RecordsetPtr groups_;
    db::RecordsetPtr categories_;
};

} // namespace merchantry::catalog
