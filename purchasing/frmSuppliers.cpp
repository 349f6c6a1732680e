#include "purchasing/frmSuppliers.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/text.h"
#include "purchasing/frmSuppliers_Info.h"
#include "ui/calls.h"
#include "ui/desk.h"

namespace merchantry::purchasing {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmSuppliers";
constexpr int kIdColumn = 0;
constexpr int kNameColumn = 1;

} // namespace

frmSuppliers::frmSuppliers(Desk& desk) : Form(desk, "frmSuppliers", "Suppliers") {
    setIcon("items");
    txtInput.placeholder = "Part of a name";
    grdSuppliers.setColumns(
        {{.heading = "ID", .centred = true, .fixedWidth = true, .width = 1005}, {.heading = "Suppliers", .centred = true, .width = 8100}});
    grdSuppliers.emptyText = "No suppliers could be loaded.";
    grdSuppliers.setToolTip("Type over a name to change it; a double click opens address and contacts.");
    cmdDelete.isDanger = true;
    cmdDelete.setToolTip("A supplier who was ever ordered from cannot be deleted.");
    cmdExit.isCancel = true;
    cmdSearch.isDefault = true;
    cmdSearch.setToolTip("Goes to the first supplier whose name contains the text.");
    cmdAdd.setToolTip("Adds a supplier at once and opens it; Cancel there leaves it with its name only.");

    grdSuppliers.beforeEdit = calls(this, &frmSuppliers::grdSuppliers_BeforeEdit);
    grdSuppliers.afterEdit = calls(this, &frmSuppliers::grdSuppliers_AfterEdit);
    grdSuppliers.dblClick = [this] { cmdEdit_Click(); };
    cmdSearch.click = [this] { cmdSearch_Click(); };
    cmdAdd.click = [this] { cmdAdd_Click(); };
    cmdDelete.click = [this] { cmdDelete_Click(); };
    cmdEdit.click = [this] { cmdEdit_Click(); };
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        title(lblHeading),
        fields({field("&Find:", txtInput, {at(cmdSearch)})}),
        at(grdSuppliers).high(14).stretched(),
        at(lblNote),
        buttons({at(cmdAdd), gap(), at(cmdDelete), stretch(), note("Each name is saved as you leave its cell"), at(cmdExit), at(cmdEdit)}),
    }));
}

void frmSuppliers::Form_Load() {
    guarded({kTag, "Form_Load"}, [this] { reload(); });
}

void frmSuppliers::reload() {
    const int row = grdSuppliers.row();
    release();
    suppliers_ = openBroker("bsp_Suppliers", db::CommandType::StoredProcedure, db::CursorType::Dynamic, db::LockType::Optimistic);
    grdSuppliers.bind(suppliers_.get());
    const int count = grdSuppliers.dataRows();
    grdSuppliers.setStatusText(withThousands(count - 1) + (count == 2 ? " supplier" : " suppliers") + " beside the Empty Supplier");
    if (row >= 1 && row <= count)
        grdSuppliers.setCurrent(row, kNameColumn);
}

void frmSuppliers::release() {
    grdSuppliers.bind(nullptr);
    closeRows(suppliers_);
}

void frmSuppliers::Form_Unload(bool& /*cancel*/) {
    release();
}

bool frmSuppliers::isEmptySupplier(int row) const {
    return grdSuppliers.text(row, kIdColumn) == "0";
}

void frmSuppliers::cmdSearch_Click() {
    const std::string wanted = lowerCase(trimmed(txtInput.text()));
    if (wanted.empty())
        return;
    for (int row = 1; row <= grdSuppliers.dataRows(); ++row) {
        if (lowerCase(grdSuppliers.text(row, kNameColumn)).find(wanted) == std::string::npos)
            continue;
        grdSuppliers.setCurrent(row, kNameColumn);
        grdSuppliers.showCurrent();
        return;
    }
    grdSuppliers.setStatusText("Nothing was found: no supplier's name contains \"" + txtInput.text() + "\".");
}

void frmSuppliers::grdSuppliers_BeforeEdit(int row, int column, bool& cancel) {
    cancel = column == kIdColumn || isEmptySupplier(row);
}

void frmSuppliers::grdSuppliers_AfterEdit(int row, int column) {
    if (!grdSuppliers.text(row, column).empty()) {
        Form_Load();
        return;
    }
    desk().message("Please enter a valid Supplier name.", kProduct);
    guarded({kTag, "grdSuppliers_AfterEdit"}, [&] { grdSuppliers.setText(row, column, "Edit Supplier"); });
}

void frmSuppliers::cmdAdd_Click() {
    guarded({kTag, "Add_Click"}, [this] {
        if (suppliers_ == nullptr)
            return; // the suppliers could not be loaded
        suppliers_->addRow({Value(), std::string("New Supplier")});
        grdSuppliers.setCurrent(grdSuppliers.dataRows(), kNameColumn);
        grdSuppliers.showCurrent();
        cmdEdit_Click();
    });
}

void frmSuppliers::cmdDelete_Click() {
    if (desk().message("Are you SURE you wish to delete this supplier? Any items assigned this supplier will have it removed permanently!",
                       kProduct, MessageIcon::Question, MessageButtons::OkCancel) != Answer::Ok)
        return;
    const int row = grdSuppliers.row();
    if (row < 1)
        return;
    if (isEmptySupplier(row)) {
        desk().message("You may not delete the Empty Supplier", kProduct);
        return;
    }
    guarded({kTag, "Delete_Click"}, [&] { grdSuppliers.removeRow(row); });
}

void frmSuppliers::cmdEdit_Click() {
    const int row = grdSuppliers.row();
    if (row < 1)
        return;
    const auto supplier = grdSuppliers.value(row, kIdColumn).toInt16();
    desk().form<frmSuppliers_Info>().FetchSupplierInfo(supplier);
    Form_Load();
}

} // namespace merchantry::purchasing
