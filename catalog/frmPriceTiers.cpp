#include "catalog/frmPriceTiers.h"

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
    grdTiers.afterEdit = [this](int, int) { Form_Load(); };
    cmdAdd.click = [this] { codes_.add(); };
    cmdDelete.click = [this] { codes_.remove(); };
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        row({title(lblHeading), stretch()}),
        at(lblNote),
        at(grdTiers).high(10).wide(64).stretched(),
        buttons({at(cmdAdd), gap(), at(cmdDelete), stretch(), note("Each name is saved as you leave its cell"), at(cmdExit)}),
    }));
}

CodeTable frmPriceTiers::table() {
    return {.procedure = "bsp_PriceTiers",
            .newRow =
                [] {
                    return std::vector<Value>{Value(), std::string("Tier Name")};
                },
            .emptyName = "Please enter a valid Tier name.",
            .nameForEmpty = "Edit Tier Name",
            .fixed = [this](int row) { return grdTiers.text(row, kName) == "Retail"; },
            .stays = [this](int row) { return codes_.key(row) == kBaseTier; },
            .question = "Are you certain you wish to delete this Price Tier?",
            .questionCaption = "Delete Tier?",
            .baseRefusal = "You may not delete the base Retail Tier.",
            .loading = {kTag, "Form_Load", caption() + " - Critical Error"},
            .adding = {kTag, "Add_Click"}};
}

void frmPriceTiers::Form_Load() {
    codes_.load();
}

void frmPriceTiers::Form_Unload(bool& /*cancel*/) {
    codes_.release();
}

} // namespace merchantry::catalog
