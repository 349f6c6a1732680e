#pragma once

#include "app/codegrid.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

namespace merchantry::inventory {

// The reasons from which every adjustment takes its type. Row 1 is the base code; the database moves the adjustments of a deleted code
// there.
class frmInvReasonCodes : public ui::Form {
public:
    explicit frmInvReasonCodes(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;
    app::CodeTable table();

    ui::Label lblHeading{*this, "lblHeading", "Inventory Adjustment Codes"};
    ui::Grid grdInvCode{*this, "grdInvCode"};
    ui::Label lblNote{*this, "lblNote",
                      "NOTE: All Adjustments within a deleted Adjustment Code will be moved to the base Adjustment Code."};
    ui::Button cmdDelete{*this, "cmdDelete", "&Delete"};
    ui::Button cmdAdd{*this, "cmdAdd", "&Add"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};

    app::CodeGrid codes_{grdInvCode, table()};
};

} // namespace merchantry::inventory
