#include "catalog/supplierspage.h"

#include "app/db/ado/transaction.h"
#include "base/counted.h"
#include "base/numbers.h"
#include "base/text.h"
#include "ui/calls.h"
#include "ui/desk.h"

#include <algorithm>
#include <cmath>

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

enum SupplierColumn { kParent, kMatrix, kSupplier, kCost, kMinOrder, kPriority, kPartNo, kIndex };

std::string behindDollar(const std::string& text) {
    return text.starts_with("$") ? text.substr(1) : text;
}

double numberIn(const std::string& text) {
    return numberOf(text).value_or(numericPrefix(text));
}

} // namespace

SuppliersPage::SuppliersPage(ItemScreen& screen)
    : ItemPage(screen, "Suppliers", 1), lblSupRetailPrice(screen.form(), "lblSupRetailPrice"), grdSuppliers(screen.form(), "grdSuppliers"),
      cmdAddNewSupplier(screen.form(), "cmdAddNewSupplier", "&Add New"), cmdDeleteSupplier(screen.form(), "cmdDeleteSupplier", "&Delete"),
      imgArrowUp(screen.form(), "imgArrowUp", "arrow-up", "Move the supplier up (Alt+Up)"),
      imgArrowDown(screen.form(), "imgArrowDown", "arrow-down", "Move the supplier down (Alt+Down)") {
    cmdDeleteSupplier.isDanger = true;
    using Format = GridColumn::Format;
    grdSuppliers.setColumns({{.heading = "Parent", .fixedWidth = true},
                             {.heading = "Matrix", .fixedWidth = true},
                             {.heading = "Supplier", .editor = GridColumn::Editor::Combo, .characters = 24},
                             {.heading = "Cost", .format = Format::Currency, .characters = 9},
                             {.heading = "Min Order", .format = Format::Number},
                             {.heading = "Priority", .format = Format::Number},
                             {.heading = "Part #"},
                             {.heading = "", .hidden = true}});
    grdSuppliers.emptyText = "No supplier delivers this item yet.";
    grdSuppliers.setToolTip("What is typed over in the column Matrix is not kept: the row belongs to this item.");
    grdSuppliers.beforeEdit = calls(this, &SuppliersPage::grdSuppliers_BeforeEdit);
    grdSuppliers.afterEdit = calls(this, &SuppliersPage::grdSuppliers_AfterEdit);
    grdSuppliers.error = answers(this, &SuppliersPage::grdSuppliers_Error);
    grdSuppliers.afterRefresh = [this] { guarded({kItemsTag, "grdSuppliers_AfterDataRefresh"}, [this] { showSupplierCount(); }); };
    cmdAddNewSupplier.click = [this] { cmdAddNewSupplier_Click(); };
    cmdDeleteSupplier.click = [this] { cmdDeleteSupplier_Click(); };
    imgArrowUp.click = [this] { moveSupplier(-1); };
    imgArrowDown.click = [this] { moveSupplier(1); };
}

Item SuppliersPage::item() {
    return column({
        row({head(), stretch(), figure("Retail Price:", lblSupRetailPrice)}),
        row({at(grdSuppliers).stretched(), column({at(imgArrowUp), at(imgArrowDown), stretch()})}).stretched(),
        buttons({at(cmdAddNewSupplier), gap(), at(cmdDeleteSupplier), stretch(), at(cmdExit)}),
    });
}

void SuppliersPage::showRetailPrice(const std::string& price) {
    lblSupRetailPrice.setCaption("$" + price);
}

void SuppliersPage::setFocus() {
    grdSuppliers.setFocus();
}

void SuppliersPage::release() {
    grdSuppliers.bind(nullptr);
    closeRows(supplierRows_);
}

void SuppliersPage::pressArrow(bool up) {
    pressIfShown(up ? imgArrowUp : imgArrowDown);
}

void SuppliersPage::populate() {
    showSKU();
    showRetailPrice(std::string(trimmed(screen_.retailPrice())));
    if (std::any_of(suppliers_.begin(), suppliers_.end(),
                    [](const SupplierRow& row) { return row.Deleted ? row.InDatabase : row.Dirty || !row.InDatabase; }))
        suppliersDropped_ = true;
    supplierRows_ = openUpdatable("bsp_SupplierMatrixDetailLookup", itemKey());
    grdSuppliers.bind(nullptr);
    fillSupplierChoices();
    suppliers_.clear();
    for (; !supplierRows_->Eof(); supplierRows_->MoveNext())
        takeSupplier(*supplierRows_);
    ++supplierReadings_;
    showSupplierRows();
    showSupplierCount();
}

