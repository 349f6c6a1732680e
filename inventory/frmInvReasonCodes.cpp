#include "inventory/frmInvReasonCodes.h"

namespace merchantry::inventory {

using namespace app;
using namespace ui;

namespace {

constexpr int kBase = 1; // the ID of the base code

} // namespace

frmInvReasonCodes::frmInvReasonCodes(Desk& desk) : Form(desk, "frmInvReasonCodes", "Inventory Adjustment Codes") {
    setIcon("items");
    grdInvCode.setColumns({{.heading = "ID", .centred = true, .fixedWidth = true, .width = 1005},
                           {.heading = "Reason Code", .centred = true, .width = 8100}});
    grdInvCode.emptyText = "No codes could be loaded.";
    grdInvCode.setToolTip("Type over a code to rename it. Adjustments already posted keep the old text and stay in reports and undoing.");
    cmdDelete.isDanger = true;
    cmdExit.isCancel = true;

    cmdAdd.click = [this] { codes_.add(); };
    cmdDelete.click = [this] { codes_.remove(); };
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        title(lblHeading),
        at(grdInvCode).high(12).stretched(),
        at(lblNote),
        buttons({at(cmdAdd), gap(), at(cmdDelete), stretch(), note("Each code is saved as you leave its cell"), at(cmdExit)}),
    }));
}

CodeTable frmInvReasonCodes::table() {
    const auto isBase = [this](int row) { return codes_.key(row) == kBase; };
    return {.procedure = "bsp_ReasonCodes",
            .newRow =
                [] {
                    return std::vector<Value>{Value(), std::string("ReasonCode")};
                },
            .emptyName = "Enter a valid adjustment code",
            .nameForEmpty = "Edit Reason Code",
            .fixed = isBase,
            .stays = isBase,
            .question = "Are you certain you wish to delete this Reason Code?",
            .questionCaption = "Delete Reason Code?",
            .baseRefusal = "You may not edit or delete the base Reason Code",
            .loading = {"MR_frmDepartments", "Form_Load", caption() + " - Critical Error"},
            .adding = {"MR_frmReasonCodes", "Add_Click"},
            .removing = {"MR_frmReasonCodes", "Delete_Click"}};
}

void frmInvReasonCodes::Form_Load() {
    codes_.load();
}

void frmInvReasonCodes::Form_Unload(bool& /*cancel*/) {
    codes_.release();
}

} // namespace merchantry::inventory
