#include "purchasing/frmPurchaseOrders_Edit.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/characters.h"
#include "base/counted.h"
#include "base/numbers.h"
#include "base/text.h"
#include "purchasing/frmPOItemHistory.h"
#include "purchasing/openlines.h"
#include "purchasing/orders.h"
#include "ui/calls.h"
#include "ui/desk.h"
#include "ui/longwork.h"
#include "ui/waiting.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace merchantry::purchasing {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kTag = "frmPurchaseOrders_Edit";
enum Column { kMemorize, kSku, kName, kPartNo, kQty, kOpenQty, kCost, kExt, kIndex };

constexpr std::size_t kPicksAtOnce = 20;
constexpr std::size_t kLongestPartNo = 50; // that the store holds

} // namespace

frmPurchaseOrders_Edit::frmPurchaseOrders_Edit(Desk& desk) : Form(desk, "frmPurchaseOrders_Edit", "Edit Purchase Order") {
    setIcon("items");
    formatGrid();
    grdPOItems.emptyText = "No items in this order yet. Add Items offers what the supplier delivers.";
    cmdDeleteItem.isDanger = true;
    cmdDeleteItem.setToolTip(
        "Takes the current line away, without a question. A line that was changed before comes back when it is saved.");
    cmdViewHist.setToolTip("What was received and cancelled of the current line");
    cmdCancel.isCancel = true;
    cmdCancel.setToolTip("Leaves without saving. What Print saved stays, and the list of orders tells it when it is read again.");
    cmdOK.isDefault = true;

    grdPOItems.beforeEdit = calls(this, &frmPurchaseOrders_Edit::grdPOItems_BeforeEdit);
    grdPOItems.afterEdit = calls(this, &frmPurchaseOrders_Edit::grdPOItems_AfterEdit);
    cmdAddItem.click = [this] {
        touched(grdPOItems);
        cmdAddItem_Click();
    };
    cmdDeleteItem.click = [this] {
        touched(grdPOItems);
        cmdDeleteItem_Click();
    };
    cmdViewHist.click = [this] { cmdViewHist_Click(); };
    cmdPrint.click = [this] { cmdPrint_Click(); };
    cmdCancel.click = [this] { unload(); };
    cmdOK.click = [this] { cmdOK_Click(); };

    asksBeforeLeaving();
    setLayout(column({
        row({title(lblHeading), stretch(), figure("Total", lblTotal)}),
        supplier_.item(),
        at(grdPOItems).high(12).wide(130).stretched(),
        buttons({at(cmdAddItem), at(cmdViewHist), at(cmdPrint), gap(), at(cmdDeleteItem), stretch(), at(cmdCancel), at(cmdOK)}),
        undoLine.item(),
    }));
    // Number, supplier, "on" for looking only.
    offer("ShowOrder", [this](const std::vector<std::string>& arguments) {
        const auto argument = [&](std::size_t at) { return at < arguments.size() ? arguments[at] : std::string(); };
        PONumber = toInt32(numericPrefix(argument(0)));
        SupplierID = toInt16(numericPrefix(argument(1)));
        ReadOnly = argument(2) == "on";
        this->desk().showModal(*this);
        unload();
        return std::string(DialogResult ? "on" : "off");
    });
}

void frmPurchaseOrders_Edit::formatGrid() {
    using Format = GridColumn::Format;
    grdPOItems.setColumns({{.heading = "Memorize", .editor = GridColumn::Editor::Check, .fixedWidth = true},
                           {.heading = "SKU", .fixedWidth = true},
                           {.heading = "Name", .characters = 24},
                           {.heading = "Supplier Part #", .characters = 13},
                           {.heading = ReadOnly ? "PO Qty" : "Qty", .format = Format::Number, .characters = 5},
                           {.heading = "Open Qty", .format = Format::Number, .hidden = !ReadOnly},
                           {.heading = "Cost", .format = Format::Currency, .characters = 6},
                           {.heading = "Ext.", .format = Format::Currency, .characters = 8},
                           {.heading = "Index", .hidden = true}});
    grdPOItems.setToolTip(ReadOnly ? "Ext. and the total count what is still open. A tick under Memorize gives cost and part number to the "
                                     "supplier's data when you leave with OK."
                                   : "Type over part number, quantity and cost. A tick under Memorize gives cost and part number to the "
                                     "supplier's data when you leave with OK.");
}

