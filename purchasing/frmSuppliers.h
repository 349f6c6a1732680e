#pragma once

#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/textbox.h"

namespace merchantry::purchasing {

// The store's suppliers by number and name. A name is saved as its cell is left; Edit opens the rest. Supplier 0, the Empty Supplier, keeps
// its name and stays.
class frmSuppliers : public ui::Form {
public:
    explicit frmSuppliers(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void release();
    void reload();
    void grdSuppliers_BeforeEdit(int row, int column, bool& cancel);
    void grdSuppliers_AfterEdit(int row, int column);
    void cmdAdd_Click();
    void cmdDelete_Click();
    void cmdEdit_Click();
    void cmdSearch_Click();
    bool isEmptySupplier(int row) const;

    ui::Label lblHeading{*this, "lblHeading", "Suppliers"};
    ui::TextBox txtInput{*this, "txtInput"};
    ui::Button cmdSearch{*this, "cmdSearch", "&Search"};
    ui::Grid grdSuppliers{*this, "grdSuppliers"};
    ui::Label lblNote{*this, "lblNote",
                      "NOTE: If you delete a supplier, any items assigned this supplier will have it removed permanently."};
    ui::Button cmdDelete{*this, "cmdDelete", "&Delete"};
    ui::Button cmdAdd{*this, "cmdAdd", "&Add"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdEdit{*this, "cmdEdit", "&Edit"};

    db::RecordsetPtr suppliers_;
};

} // namespace merchantry::purchasing
