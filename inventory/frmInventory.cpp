#include "inventory/frmInventory.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/counted.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/textorder.h"
#include "inventory/frmInventory_Adjust.h"
#include "inventory/frmInventory_Serial.h"
#include "ui/desk.h"

#include <array>

namespace merchantry::inventory {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kTag = "MR_frmInventory";
enum Column { kSku, kMatrixSku, kName, kQuantity, kCommitted, kSerial };

// The columns that a click sorts by; any other text goes in as a value and so stays one word.
Sql orderFor(const std::string& sort) {
    if (sort.empty())
        return "Stock.SKU, Stock.MatrixSKU";
    if (sort == "Stock.SKU")
        return "Stock.SKU";
    if (sort == "Stock.MatrixSKU")
        return "Stock.MatrixSKU";
    if (sort == "Item.Name")
        return "Item.Name";
    return Sql().add(sort);
}

} // namespace

frmInventory::frmInventory(Desk& desk) : Form(desk, "frmInventory", "Inventory") {
    setIcon("items");
    using Format = GridColumn::Format;
    grdInv.setColumns({
        {.heading = "SKU", .centred = true, .fixedWidth = true, .width = 1650},
        {.heading = "MatrixSKU", .centred = true, .fixedWidth = true, .width = 1650},
        {.heading = "Name", .centred = true, .width = 4400},
        {.heading = "In Stock", .format = Format::Number, .centred = true, .width = 1040},
        {.heading = "Qty Committed", .format = Format::Number, .centred = true, .width = 1040},
        {.heading = "Serial", .format = Format::Flag, .centred = true},
    });
    grdInv.editable = false;
    grdInv.emptyText = "Nothing is stocked yet. Add items first.";
    grdInv.setToolTip(
        "Quantities change through Adjust or a double click, not in the cells. A click on SKU, MatrixSKU or Name sorts, on the "
        "heading or in the first row.");
    grdInv.colorOf = [this](int row, int column) { return column <= kMatrixSku && isSerialed(row) ? Color::Yellow : Color::None; };
    cmdAdjust.isDefault = true;
    cmdExit.isCancel = true;

    grdInv.click = [this] { grdInv_Click(); };
    grdInv.dblClick = [this] { cmdAdjust_Click(); };
    cmdSearch.click = [this] { cmdSearch_Click(); };
    cmdAdjust.click = [this] { cmdAdjust_Click(); };
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        title(lblHeading),
        at(lblInstructions),
        at(grdInv).high(18).wide(110).stretched(),
        buttons({at(cmdSearch), stretch(), at(cmdExit), at(cmdAdjust)}),
    }));
    offer("Init_Grid", [this](const auto& arguments) {
        ensureLoaded();
        Init_Grid(arguments.empty() ? "" : arguments[0]);
        return std::string();
    });
}

void frmInventory::Form_Load() {
    guarded({kTag, "Form_Load", caption() + " - Critical Error"}, [this] {
        desk().waitCursor(true);
        Init_Grid("");
        desk().waitCursor(false);
    });
}

void frmInventory::release() {
    grdInv.bind(nullptr);
    closeRows(rsInv);
}

void frmInventory::Form_Unload(bool& /*cancel*/) {
    release();
}

void frmInventory::Init_Grid(const std::string& sort) {
    guarded({kTag, "Init_Grid"}, [&] {
        Sql list("select Stock.SKU, Stock.MatrixSKU, Item.Name, Stock.Quantity, Stock.QtyCommitt, Item.SerialFlag FROM Stock INNER JOIN "
                 "Item ON Stock.SKU = Item.SKU AND Stock.MatrixSKU = Item.MatrixSKU WHERE Item.TypeID <> 4");
        list.add(" ORDER BY ").add(orderFor(sort));
        release();
        rsInv = openDirect(list, db::CursorType::Static, db::LockType::ReadOnly);
        grdInv.bind(rsInv.get());
        grdInv.setSorted(RowOrder{sort == "Item.Name" ? kName : sort == "Stock.MatrixSKU" ? kMatrixSku : kSku});
        showSums();
    });
}

void frmInventory::showSums() {
    std::int64_t onHand = 0;
    std::int64_t committed = 0;
    for (int row = 0; row < rsInv->rowCount(); ++row) {
        onHand += rsInv->cell(row, kQuantity).toInteger();
        committed += rsInv->cell(row, kCommitted).toInteger();
    }
    grdInv.setStatusText(counted(rsInv->rowCount(), "item") + ", " + withThousands(onHand) + " in stock, " + withThousands(committed) +
                         " committed");
}

bool frmInventory::isSerialed(int row) const {
    return grdInv.value(row, kSerial).toInteger() != 0;
}

void frmInventory::grdInv_Click() {
    static constexpr std::array<const char*, 3> kSorts{"Stock.SKU", "Stock.MatrixSKU", "Item.Name"};
    if (grdInv.row() == 1 && grdInv.col() >= 0 && grdInv.col() < static_cast<int>(kSorts.size()))
        Init_Grid(kSorts[static_cast<std::size_t>(grdInv.col())]);
}

int frmInventory::rowOf(const std::string& sku) const {
    for (int row = 0; rsInv != nullptr && row < rsInv->rowCount(); ++row)
        if (sameText(rsInv->cellText(row, kSku), sku))
            return row + 1;
    return 0;
}

void frmInventory::cmdSearch_Click() {
    const auto asked = desk().input({"Enter Search SKU", "Find SKU", ""});
    const std::string sku(trimmed(asked.value_or("")));
    if (sku.empty())
        return;
    const int row = rowOf(sku);
    if (row == 0) {
        desk().message("Search SKU not found", kProduct);
        return;
    }
    grdInv.setCurrent(row, kSku);
    grdInv.showCurrent();
}

void frmInventory::cmdAdjust_Click() {
    if (!grdInv.selected())
        return;
    const std::string sku = grdInv.rawText(grdInv.row(), kSku);
    const std::string matrixSku = grdInv.rawText(grdInv.row(), kMatrixSku);
    openAdjustment(grdInv.row());
    Form_Load();
    comeBackTo(sku, matrixSku);
}

void frmInventory::openAdjustment(int row) {
    const std::string sku = grdInv.rawText(row, kSku);
    const std::string matrixSku = grdInv.rawText(row, kMatrixSku);
    if (isSerialed(row))
        desk().form<frmInventory_Serial>().ShowSerials(sku, matrixSku, row);
    else
        desk().form<frmInventory_Adjust>().AdjustInv(sku, matrixSku, grdInv.rawText(row, kName), row);
}

// The list is a new one, in its own order: the user stands on the same item again.
void frmInventory::comeBackTo(const std::string& sku, const std::string& matrixSku) {
    for (int row = 0; rsInv != nullptr && row < rsInv->rowCount(); ++row)
        if (rsInv->cellText(row, kSku) == sku && rsInv->cellText(row, kMatrixSku) == matrixSku)
            return grdInv.setCurrent(row + 1, std::max(0, grdInv.col()));
}

} // namespace merchantry::inventory