void frmPurchaseOrders_Edit::Form_Load() {
    guarded({"MR_frmPurchaseOrders_Edit", "Form_Load"}, [this] {
        formatGrid();
        ShowSupplierInfo();
        if (PONumber != kNewOrder)
            LoadData();
        fillGrid();
        if (grdPOItems.dataRows() > 0)
            grdPOItems.setCurrent(1, kPartNo);
        setCaption(PONumber == kNewOrder ? "Create Purchase Order" : ReadOnly ? "View Purchase Order" : "Edit Purchase Order");
        showHeading();
        cmdAddItem.setEnabled(!ReadOnly);
        cmdDeleteItem.setEnabled(!ReadOnly);
        cmdViewHist.setEnabled(ReadOnly);
        cmdPrint.setToolTip(ReadOnly ? "" : "Saves the order first, as it stands");
    });
}

// A new order begins with picking, once its window stands.
void frmPurchaseOrders_Edit::Form_Activate() {
    if (!std::exchange(activated_, true) && PONumber == kNewOrder)
        cmdAddItem_Click();
}

void frmPurchaseOrders_Edit::showHeading() {
    lblHeading.setCaption(PONumber == kNewOrder
                              ? "Create Purchase Order"
                              : (ReadOnly ? "View Purchase Order #" : "Edit Purchase Order #") + std::to_string(PONumber));
}

void frmPurchaseOrders_Edit::ShowSupplierInfo() {
    guarded({kTag, "ShowSupplierInfo"}, [this] {
        const SupplierFrame::Supplier found = supplier_.load(PONumber, PONumber == kNewOrder ? SupplierID : std::int16_t{0});
        SupplierID = found.SupID;
        supplierName_ = found.Name;
    });
}

void frmPurchaseOrders_Edit::LoadData() {
    guarded({kTag, "LoadData"}, [this] {
        const Waiting hourglass(desk());
        const auto rows = openDirect(Sql("sp_GetPOItems ") + PONumber);
        for (; !rows->Eof(); rows->MoveNext()) {
            db::Recordset& row = *rows;
            Line line;
            line.Name = row["Name"].text();
            line.SKU = row["SKU"].text();
            line.MatrixSKU = row["MatrixSKU"].text();
            line.PartNo = row["PartNo"].text();
            line.Qty = row["Qty"].Value().toInt16();
            line.OpenQty = toInt16(line.Qty - row["QtyRecvd"].Value().toNumber() - row["QtyCanceled"].Value().toNumber());
            line.Cost = row["Cost"].Value().toCurrency();
            line.InDatabase = true;
            lines_.push_back(std::move(line));
        }
    });
}

void frmPurchaseOrders_Edit::fillGrid() {
    grdPOItems.setDataRows(static_cast<int>(std::count_if(lines_.begin(), lines_.end(), [](const Line& line) { return !line.Deleted; })));
    int row = 0;
    for (std::size_t index = 0; index < lines_.size(); ++index) {
        if (lines_[index].Deleted)
            continue;
        grdPOItems.setText(++row, kIndex, std::to_string(index));
        showRow(row, lines_[index]);
    }
    showTotal();
}

void frmPurchaseOrders_Edit::showRow(int row, const Line& line) {
    grdPOItems.setText(row, kMemorize, line.Memorize ? "1" : "0");
    grdPOItems.setText(row, kSku, line.MatrixSKU);
    grdPOItems.setText(row, kName, line.Name);
    grdPOItems.setText(row, kPartNo, line.PartNo);
    grdPOItems.setText(row, kQty, std::to_string(line.Qty));
    grdPOItems.setText(row, kOpenQty, std::to_string(line.OpenQty));
    grdPOItems.setText(row, kCost, line.Cost.toText());
    grdPOItems.setText(row, kExt, extension(line).toText());
}

