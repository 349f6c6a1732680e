#include "inventory/frmInventory_Serial.h"

#include "app/modMain.h"
#include "app/takeback.h"
#include "app/titles.h"
#include "base/counted.h"
#include "base/numbers.h"
#include "ui/calls.h"
#include "ui/desk.h"

namespace merchantry::inventory {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kTag = "MR_frmInventory_Serial";
constexpr const char* kPlaceholder = "XXXX"; // a unit whose number is still to be typed
constexpr Twips kColumnWidth = 2040;
enum Column { kSku, kMatrixSku, kSerial };

} // namespace

frmInventory_Serial::frmInventory_Serial(Desk& desk) : Form(desk, "frmInventory_Serial", "Serialed Inventory") {
    setIcon("items");
    grdInv.setColumns({{.heading = "SKU", .centred = true, .fixedWidth = true, .width = kColumnWidth},
                       {.heading = "MatrixSKU", .centred = true, .fixedWidth = true, .width = kColumnWidth},
                       {.heading = "Serial #", .centred = true, .fixedWidth = true, .width = kColumnWidth}});
    grdInv.emptyText = "No serial numbers. F1 adds one.";
    cmdAdd.setToolTip("F1");
    cmdDelete.setToolTip("Takes the current number away at once; for a minute the line at the foot puts it back");
    cmdDelete.isDanger = true;
    cmdExit.isCancel = true;

    grdInv.beforeEdit = [](int, int column, bool& cancel) { cancel = column != kSerial; };
    grdInv.afterEdit = [this](int, int) { showState(); };
    grdInv.error = answers(this, &frmInventory_Serial::grdInv_Error);
    cmdAdd.click = [this] { cmdAdd_Click(); };
    onKey("F1", [this] { cmdAdd_Click(); });
    cmdDelete.click = [this] { cmdDelete_Click(); };
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        title(lblHeading),
        at(lblInstructions),
        at(grdInv).high(12).stretched(),
        buttons({at(cmdAdd), gap(), at(cmdDelete), stretch(), note("F1 adds a number, wherever you are"), at(cmdExit)}),
        undoLine.item(),
    }));
    offer("ShowSerials", [this](const auto& arguments) {
        const auto argument = [&](std::size_t at) { return at < arguments.size() ? arguments[at] : std::string(); };
        ShowSerials(argument(0), argument(1), static_cast<std::int16_t>(Value(argument(2)).toInteger()));
        return std::string();
    });
}

void frmInventory_Serial::ShowSerials(const std::string& SKU, const std::string& MatrixSKU, std::int16_t Row) {
    sku_ = SKU;
    matrixSku_ = MatrixSKU;
    row_ = Row;
    desk().showModal(*this);
}

void frmInventory_Serial::Form_Load() {
    guarded({kTag, "Form_Load", caption() + " - Critical Error"}, [this] {
        release();
        rsSerials = openBroker(Sql("SELECT SKU, MatrixSKU, SerialNo FROM StockSerials WHERE SKU = '") + sku_ + "' AND MatrixSKU = '" +
                                   matrixSku_ + "' AND LockedFlag = 0",
                               db::CommandType::Text, db::CursorType::Dynamic, db::LockType::Optimistic);
        grdInv.bind(rsSerials.get());
        showState();
    });
}

void frmInventory_Serial::Form_Activate() {
    if (!std::exchange(activated_, true))
        grdInv.setFocus();
}

void frmInventory_Serial::release() {
    grdInv.bind(nullptr);
    closeRows(rsSerials);
}

void frmInventory_Serial::Form_Unload(bool& /*cancel*/) {
    guarded({kTag, "Form_UnLoad"}, [this] { release(); });
}

int frmInventory_Serial::placeholders() const {
    int count = 0;
    for (int row = 1; row <= grdInv.dataRows(); ++row)
        count += grdInv.rawText(row, kSerial) == kPlaceholder ? 1 : 0;
    return count;
}

// A placeholder is a row of the store like any other, and stays there when the screen is left.
void frmInventory_Serial::showState() {
    const int rows = grdInv.dataRows();
    grdInv.setStatusText(counted(rows, "serial number") + (placeholders() > 0 ? "; XXXX is kept as a number until you type over it" : ""));
}

std::int64_t frmInventory_Serial::inStock() const {
    const auto stock = openDirect(Sql("SELECT Quantity AS Tot from Stock WHERE SKU = '") + sku_ + "' AND MatrixSKU = '" + matrixSku_ + "'");
    return stock->Eof() ? 0 : (*stock)["Tot"].Value().toInteger();
}

void frmInventory_Serial::cmdAdd_Click() {
    guarded({kTag, "cmdAdd_Click"}, [this] {
        if (rsSerials == nullptr)
            return; // the numbers could not be loaded
        const std::int64_t tot = inStock();
        // A stock of exactly 0 passes: such an item takes numbers without limit.
        if (tot != 0 && tot <= grdInv.dataRows()) {
            desk().message("You only have " + std::to_string(tot) +
                               " quantity in stock. You will have to make an adjustment prior to adding this serial",
                           kProduct);
            return;
        }
        addSerial();
    });
}

void frmInventory_Serial::addSerial() {
    try {
        grdInv.addRow({sku_, matrixSku_, kPlaceholder});
    } catch (const db::DbError&) {
        grdInv_Error();
        return;
    }
    grdInv.setCurrent(grdInv.dataRows(), kSerial);
    grdInv.showCurrent();
    grdInv.setFocus();
    showState();
}

void frmInventory_Serial::cmdDelete_Click() {
    if (!grdInv.selected())
        return;
    WrittenRows rows({"StockSerials", {"SerialNo"}}, Sql("SKU = '") + sku_ + "' AND MatrixSKU = '" + matrixSku_ + "'");
    try {
        grdInv.removeRow(grdInv.row());
    } catch (const db::DbError&) {
        grdInv_Error();
        return;
    }
    showState();
    if (rows.compare())
        offerUndo(undoLine, {kTag, "cmdDelete_Click"}, "Serial number " + rows.was("SerialNo").toText() + " deleted.", rows,
                  [this] { Form_Load(); });
}

// Whatever the store refused: the list is read anew, so that the refused number disappears.
void frmInventory_Serial::grdInv_Error() {
    desk().message("That entry would invalidate your unique item serial numbers", kProduct);
    Form_Load();
}

} // namespace merchantry::inventory