// Those that are not deleted, in their order in memory.
void SuppliersPage::showSupplierRows() {
    grdSuppliers.setDataRows(0);
    for (std::size_t index = 0; index < suppliers_.size(); ++index)
        if (!suppliers_[index].Deleted) {
            grdSuppliers.setDataRows(grdSuppliers.dataRows() + 1);
            PopulateSupplierRow(grdSuppliers.dataRows(), static_cast<int>(index));
        }
}

void SuppliersPage::fillSupplierChoices() {
    GridColumn column = grdSuppliers.column(kSupplier);
    column.choices.clear();
    DefaultSupplier = -1;
    const auto suppliers = openDirect(supplierChoices());
    for (; !suppliers->Eof(); suppliers->MoveNext()) {
        if (column.choices.empty())
            DefaultSupplier = static_cast<int>((*suppliers)["SupID"].Value().toInteger());
        column.choices.emplace_back((*suppliers)["Supplier"].text(), (*suppliers)["SupID"].text());
    }
    grdSuppliers.setColumn(kSupplier, std::move(column));
}

void SuppliersPage::takeSupplier(db::Recordset& rows) {
    SupplierRow row;
    row.SKU = rows["SKU"].text();
    row.MatrixSKU = rows["MatrixSKU"].text();
    row.SupID = row.OldSupID = rows["SupID"].Value().toInt16();
    row.Cost = row.OldCost = rows["Cost"].Value().toCurrency();
    row.MinOrder = rows["MinOrder"].Value().toInt16();
    row.Priority = rows["Priority"].Value().toInt16();
    row.PartNo = rows["PartNo"].isNull() ? "0" : rows["PartNo"].text();
    row.InDatabase = true;
    suppliers_.push_back(std::move(row));
}

void SuppliersPage::PopulateSupplierRow(int GridRow, int Index) {
    const SupplierRow& row = suppliers_.at(static_cast<std::size_t>(Index));
    grdSuppliers.setText(GridRow, kParent, row.SKU);
    grdSuppliers.setText(GridRow, kMatrix, row.MatrixSKU);
    grdSuppliers.setText(GridRow, kSupplier, std::to_string(row.SupID));
    grdSuppliers.setText(GridRow, kCost, row.Cost.toDisplay());
    grdSuppliers.setText(GridRow, kMinOrder, std::to_string(row.MinOrder));
    grdSuppliers.setText(GridRow, kPriority, std::to_string(row.Priority));
    grdSuppliers.setText(GridRow, kPartNo, row.PartNo);
    grdSuppliers.setText(GridRow, kIndex, std::to_string(Index));
}

void SuppliersPage::showSupplierCount() {
    if (suppliersDropped_) {
        grdSuppliers.setStatusText("The item was read again: changes of its suppliers that were not saved yet are gone.");
        return;
    }
    const int rows = grdSuppliers.dataRows();
    grdSuppliers.setStatusText(counted(rows, "supplier") +
                               ". They are saved when you leave the item; Adjust and a change in the price matrix read them again.");
}

// The position in memory of a row of the grid; -1 when it has none.
int SuppliersPage::supplierAt(int gridRow) const {
    if (grdSuppliers.rows() != nullptr || gridRow < 1 || gridRow > grdSuppliers.dataRows())
        return -1;
    return static_cast<int>(Value(grdSuppliers.rawText(gridRow, kIndex)).toInteger());
}

void SuppliersPage::grdSuppliers_BeforeEdit(int row, int column, bool& cancel) {
    cancel = column == kParent || column == kPriority;
    if (column == kCost)
        LastCost.remember(grdSuppliers.rawText(row, kCost));
    if (column == kMinOrder)
        LastMinOrder.remember(grdSuppliers.rawText(row, kMinOrder));
}

void SuppliersPage::grdSuppliers_AfterEdit(int row, int column) {
    const int index = supplierAt(row);
    if (index < 0)
        return;
    suppliersDropped_ = false;
    showSupplierCount();
    const bool taken = guarded({kItemsTag, "grdSuppliers_AfterEdit"}, [&] {
        warnOfCost(row);
        takeSupplierCell(suppliers_[static_cast<std::size_t>(index)], row, column);
    });
    if (!taken)
        PopulateSupplierRow(row, index);
}

