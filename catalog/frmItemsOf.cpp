#include "catalog/frmItemsOf.h"

#include "base/counted.h"
#include "base/numbers.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;

frmItemsOf::frmItemsOf(Desk& desk) : Form(desk, "frmItemsOf", "Items") {
    setIcon("items");
    grdItems.setColumns({{.heading = "SKU", .fixedWidth = true, .characters = 18},
                         {.heading = "MatrixSKU", .fixedWidth = true, .characters = 18},
                         {.heading = "Name", .characters = 44},
                         {.heading = "Active", .format = GridColumn::Format::Flag}});
    grdItems.editable = false;
    grdItems.emptyText = "No items are left here.";
    grdItems.dblClick = [this] { cmdOpen_Click(); };
    cmdOpen.isDefault = true;
    cmdExit.isCancel = true;
    cmdOpen.click = [this] { cmdOpen_Click(); };
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        title(lblHeading),
        at(grdItems).high(16).wide(96).stretched(),
        buttons({stretch(), at(cmdExit), at(cmdOpen)}),
    }));
    offer("ShowItems", [this](const auto& arguments) {
        const bool department = arguments.empty() || arguments[0] == "Department";
        ShowItems(department ? ItemGroup::Department : ItemGroup::TaxClass,
                  arguments.size() > 1 ? static_cast<int>(Value(arguments[1]).toInteger()) : 1, arguments.size() > 2 ? arguments[2] : "");
        return std::string();
    });
}

void frmItemsOf::ShowItems(ItemGroup group, int id, const std::string& name) {
    group_ = group;
    id_ = id;
    setCaption((group == ItemGroup::Department ? "Items of Department " : "Items of Tax Class ") + name);
    lblHeading.setCaption(caption());
    desk().showModal(*this);
}

void frmItemsOf::Form_Load() {
    guarded({name(), "Form_Load", caption() + " - Critical Error"}, [this] { read(); });
}

void frmItemsOf::read() {
    const int row = grdItems.row();
    grdItems.bind(nullptr);
    closeRows(rows_);
    rows_ = openDirect(db::Sql("bsp_ItemsOf '") + std::string(group_ == ItemGroup::Department ? "Department" : "TaxClass") + "', " + id_,
                       db::CursorType::Static);
    grdItems.bind(rows_.get());
    if (row >= 1)
        grdItems.setCurrent(std::min(row, grdItems.dataRows()), grdItems.col());
    const int count = rows_->RecordCount();
    grdItems.setStatusText(counted(count, "item"));
    cmdOpen.setEnabled(count > 0);
}

// The item may have gone to another department or class there.
void frmItemsOf::cmdOpen_Click() {
    const auto& open = modMain().doors.CheckSKUs;
    if (!grdItems.selected() || !open)
        return;
    open(grdItems.rawText(grdItems.row(), 0) + "|" + grdItems.rawText(grdItems.row(), 1), true);
    guarded({name(), "cmdOpen_Click"}, [this] { read(); });
}

void frmItemsOf::Form_Unload(bool& /*cancel*/) {
    grdItems.bind(nullptr);
    closeRows(rows_);
}

} // namespace merchantry::catalog