Currency frmPurchaseOrders_Edit::extension(const Line& line) const {
    return line.Cost * std::int64_t{ReadOnly ? line.OpenQty : line.Qty};
}

Currency frmPurchaseOrders_Edit::total() const {
    Currency sum;
    for (const Line& line : lines_)
        if (!line.Deleted)
            sum += extension(line);
    return sum;
}

void frmPurchaseOrders_Edit::showTotal() {
    lblTotal.setCaption(total().toDisplay());
    const int count = grdPOItems.dataRows();
    std::string text = counted(count, "line");
    const auto any = [this](auto what) {
        return std::any_of(lines_.begin(), lines_.end(), [&](const Line& line) { return !line.Deleted && what(line); });
    };
    if (ReadOnly)
        text += ". Ext. and the total count what is still open.";
    else if (count == 0)
        text += ". Print would save the order without a line, and no order is taken away again.";
    else if (any([](const Line& line) {
                 return line.PartNo.find('\'') != std::string::npos || characterCount(line.PartNo) > kLongestPartNo;
             }))
        text += ". A part number with an apostrophe or more than 50 characters keeps the order from being saved: OK would lose what you "
                "changed.";
    else if (any([](const Line& line) { return line.Qty == 0 && !line.InDatabase; }))
        text += ". A new line with quantity 0 is not ordered.";
    else if (unsaved_)
        text += ". OK and Print save what you changed, Cancel does not.";
    grdPOItems.setStatusText(text);
}

// The line that a row of the grid shows; null for no row.
frmPurchaseOrders_Edit::Line* frmPurchaseOrders_Edit::lineAt(int row) {
    if (row < 1 || row > grdPOItems.dataRows())
        return nullptr;
    return &lines_.at(static_cast<std::size_t>(Value(grdPOItems.rawText(row, kIndex)).toInteger()));
}

// --- lines ---

// A line for an item that is picked, with the supplier's terms.
frmPurchaseOrders_Edit::Line frmPurchaseOrders_Edit::lineFor(const ItemPick& item) const {
    Line line;
    line.Name = item.Name;
    line.SKU = item.SKU;
    line.MatrixSKU = item.MatrixSKU;
    line.Qty = price_.DefaultQuantity(SupplierID, item.SKU, item.MatrixSKU);
    line.Cost = price_.UnitCost(SupplierID, item.SKU, item.MatrixSKU, line.Qty);
    line.PartNo = price_.PartNo(SupplierID, item.SKU, item.MatrixSKU, line.Qty, line.Cost);
    line.OpenQty = line.Qty;
    return line;
}

void frmPurchaseOrders_Edit::cmdAddItem_Click() {
    guarded({kTag, "cmdAddItem_Click"}, [this] {
        const auto picked = PickItems(desk(), Sql("sp_GetAllItemsBySupplier ") + int{SupplierID}, supplierName_);
        if (picked.empty())
            return;
        std::set<std::string> listed;
        for (const Line& line : lines_)
            if (!line.Deleted)
                listed.insert(itemKey(line.SKU, line.MatrixSKU));
        std::vector<Line> added;
        std::size_t next = 0;
        const bool all = longWork(desk(), "Looking up the supplier's terms …", [&] {
            for (const std::size_t end = std::min(next + kPicksAtOnce, picked.size()); next < end; ++next)
                if (listed.insert(itemKey(picked[next].SKU, picked[next].MatrixSKU)).second)
                    added.push_back(lineFor(picked[next]));
            return static_cast<int>(next * 100 / picked.size());
        });
        if (!all)
            return; // stopped: nothing is added
        if (const std::size_t duplicates = picked.size() - added.size(); duplicates > 0)
            desk().message("Out of " + std::to_string(picked.size()) + " item(s) you picked, " + counted(duplicates, "is", "are") +
                               " already in the list.",
                           kProduct);
        const int before = grdPOItems.dataRows();
        unsaved_ = unsaved_ || !added.empty();
        lines_.insert(lines_.end(), added.begin(), added.end());
        fillGrid();
        if (grdPOItems.dataRows() > before)
            grdPOItems.setCurrent(before + 1, kQty);
    });
}

