#include "inventory/frmInvReasonCodes.h"

#include "app/modMain.h"
#include "base/text.h"
#include "ui/desk.h"

namespace merchantry::inventory {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kProduct = "Velmora Tillmark Professional";
constexpr int kBase = 1; // the ID of the base code
constexpr int kIdColumn = 0;
constexpr int kCodeColumn = 1;

} // namespace

frmInvReasonCodes::frmInvReasonCodes(Desk& desk) : Form(desk, "frmInvReasonCodes", "Inventory Adjustment Codes") {
    setIcon("items");
    grdInvCode.setColumns({{.heading = "ID", .centred = true, .fixedWidth = true, .width = 1005},
                           {.heading = "Reason Code", .centred = true, .width = 8100}});
    grdInvCode.emptyText = "No codes could be loaded.";
    grdInvCode.setToolTip("Type over a code to rename it. Adjustments already posted keep the old text and stay in reports and undoing.");
    cmdDelete.isDanger = true;
    cmdExit.isCancel = true;

    grdInvCode.beforeEdit = [this](int row, int column, bool& cancel) { grdInvCode_BeforeEdit(row, column, cancel); };
    grdInvCode.afterEdit = [this](int row, int column) { grdInvCode_AfterEdit(row, column); };
    cmdAdd.click = [this] { cmdAdd_Click(); };
    cmdDelete.click = [this] { cmdDelete_Click(); };
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        title(lblHeading),
        at(grdInvCode).high(12).stretched(),
        at(lblNote),
        buttons({at(cmdAdd), gap(), at(cmdDelete), stretch(), note("Each code is saved as you leave its cell"), at(cmdExit)}),
    }));
}

void frmInvReasonCodes::Form_Load() {
    guarded({"MR_frmDepartments", "Form_Load", caption() + " - Critical Error"}, [this] {
        release();
        rsReasonCodes = openBroker("bsp_ReasonCodes", db::CommandType::StoredProcedure, db::CursorType::Dynamic, db::LockType::Optimistic);
        grdInvCode.bind(rsReasonCodes.get());
    });
}

void frmInvReasonCodes::release() {
    grdInvCode.bind(nullptr);
    closeRows(rsReasonCodes);
}

void frmInvReasonCodes::Form_Unload(bool& /*cancel*/) {
    release();
}

bool frmInvReasonCodes::isBase(int row) const {
    return grdInvCode.value(row, kIdColumn).toInteger() == kBase;
}

void frmInvReasonCodes::cmdAdd_Click() {
    guarded({"MR_frmReasonCodes", "Add_Click"}, [this] {
        if (rsReasonCodes == nullptr)
            return; // the codes could not be loaded
        rsReasonCodes->addRow({Value(), std::string("ReasonCode")});
        grdInvCode.setCurrent(grdInvCode.dataRows(), kCodeColumn);
        grdInvCode.setFocus();
    });
}

void frmInvReasonCodes::grdInvCode_BeforeEdit(int row, int column, bool& cancel) {
    cancel = column == kIdColumn || isBase(row);
}

void frmInvReasonCodes::grdInvCode_AfterEdit(int row, int column) {
    if (!trimmed(grdInvCode.text(row, column)).empty())
        return;
    desk().message("Enter a valid adjustment code", kProduct);
    guarded({"MR_frmReasonCodes", "grdInvCode_AfterEdit"}, [&] { grdInvCode.setText(row, column, "Edit Reason Code"); });
}

void frmInvReasonCodes::cmdDelete_Click() {
    if (desk().message("Are you certain you wish to delete this Reason Code?", "Delete Reason Code?", MessageIcon::Question,
                       MessageButtons::YesNo) != Answer::Yes)
        return;
    const int row = grdInvCode.row();
    if (row < 1)
        return;
    if (isBase(row)) {
        desk().message("You may not edit or delete the base Reason Code", kProduct);
        return;
    }
    guarded({"MR_frmReasonCodes", "Delete_Click"}, [&] { removeCode(row); });
}

void frmInvReasonCodes::removeCode(int row) {
    grdInvCode.removeRow(row);
    Form_Load();
}

} // namespace merchantry::inventory
