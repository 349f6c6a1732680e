#pragma once

#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <string>

namespace merchantry::catalog {

// The messages that a register shows when an item is sold: their list, and the picker for an item.
class frmItems_SalesMsg : public ui::Form {
public:
    explicit frmItems_SalesMsg(ui::Desk& desk);

    // Modal. Mode 1 picks, any other maintains. The message and its id joined by "|"; empty when none was chosen.
    std::string ShowForm(int Mode);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void load();
    void grdSalesMsg_BeforeEdit(int row, int column, bool& cancel);
    void grdSalesMsg_AfterEdit(int row, int column);
    void grdSalesMsg_Error();
    void cmdAddMsg_Click();
    void cmdDeleteMsg_Click();
    void cmdSelect_Click();

    ui::Label lblHeading{*this, "lblHeading", "Sales Messages"};
    ui::Grid grdSalesMsg{*this, "grdSalesMsg"};
    ui::Button cmdAddMsg{*this, "cmdAddMsg", "&Add"};
    ui::Button cmdDeleteMsg{*this, "cmdDeleteMsg", "&Delete"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdSelect{*this, "cmdSelect", "&Select"};

    db::RecordsetPtr rows_;
    std::string result_;
    bool opened_ = false; // through ShowForm
};

} // namespace merchantry::catalog