void frmPurchaseOrders_Edit::cmdDeleteItem_Click() {
    Line* const line = lineAt(grdPOItems.row());
    if (line == nullptr) {
        desk().message("Please select an item to delete.", kProduct);
        return;
    }
    line->Deleted = true;
    unsaved_ = true;
    grdPOItems.removeRow(grdPOItems.row());
    showTotal();
    undoLine.offer("Line of " + line->MatrixSKU + ", " + std::to_string(line->Qty) + " at " + line->Cost.toDisplay() + ", deleted.",
                   [this, index = static_cast<std::size_t>(line - lines_.data())] { return putLineBack(index); });
}

// Where it stood among the others; nothing is written before the order is saved.
std::string frmPurchaseOrders_Edit::putLineBack(std::size_t index) {
    Line& gone = lines_[index];
    if (std::any_of(lines_.begin(), lines_.end(), [&](const Line& line) {
            return !line.Deleted && itemKey(line.SKU, line.MatrixSKU) == itemKey(gone.SKU, gone.MatrixSKU);
        }))
        return "Item " + gone.MatrixSKU + " was added to the order again. Nothing was put back.";
    gone.Deleted = false;
    fillGrid();
    return "";
}

// --- editing ---

void frmPurchaseOrders_Edit::grdPOItems_BeforeEdit(int row, int column, bool& cancel) {
    cancel = column != kMemorize && (ReadOnly || (column != kPartNo && column != kQty && column != kCost));
    if (column == kQty || column == kCost)
        oldText_ = grdPOItems.rawText(row, column);
}

void frmPurchaseOrders_Edit::grdPOItems_AfterEdit(int row, int column) {
    Line* const line = lineAt(row);
    if (line == nullptr)
        return;
    const std::string typed = grdPOItems.rawText(row, column);
    if (column == kMemorize) {
        line->Memorize = !line->Memorize;
        return;
    }
    const Line before = *line;
    try {
        if (takeCell(*line, column, typed)) {
            unsaved_ = true;
            showRow(row, *line);
            showTotal();
            return;
        }
    } catch (const OverflowError&) { // more than the store can hold is no better than no number
    }
    *line = before;
    desk().message(column == kQty ? "Quantity must be a positive integral number." : "Cost must be numeric.", kProduct);
    grdPOItems.setText(row, column, oldText_);
}

// Puts what was typed into the line; false for what the column does not take. Throws OverflowError for a number that is too large.
bool frmPurchaseOrders_Edit::takeCell(Line& line, int column, const std::string& text) const {
    if (column == kPartNo) {
        line.PartNo = text;
    } else {
        const auto number = numberOf(text);
        if (!number || (column == kQty && (*number != std::floor(*number) || *number < 0)))
            return false;
        if (column == kQty)
            line.Qty = toInt16(*number);
        else
            line.Cost = amountOf(text).value();
        (void)total(); // must stay a number, too
    }
    line.Changed = true;
    return true;
}

void frmPurchaseOrders_Edit::cmdPrint_Click() {
    if (!ReadOnly)
        SavePO();
    guarded({kTag, "cmdPrint_Click"}, [this] { modMain().doors.OrderReport(0, std::to_string(PONumberToPOID(PONumber)), ""); });
}

void frmPurchaseOrders_Edit::cmdViewHist_Click() {
    const Line* const line = lineAt(grdPOItems.row());
    if (line == nullptr) {
        desk().message("Please select an item to view.", kProduct);
        return;
    }
    ShowPOItemHistory(PONumber, line->SKU, line->MatrixSKU);
}

void frmPurchaseOrders_Edit::cmdOK_Click() {
    if (grdPOItems.dataRows() == 0) {
        desk().message("No items found in the purchase order.", kProduct);
        return;
    }
    if (!ReadOnly) {
        SavePO();
        if (gaveUp_)
            return;
    }
    MemorizePO();
    DialogResult = true;
    hide();
}

} // namespace merchantry::purchasing
