#pragma once

#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <string>

namespace merchantry::setup {

// The people who may work on the registers. What one may do is changed on frmCashier_Security, in the recordset of this list.
class frmCashiers : public ui::Form {
public:
    explicit frmCashiers(ui::Desk& desk);

    // Null when the cashiers could not be loaded.
    const db::RecordsetPtr& Recordset() const { return rsCashiers; }

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void cmdAdd_Click();
    void add();
    void cmdEdit_Click();
    void cmdDelete_Click();
    bool mayDelete(const std::string& id);
    void standOn(const std::string& id);
    void release();

    ui::Label lblHeading{*this, "lblHeading", "Cashiers"};
    ui::Grid grdCashiers{*this, "grdCashiers"}; // read-only: the ID, the name for logging in, the person, whether a manager
    ui::Button cmdAdd{*this, "cmdAdd", "&Add"};
    ui::Button cmdEdit{*this, "cmdEdit", "&Edit"};
    ui::Button cmdDelete{*this, "cmdDelete", "&Delete"};
    ui::Button CmdExit{*this, "CmdExit", "Exit"};

    db::RecordsetPtr rsCashiers;
};

} // namespace merchantry::setup
