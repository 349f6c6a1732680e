#pragma once

#include "app/codegrid.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

namespace merchantry::customers {

// The reasons of a posting to a customer's account. "Other" stays; the one with number 2 is what applying a credit posts.
class frmCreditAdjCodes : public ui::Form {
public:
    explicit frmCreditAdjCodes(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;
    app::CodeTable table();
    void cmdDelete_Click();
    bool isApplication(int row) const;

    ui::Label lblHeading{*this, "lblHeading", "Credit Adjustment Codes"};
    ui::Grid grdCodes{*this, "grdCodes"};
    ui::Button cmdAdd{*this, "cmdAdd", "&Add"};
    ui::Button cmdDelete{*this, "cmdDelete", "&Delete"};
    ui::Button CmdExit{*this, "CmdExit", "E&xit"};

    app::CodeGrid codes_{grdCodes, table()};
};

} // namespace merchantry::customers
