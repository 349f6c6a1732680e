#include "catalog/pricespage.h"

#include "ui/calls.h"
#include "ui/desk.h"

#include <algorithm>

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

enum PriceColumn { kParent, kMatrix, kTier, kQuantity, kPrice };

} // namespace

PricesPage::PricesPage(ItemScreen& screen)
    : ItemPage(screen, "Price", 2), lblRetailUnitPriceAmt(screen.form(), "lblRetailUnitPriceAmt"),
      lblPriceCostAmt(screen.form(), "lblPriceCostAmt"), lblCurCostAmt(screen.form(), "lblCurCostAmt"),
      lblPriceSaleAmt(screen.form(), "lblPriceSaleAmt"), lbxTier(screen.form(), "lbxTier"), grdPriceMatrix(screen.form(), "grdPriceMatrix"),
      cmdAddPriceMatrixItem(screen.form(), "cmdAddPriceMatrixItem", "Add"), cmdPriceDelete(screen.form(), "cmdPriceDelete", "Delete"),
      cmdSales(screen.form(), "cmdSales", "View Sales") {
    cmdPriceDelete.isDanger = true;
    shapeGrid();
    grdPriceMatrix.beforeEdit = calls(this, &PricesPage::grdPriceMatrix_BeforeEdit);
    grdPriceMatrix.validateEdit = [this](int row, int, const std::string&, bool&) {
        editedPrices_ = pricesOfTier(static_cast<int>(grdPriceMatrix.value(row, kTier).toInteger()));
    };
    grdPriceMatrix.afterEdit = [this](int row, int column) {
        guarded({kItemsTag, "grdPriceMatrix_AfterEdit"}, [&] { grdPriceMatrix_AfterEdit(row, column); });
    };
    grdPriceMatrix.error = answers(this, &PricesPage::grdPriceMatrix_Error);
    lbxTier.setToolTip("After Adjust each tier stands here twice; both entries of a name mean the same tier.");
    cmdPriceDelete.setToolTip("Deletes the selected row at once, also the retail price, without which the price on General is not kept.");
    lblPriceSaleAmt.setToolTip("The price of the sale that ends last, also when it has not begun yet, as it was when the item was read");
    lbxTier.click = [this] { lbxTier_Click(); };
    cmdAddPriceMatrixItem.click = [this] { cmdAddPriceMatrixItem_Click(); };
    cmdPriceDelete.click = [this] { cmdPriceDelete_Click(); };
    cmdSales.click = [] {
        if (modMain().doors.ItemSales)
            modMain().doors.ItemSales();
    };
}

void PricesPage::shapeGrid() {
    using Format = GridColumn::Format;
    grdPriceMatrix.setColumns({{.heading = "Parent", .fixedWidth = true},
                               {.heading = "Matrix", .fixedWidth = true},
                               {.heading = "Tier", .format = Format::Number},
                               {.heading = "Qty >=", .format = Format::Number},
                               {.heading = "Unit Price", .format = Format::Currency}});
    grdPriceMatrix.emptyText = "This tier has no prices for the item.";
}

Item PricesPage::item() {
    return column({
        row({head(), stretch()}),
        row({fields({field("&Tier:", lbxTier).wide(12)}), gap(), stretch(), figure("Retail Unit Price:", lblRetailUnitPriceAmt),
             figure("Weighted Cost:", lblPriceCostAmt), figure("Weighted Cost (Current):", lblCurCostAmt),
             figure("Sale Price:", lblPriceSaleAmt)}),
        at(grdPriceMatrix).stretched(),
        buttons({at(cmdAddPriceMatrixItem), at(cmdSales), gap(), at(cmdPriceDelete), stretch(), at(cmdExit)}),
    });
}

void PricesPage::release() {
    grdPriceMatrix.bind(nullptr);
    closeRows(priceRows_);
}

void PricesPage::showRetailPrice(const std::string& price) {
    lblRetailUnitPriceAmt.setCaption("$" + price);
}

void PricesPage::reloadShown() {
    reloadPrices(selectedTier());
}

void PricesPage::reloadAtPosition() {
    reloadPrices(lbxTier.listIndex() + 1);
}

void PricesPage::populate() {
    showSKU();
    showRetailPrice(screen_.retailPrice());
    lblPriceCostAmt.setCaption(screen_.cost());
    const auto tiers = openDirect(tierChoices());
    tiers_.clear();
    int retail = 0;
    for (; !tiers->Eof(); tiers->MoveNext()) {
        const std::string tier = (*tiers)["TierName"].text();
        if (tier == "Retail")
            retail = static_cast<int>(tiers_.size());
        tiers_.emplace_back(tier, (*tiers)["TierID"].text());
        lbxTier.add(tier);
    }
    lbxTier.setListIndex(retail);
    reloadPrices(retail + 1);
    showSale();
}

// Of the tier with this id. Some callers take a position in the list plus 1 for the id, which it is while no tier was ever deleted.
void PricesPage::reloadPrices(int tier) {
    auto key = itemKey();
    key.push_back(intParameter("Tier", tier));
    grdPriceMatrix.bind(nullptr);
    closeRows(priceRows_);
    priceRows_ = openUpdatable("bsp_PriceMatrixGrid", key);
    grdPriceMatrix.bind(priceRows_.get());
    grdPriceMatrix.setStatusText(selectedTier() == tier || lbxTier.listIndex() < 0
                                     ? "Each cell is saved as you leave it, and the whole item is read again then."
                                     : "These are the prices of tier " + std::to_string(tier) + ". Pick \"" + lbxTier.text() +
                                           "\" again to see its own.");
}

