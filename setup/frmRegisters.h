#pragma once

#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

namespace merchantry::setup {

// The registers of the store. One is changed on frmRegister_Edit, in the recordset of this list.
class frmRegisters : public ui::Form {
public:
    explicit frmRegisters(ui::Desk& desk);

    // Null when the registers could not be loaded.
    const db::RecordsetPtr& Recordset() const { return rsRegisters; }

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void cmdAdd_Click();
    void cmdEdit_Click();
    void release();

    ui::Label lblHeading{*this, "lblHeading", "Registers"};
    ui::Grid grdReg{*this, "grdReg"};
    ui::Button cmdAdd{*this, "cmdAdd", "&Add"};
    ui::Button cmdEdit{*this, "cmdEdit", "&Edit"};
    ui::Button CmdExit{*this, "CmdExit", "E&xit"};

    db::RecordsetPtr rsRegisters;
};

} // namespace merchantry::setup