void SuppliersPage::warnOfCost(int row) {
    const std::string cost = grdSuppliers.rawText(row, kCost);
    const std::string price = behindDollar(screen_.retailPrice());
    if (numberIn(cost) > numberIn(price))
        desk().message("Please be aware that the cost of $" + behindDollar(cost) +
                           " you have entered for this product is greater than the retail price of $" + price + " that you have assigned",
                       kProduct);
}

void SuppliersPage::takeSupplierCell(SupplierRow& entry, int row, int column) {
    const std::string text = grdSuppliers.rawText(row, column);
    switch (column) {
    case kSupplier:
        entry.SupID = Value(text).toInt16();
        break;
    case kCost:
        if (!isNumeric(text))
            return putCostBack(entry, row, "Cost must be numeric. Please reenter.");
        if (text != entry.Cost.toDisplay()) // what stands there unchanged keeps decimals that it does not show
            entry.Cost = amountIn(text);
        break;
    case kMinOrder:
        if (!isNumeric(text))
            return putMinOrderBack(entry, row, "Minimum oreder quanity must be numeric. Please reenter.");
        if (const double number = *numberOf(text); std::trunc(number) != number)
            return putMinOrderBack(entry, row, "Minimum oreder quanity must be an integral number. Please reenter.");
        entry.MinOrder = toInt16(*numberOf(text));
        break;
    case kPartNo:
        entry.PartNo = text;
        break;
    default:
        break;
    }
    entry.Dirty = true;
}

// The cell gets the value before. Where that was 0 it is the last one that was not, maybe of another row: what is shown is what is saved.
void SuppliersPage::putCostBack(SupplierRow& entry, int row, const std::string& sentence) {
    desk().message(sentence, kPofessional, MessageIcon::Information);
    grdSuppliers.setText(row, kCost, LastCost.last.toDisplay());
    if (entry.Cost.toDisplay() == LastCost.last.toDisplay())
        return;
    entry.Cost = LastCost.last;
    entry.Dirty = true;
}

void SuppliersPage::putMinOrderBack(SupplierRow& entry, int row, const std::string& sentence) {
    desk().message(sentence, kPofessional, MessageIcon::Information);
    grdSuppliers.setText(row, kMinOrder, LastMinOrder.last.toText());
    if (Currency::fromInteger(entry.MinOrder) == LastMinOrder.last)
        return;
    entry.MinOrder = toInt16(LastMinOrder.last.toDouble());
    entry.Dirty = true;
}

void SuppliersPage::cmdAddNewSupplier_Click() {
    guarded({kItemsTag, "cmdAddNewSupplier_Click"}, [this] {
        if (DefaultSupplier == -1) {
            desk().message("No suppliers found in the database. The requested operation cannot proceed.", kProduct);
            return;
        }
        const int before = supplierAt(grdSuppliers.dataRows());
        SupplierRow row;
        row.SKU = modMain().CurrentSKU;
        row.MatrixSKU = modMain().CurrentMatrixSKU;
        row.SupID = row.OldSupID = toInt16(DefaultSupplier);
        row.MinOrder = 1;
        row.Priority = toInt16(before < 0 ? 1 : suppliers_[static_cast<std::size_t>(before)].Priority + 1);
        suppliers_.push_back(std::move(row));
        grdSuppliers.setDataRows(grdSuppliers.dataRows() + 1);
        PopulateSupplierRow(grdSuppliers.dataRows(), static_cast<int>(suppliers_.size()) - 1);
        grdSuppliers.setCurrent(grdSuppliers.dataRows(), kSupplier);
        grdSuppliers.setFocus();
        suppliersDropped_ = false;
        showSupplierCount();
    });
}

void SuppliersPage::cmdDeleteSupplier_Click() {
    guarded({kItemsTag, "cmdDeleteSupplier_Click"}, [this] {
        const int index = supplierAt(grdSuppliers.row());
        if (index < 0) {
            desk().message("Please select a valid supplier to remove", kProduct);
            return;
        }
        SupplierRow& entry = suppliers_[static_cast<std::size_t>(index)];
        const std::string name = grdSuppliers.text(grdSuppliers.row(), kSupplier);
        entry.Deleted = true;
        grdSuppliers.removeRow(grdSuppliers.row());
        suppliersDropped_ = false;
        showSupplierCount();
        screen_.undoLine().offer("Supplier " + name + " at " + entry.Cost.toDisplay() + " removed.",
                                 [this, index, reading = supplierReadings_] { return putSupplierBack(index, reading); });
    });
}

