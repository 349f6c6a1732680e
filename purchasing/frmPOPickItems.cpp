#include "purchasing/frmPOPickItems.h"

#include "app/modMain.h"
#include "ui/desk.h"
#include "ui/waiting.h"

namespace merchantry::purchasing {

using namespace app;
using namespace ui;

namespace {

enum Column { kName = kFirstShown, kParent, kSku, kReorder, kStock, kIndex };

std::vector<ItemPick> itemsOf(Desk& desk, const db::Sql& procedure) {
    const Waiting hourglass(desk);
    const auto rows = openDirect(procedure);
    std::vector<ItemPick> items;
    items.reserve(static_cast<std::size_t>(rows->RecordCount()));
    for (; !rows->Eof(); rows->MoveNext())
        items.push_back({(*rows)["Name"].text(), (*rows)["SKU"].text(), (*rows)["MatrixSKU"].text(), (*rows)["Restock"].Value().toInt32(),
                         (*rows)["Quantity"].Value().toInt32()});
    return items;
}

} // namespace

frmPOPickItems::frmPOPickItems(Desk& desk)
    : PickForm(desk, "frmPOPickItems", "Select Items", grdItems),
      rows_(Items, {[](const ItemPick& item) { return Value(item.Name); }, [](const ItemPick& item) { return Value(item.SKU); },
                    [](const ItemPick& item) { return Value(item.MatrixSKU); }, [](const ItemPick& item) { return Value(item.Restock); },
                    [](const ItemPick& item) { return Value(item.Quantity); }}) {
    using Format = GridColumn::Format;
    grdItems.setColumns({{.heading = "Selected", .editor = GridColumn::Editor::Check, .fixedWidth = true, .characters = 8},
                         {.heading = "Name", .characters = 24},
                         {.heading = "Parent SKU", .fixedWidth = true, .characters = 13},
                         {.heading = "SKU", .fixedWidth = true, .characters = 13},
                         {.heading = "Reorder @", .format = Format::Number},
                         {.heading = "Qty in Stock", .format = Format::Number},
                         {.heading = "Index", .hidden = true}});
    setLayout(layoutAround(lblHeading, 100));
}

void frmPOPickItems::Form_Load() {
    if (!SupplierName.empty())
        lblHeading.setCaption("Select Items for " + SupplierName + " Purchase Order");
    show(rows_, kSku, true);
}

bool frmPOPickItems::accepts() {
    if (selectedCount() > 0)
        return true;
    desk().message("No items have been selected for a purchase order.", "Velmora TillmarkProfessional");
    return false;
}

std::vector<ItemPick> PickItems(Desk& desk, const db::Sql& procedure, const std::string& supplierName, const ItemKeys& ticked) {
    std::vector<ItemPick> items = itemsOf(desk, procedure);
    for (ItemPick& item : items)
        item.Selected = ticked.contains({item.SKU, item.MatrixSKU});
    if (items.empty()) {
        desk.message("No items that can or should be reordered found.", "Velmora Tillmark Profesional");
        return {};
    }
    auto& list = desk.form<frmPOPickItems>();
    list.Items = std::move(items);
    list.SupplierName = supplierName;
    desk.showModal(list);
    if (!list.DialogResult)
        return {};
    items = std::move(list.Items);
    std::erase_if(items, [](const ItemPick& item) { return !item.Selected; });
    list.unload();
    return items;
}

} // namespace merchantry::purchasing
