#pragma once

#include "app/codegrid.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

namespace merchantry::catalog {

// The named price lists that customers belong to. Row 1, "Retail", is the base tier.
class frmPriceTiers : public ui::Form {
public:
    explicit frmPriceTiers(ui::Desk& desk);

private:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    app::CodeTable table();

    ui::Label lblHeading{*this, "lblHeading", "Price Tiers"};
    ui::Label lblNote{
        *this, "lblNote",
        "NOTE: All customers in a deleted price tier will become Standard \"Retail\" customers. The \"Retail\" price tier may "
        "not be edited or deleted."};
    ui::Grid grdTiers{*this, "grdTiers"};
    ui::Button cmdAdd{*this, "cmdAdd", "&Add"};
    ui::Button cmdDelete{*this, "cmdDelete", "&Delete"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};

    app::CodeGrid codes_{grdTiers, table()};
};

} // namespace merchantry::catalog