// Where it stood among the others; nothing is written before the item is left.
std::string SuppliersPage::putSupplierBack(int index, int reading) {
    if (reading != supplierReadings_)
        return "The suppliers were read again meanwhile. Nothing was put back.";
    suppliers_[static_cast<std::size_t>(index)].Deleted = false;
    showSupplierRows();
    for (int row = 1; row <= grdSuppliers.dataRows(); ++row)
        if (supplierAt(row) == index)
            grdSuppliers.setCurrent(row, kSupplier);
    showSupplierCount();
    return "";
}

void SuppliersPage::moveSupplier(int step) {
    const int row = grdSuppliers.row();
    const int here = supplierAt(row);
    const int there = supplierAt(row + step);
    if (here < 0 || there < 0)
        return;
    exchange(suppliers_[static_cast<std::size_t>(here)], suppliers_[static_cast<std::size_t>(there)]);
    PopulateSupplierRow(row, here);
    PopulateSupplierRow(row + step, there);
    grdSuppliers.setCurrent(row + step, grdSuppliers.col());
}

bool SuppliersPage::ValidateSupplierMatrix() {
    std::vector<const SupplierRow*> shown;
    for (int row = 1; row <= grdSuppliers.dataRows(); ++row)
        if (const int index = supplierAt(row); index >= 0)
            shown.push_back(&suppliers_[static_cast<std::size_t>(index)]);
    const auto fault = faultIn(shown);
    if (!fault)
        return true;
    grdSuppliers.setCurrent(fault->row, grdSuppliers.col());
    desk().message(fault->message, kProduct, MessageIcon::Information);
    grdSuppliers.setFocus();
    return false;
}

bool SuppliersPage::SaveSupplierMatrix() {
    return guarded({"frmItems", "SaveSupplierMatrix"}, [this] {
        renumber(suppliers_);
        std::vector<SupplierRow> rows = suppliers_; // stays as it is when a statement fails
        db::Transaction transaction(modMain().Conn);
        // Deletes first, so that a new row may take the key that a deleted one held.
        for (SupplierRow& row : rows)
            if (row.InDatabase && row.Deleted)
                deleteSupplier(row);
        for (const SupplierStep& step : stepsToWrite(rows))
            writeSupplier(rows[step.row], step.parked);
        transaction.commit();
        suppliers_ = std::move(rows);
    });
}

void SuppliersPage::deleteSupplier(SupplierRow& row) {
    modMain().Conn->Execute(Sql("sp_DeleteSupplierMatrixDetail '") + row.SKU + "', '" + row.MatrixSKU + "', " + int{row.OldSupID} + ", " +
                            row.OldCost);
    row.InDatabase = false;
}

// At its own cost, or parked at one that no row has while another takes the key that it leaves.
void SuppliersPage::writeSupplier(SupplierRow& row, const std::optional<Currency>& parked) {
    const Currency cost = parked.value_or(row.Cost);
    const Sql now = Sql() + int{row.SupID} + ", " + cost + ", " + int{row.MinOrder} + ", " + int{row.Priority} + ", '" + row.PartNo + "'";
    if (row.InDatabase)
        modMain().Conn->Execute(Sql("sp_UpdateSupplierMatrixDetail '") + row.SKU + "', '" + row.MatrixSKU + "', " + int{row.OldSupID} +
                                ", " + row.OldCost + ", " + now);
    else
        modMain().Conn->Execute(Sql("sp_InsertSupplierMatrixDetail '") + row.SKU + "', '" + row.MatrixSKU + "', " + now);
    row.InDatabase = true;
    row.Dirty = parked.has_value();
    row.OldSupID = row.SupID;
    row.OldCost = cost;
}

void SuppliersPage::grdSuppliers_Error() {
    guarded({kItemsTag, "grdSuppliers_Error"}, [this] {
        desk().message("This entry would invalidate your supplier matrix! Please check your entry and try again.", kProduct);
        suppliers_.clear();
        ++supplierReadings_;
        supplierRows_ = openUpdatable("bsp_SupplierMatrixDetailLookup", itemKey());
        grdSuppliers.bind(supplierRows_.get());
    });
}

} // namespace merchantry::catalog