void PricesPage::showSale() {
    const auto sales = openList("bsp_SalesGrid", itemKey());
    const bool running =
        !sales->Eof() && (*sales)["DateTo"].Value().is<Date>() && (*sales)["DateTo"].Value().as<Date>() >= desk().clock().now();
    lblPriceSaleAmt.setCaption(running ? "$" + (*sales)["SalePrice"].text() : "");
}

// The id of the tier selected by its name; -1 when no tier bears it.
int PricesPage::selectedTier() const {
    for (const auto& [name, id] : tiers_)
        if (name == lbxTier.text())
            return static_cast<int>(Value(id).toInteger());
    return -1;
}

void PricesPage::lbxTier_Click() {
    guarded({kItemsTag, "lbxTier_Click"}, [this] {
        if (const int tier = selectedTier(); tier >= 0)
            reloadPrices(tier);
    });
}

void PricesPage::cmdAddPriceMatrixItem_Click() {
    guarded({kItemsTag, "cmdAddPriceMatrixItem_Click"}, [this] {
        if (grdPriceMatrix.rows() == nullptr)
            reloadPrices(selectedTier()); // the last reading failed: a row of an unbound grid would go nowhere
        const bool added =
            grdPriceMatrix.addRow({modMain().CurrentSKU, modMain().CurrentMatrixSKU, std::to_string(selectedTier()), "0", "1"});
        if (!added)
            return;
        grdPriceMatrix.setCurrent(grdPriceMatrix.dataRows(), kQuantity);
        grdPriceMatrix.setFocus();
    });
}

void PricesPage::grdPriceMatrix_BeforeEdit(int row, int column, bool& cancel) {
    cancel = column <= kTier;
    if (column == kPrice)
        LastPrice.remember(grdPriceMatrix.rawText(row, kPrice));
}

void PricesPage::grdPriceMatrix_AfterEdit(int row, int column) {
    const int tier = static_cast<int>(grdPriceMatrix.value(row, kTier).toInteger());
    takeEditedPrice(row, column);
    if (editedPrices_)
        offerPriceUndo(*editedPrices_, "grdPriceMatrix_AfterEdit", tier);
    editedPrices_.reset();
}

void PricesPage::takeEditedPrice(int row, int column) {
    if (column == kPrice && grdPriceMatrix.value(row, kPrice).toCurrency().units() == 0) {
        desk().message("Price cannot be zero. Please reenter.", kPofessional, MessageIcon::Information);
        grdPriceMatrix.setText(row, kPrice, LastPrice.last.toText());
        return;
    }
    if (column == kTier && grdPriceMatrix.text(row, kTier).empty()) {
        desk().message("Please enter a valid price tier name.", kPofessional, MessageIcon::Information);
        grdPriceMatrix.setText(row, kTier, "Edit Tier Name");
        return;
    }
    readItemAgain(grdPriceMatrix.rawText(row, kQuantity), column);
}

// The whole screen, with the tier that was selected; the break that starts at this quantity stays the current row.
void PricesPage::readItemAgain(const std::string& quantity, int column) {
    const int position = lbxTier.listIndex();
    lbxTier.clear();
    screen_.readAgain();
    if (position >= 0 && lbxTier.count() > 0)
        lbxTier.setListIndex(position % lbxTier.count()); // a list that held each tier twice holds it once now
    for (int row = 1; row <= grdPriceMatrix.dataRows(); ++row)
        if (grdPriceMatrix.rawText(row, kQuantity) == quantity)
            grdPriceMatrix.setCurrent(row, column);
}

void PricesPage::cmdPriceDelete_Click() {
    guarded({kItemsTag, "cmdPriceDelete_Click"}, [this] {
        if (!grdPriceMatrix.selected()) {
            desk().message("You must first select a row to delete.", kProduct);
            return;
        }
        const int tier = static_cast<int>(grdPriceMatrix.value(grdPriceMatrix.row(), kTier).toInteger());
        WrittenRows rows = pricesOfTier(tier);
        grdPriceMatrix.removeRow(grdPriceMatrix.row());
        offerPriceUndo(rows, "cmdPriceDelete_Click", tier);
    });
    screen_.pricesWritten();
}

// "Retail from 10 on"; the price of one piece is just that of its tier.
std::string PricesPage::breakNamed(int tier, const std::string& quantity) const {
    const auto found = std::find_if(tiers_.begin(), tiers_.end(), [&](const auto& one) { return Value(one.second).toInteger() == tier; });
    const std::string name = found == tiers_.end() ? "tier " + std::to_string(tier) : found->first;
    return quantity == "0" || quantity == "1" ? name : name + " from " + quantity + " on";
}

void PricesPage::offerPriceUndo(WrittenRows& rows, const std::string& procedure, int tier) {
    if (!rows.compare())
        return;
    const std::string what = "Price of " + breakNamed(tier, rows.was("Quantity").toText());
    const std::string price = rows.was("Price").toCurrency().toDisplay();
    std::string sentence = what + ", " + price + ", deleted.";
    if (!rows.now("Price").isNull() && rows.was("Quantity") == rows.now("Quantity"))
        sentence = what + " changed from " + price + " to " + rows.now("Price").toCurrency().toDisplay() + ".";
    else if (!rows.now("Price").isNull())
        sentence = what + " begins at " + rows.now("Quantity").toText() + " now.";
    offerUndo(screen_.undoLine(), {kItemsTag, procedure}, sentence, rows, [this] { screen_.pricesPutBack(); });
}

void PricesPage::grdPriceMatrix_Error() {
    guarded({kItemsTag, "grdPriceMatrix_Error"}, [this] {
        desk().message("This entry would invalidate some of your pricing data! Please check your entry and try again.", kProduct);
        if (priceRows_ != nullptr)
            priceRows_->CancelUpdate();
        reloadAtPosition();
    });
}

} // namespace merchantry::catalog
