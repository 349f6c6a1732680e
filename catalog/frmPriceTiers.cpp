#include "catalog/frmPriceTiers.h"

#include "app/modMain.h"
#include "catalog/itemscreen.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmPriceTiers";
constexpr int kName = 1;
constexpr int kBaseTier = 1;

} // namespace

frmPriceTiers::frmPriceTiers(Desk& desk) : Form(desk, "frmPriceTiers", "Price Tiers") {
    grdTiers.setColumns({{.heading = "ID", .format = GridColumn::Format::Number}, {.heading = "Tier Name", .characters = 40}});
    cmdDelete.isDanger = true;
    cmdExit.isCancel = true;
    grdTiers.beforeEdit = [this](int row, int column, bool& cancel) { grdTiers_BeforeEdit(row, column, cancel); };
    grdTiers.afterEdit = [this](int row, int column) { grdTiers_AfterEdit(row, column); };
    cmdAdd.click = [this] { cmdAdd_Click(); };
    cmdDelete.click = [this] { cmdDelete_Click(); };
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        row({title(lblHeading), stretch()}),
        at(lblNote),
        at(grdTiers).high(10).wide(64).stretched(),
        buttons({at(cmdAdd), gap(), at(cmdDelete), stretch(), at(cmdExit)}),
    }));
}

void frmPriceTiers::Form_Load() {
    guarded({kTag, "Form_Load", caption() + " - Critical Error"}, [this] {
        grdTiers.bind(nullptr);
        rows_ = openUpdatable("bsp_PriceTiers");
        grdTiers.bind(rows_.get());
    });
}

void frmPriceTiers::Form_Unload(bool& /*cancel*/) {
    grdTiers.bind(nullptr);
    closeRows(rows_);
}

void frmPriceTiers::cmdAdd_Click() {
    guarded({kTag, "Add_Click"}, [this] {
        if (!grdTiers.addRow({"", "Tier Name"}))
            return;
        grdTiers.setCurrent(grdTiers.dataRows(), kName);
        grdTiers.setFocus();
    });
}

void frmPriceTiers::cmdDelete_Click() {
    if (desk().message("Are you certain you wish to delete this Price Tier?", "Delete Tier?", MessageIcon::Question,
                       MessageButtons::YesNo) != Answer::Yes)
        return;
    if (grdTiers.selected() && grdTiers.value(grdTiers.row(), 0).toInteger() == kBaseTier)
        desk().message("You may not delete the base Retail Tier.", kProduct);
    else
        grdTiers.removeRow(grdTiers.row());
}

void frmPriceTiers::grdTiers_BeforeEdit(int row, int column, bool& cancel) {
    cancel = column != kName || grdTiers.text(row, column) == "Retail";
}

void frmPriceTiers::grdTiers_AfterEdit(int row, int column) {
    if (grdTiers.text(row, column).empty()) {
        desk().message("Please enter a valid Tier name.", kProduct);
        grdTiers.setText(row, column, "Edit Tier Name");
        return;
    }
    Form_Load();
    grdTiers.setCurrent(row, column);
}

} // namespace merchantry::catalog
