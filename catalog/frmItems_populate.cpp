#include "catalog/frmItems.h"

#include "app/modMain.h"
#include "base/numbers.h"
#include "base/text.h"
#include "catalog/profit.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::CommandType;
using db::CursorType;
using db::LockType;
using db::RecordsetPtr;
using db::Sql;

// Everything that fills frmItems from the store.

namespace {

constexpr int kNeverSold = 1900;

std::vector<db::Parameter> itemKey() {
    return {textParameter("SKU", 100, modMain().CurrentSKU), textParameter("MatrixSKU", 100, modMain().CurrentMatrixSKU)};
}

RecordsetPtr openList(const Sql& procedure, const std::vector<db::Parameter>& parameters = {}) {
    return openBroker(procedure, CommandType::StoredProcedure, CursorType::ForwardOnly, LockType::ReadOnly, parameters);
}

RecordsetPtr openUpdatable(const Sql& procedure, const std::vector<db::Parameter>& parameters) {
    return openBroker(procedure, CommandType::StoredProcedure, CursorType::Dynamic, LockType::Optimistic, parameters);
}

// Adds each row's text, with its key as the entry's number.
void fill(ListBox& list, const RecordsetPtr& rows, const std::string& text, const std::string& key) {
    list.clear();
    for (; !rows->Eof(); rows->MoveNext())
        list.add((*rows)[text].text(), static_cast<int>((*rows)[key].Value().toInteger()));
}

int positionOfKey(const ListBox& list, std::int64_t key) {
    int found = -1;
    for (int i = 0; i < list.count(); ++i)
        if (list.entries()[static_cast<std::size_t>(i)].itemData == key)
            found = i;
    return found;
}

Sql whereItem() {
    return Sql("WHERE SKU ='") + modMain().CurrentSKU + "' AND MatrixSKU = '" + modMain().CurrentMatrixSKU + "'";
}

} // namespace

void frmItems::Init_ItemListBoxes() {
    guarded({"MR_frmItems", "Init_ItemListBoxes"}, [this] {
        fill(lbxType, openList("bsp_ItemTypesLookup"), "Description", "TypeID");
        fill(lbxDepartment, openList("bsp_DepartmentsLookup"), "Department", "DepartmentID");
        fill(lbxTaxClass, openList("bsp_TaxClassLookup"), "Description", "TaxID");
        for (int i = 0; i < lbxTaxClass.count(); ++i)
            if (lbxTaxClass.entries()[static_cast<std::size_t>(i)].text == "None")
                TaxNoneIndex = i;
        fill(lbxMatrixGroups, openList("bsp_ItemGroupDefsLookup"), "GroupName", "GroupID");
        const auto parents = openDirect(
            "SELECT DISTINCT SKU FROM Item WHERE (SKU <> '$DROP' AND SKU <> '$CreditPayment' AND SKU <> '$CancelLayaway' AND SKU <> "
            "'$CreditAdjustment' AND SKU <> '$CreditApplication' AND SKU <> '$PAYOUT' AND TypeID <> 4) ORDER BY SKU");
        lbxSplitParentSKU.clear();
        for (; !parents->Eof(); parents->MoveNext())
            lbxSplitParentSKU.add((*parents)[0].text());
    });
}

bool frmItems::FetchItemData() {
    bool found = false;
    guarded({"MR_frmItems", "FetchItemData"}, [&] {
        modMain().ItemRecordset = openUpdatable("bsp_ItemLookup", itemKey());
        found = !modMain().ItemRecordset->Eof();
    });
    return found;
}

void frmItems::Populate_FormData() {
    guarded({"MR_frmItems", "Populate_FormData"}, [this] {
        populateGeneral();
        showCost();
        showPrice();
        showProfit();
        showStock();
        populateSuppliers();
        populatePrices();
        showSale();
        populateSubstitutes();
        populateNotes();
        populateMatrix();
        populateMisc();
    });
}

void frmItems::populateGeneral() {
    db::Recordset& item = *modMain().ItemRecordset;
    const auto type = item["TypeID"].Value().toInteger();
    lbxType.setListIndex(positionOfKey(lbxType, type));
    lbxDepartment.setListIndex(positionOfKey(lbxDepartment, item["DepartmentID"].Value().toInteger()));
    txtName.setText(item["Name"].text());
    modMain().CurrentItemName = item["Name"].text();
    lblSKUVal.setCaption(modMain().CurrentMatrixSKU);
    cbxFoodStamps.setValue(item["FoodStampFlag"].Value().toFlag());
    cbxActive.setValue(item["Active"].Value().toFlag());
    cbxSerialed.setValue(item["SerialFlag"].Value().toFlag());
    lbxTaxClass.setListIndex(positionOfKey(lbxTaxClass, item["TaxID"].Value().toInteger()));
    showNameOnTabs();
}

void frmItems::showCost() {
    const auto cost = openDirect(Sql("SELECT TOP 1 Cost_wt FROM InventoryLedger ") + whereItem() + " ORDER BY PostDate DESC");
    if (!cost->Eof())
        lblCostAmt.setCaption("$" + (*cost)["Cost_wt"].text());
}

void frmItems::showPrice() {
    auto key = itemKey();
    key.push_back(intParameter("Tier", 1));
    const auto prices = openList("bsp_PriceMatrixGrid", key);
    if (!prices->Eof())
        txtPriceAmt.setText((*prices)["Price"].text());
}

void frmItems::showProfit() {
    const std::string& cost = lblCostAmt.caption();
    if (cost.empty() || txtPriceAmt.text().empty() || numericPrefix(cost.substr(1)) <= 0)
        return;
    const int percent = profitPercent(Currency::fromDouble(numericPrefix(txtPriceAmt.text())), Currency::fromText(cost));
    lblProfitPercent.setCaption(std::to_string(percent) + "%");
}

void frmItems::showStock() {
    const auto stock = openList("bsp_ItemStockLookup", itemKey());
    if (!stock->Eof())
        txtStockAmt.setText((*stock)["Quantity"].text());
    db::Recordset& item = *modMain().ItemRecordset;
    const Value sold = item["DateLastSold"].Value();
    lblLastSoldDateVal.setCaption(sold.is<Date>() && sold.as<Date>().year() != kNeverSold ? sold.toText() : "");
    txtReorder.setText(item["Reorder"].text());
    txtRestock.setText(item["Restock"].text());
}

void frmItems::populateSuppliers() {
    lblSuppliersSKU.setCaption(modMain().CurrentSKU);
    lblSupRetailPrice.setCaption("$" + std::string(trimmed(txtPriceAmt.text())));
    supplierRows_ = openUpdatable("bsp_SupplierMatrixDetailLookup", itemKey());
    grdSuppliers.setDataRows(0);
    for (; !supplierRows_->Eof(); supplierRows_->MoveNext()) {
        db::Recordset& row = *supplierRows_;
        const std::string part = row["PartNo"].isNull() ? "0" : row["PartNo"].text();
        grdSuppliers.addRow({row["SKU"].text(), row["MatrixSKU"].text(), row["Supplier"].text(), row["Cost"].text(), row["MinOrder"].text(),
                             row["Priority"].text(), part});
    }
    grdSuppliers.setStatusText(std::to_string(grdSuppliers.dataRows()) + (grdSuppliers.dataRows() == 1 ? " supplier" : " suppliers"));
}

void frmItems::populatePrices() {
    lblPriceSKU.setCaption(modMain().CurrentSKU);
    lblRetailUnitPriceAmt.setCaption("$" + txtPriceAmt.text());
    lblPriceCostAmt.setCaption(lblCostAmt.caption());
    const auto tiers = openDirect("SELECT *, (select count(*) from TierDefs) AS cnt FROM TierDefs ORDER BY TierID");
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
}

void frmItems::reloadPrices(int tier) {
    auto key = itemKey();
    key.push_back(intParameter("Tier", tier));
    grdPriceMatrix.bind(nullptr);
    priceRows_ = openUpdatable("bsp_PriceMatrixGrid", key);
    grdPriceMatrix.bind(priceRows_.get());
}

void frmItems::showSale() {
    const auto sales = openList("bsp_SalesGrid", itemKey());
    const bool running =
        !sales->Eof() && (*sales)["DateTo"].Value().is<Date>() && (*sales)["DateTo"].Value().as<Date>() >= desk().clock().now();
    lblPriceSaleAmt.setCaption(running ? "$" + (*sales)["SalePrice"].text() : "");
}

void frmItems::populateSubstitutes() {
    lblSubsSKU.setCaption(modMain().CurrentSKU);
    grdSubs.bind(nullptr);
    subsRows_ = openUpdatable("bsp_SubsGrid", itemKey());
    grdSubs.bind(subsRows_.get());
}

void frmItems::populateNotes() {
    lblNotesSKU.setCaption(modMain().CurrentSKU);
    const std::string notes = (*modMain().ItemRecordset)["Notes"].text();
    if (!notes.empty())
        txtNotes.setText(notes);
}

void frmItems::populateMatrix() {
    lblMatrixSKU.setCaption(modMain().CurrentSKU);
    grdItemMatrix.bind(nullptr);
    matrixRows_ = openUpdatable("bsp_ItemMatrixGrid", itemKey());
    grdItemMatrix.bind(matrixRows_.get());
}

void frmItems::populateMisc() {
    db::Recordset& item = *modMain().ItemRecordset;
    lblMiscSKU.setCaption(modMain().CurrentSKU);
    lblTagAlongSKU.setCaption(item["TagAlongSKU"].text() + " (" + item["TagAlongMatrixSKU"].text() + ")");
    txtTagAlongQty.setText(item["TagAlongQty"].text());
    const auto message =
        openList("bsp_SalesMessagesLookup", {intParameter("id", static_cast<int>(item["SalesMsgID"].Value().toInteger()))});
    if (!message->Eof() && !(*message)["Message"].text().empty())
        lblSalesMsg.setCaption((*message)["Message"].text());
    showSplit();
}

void frmItems::showSplit() {
    const auto split = openDirect(Sql("SELECT * FROM ItemSplitMatrix WHERE SKU = '") + modMain().CurrentSKU + "' AND MatrixSKU = '" +
                                  modMain().CurrentMatrixSKU + "'");
    if (split->Eof())
        return;
    lbxSplitParentSKU.setListIndex(lbxSplitParentSKU.indexOf((*split)["SplitParentSKU"].text()));
    lbxSplitParentMatrixSKU.setListIndex(lbxSplitParentMatrixSKU.indexOf((*split)["SplitParentMatrixSKU"].text()));
    txtSplitQty.setText((*split)["SplitQuantity"].text());
}

} // namespace merchantry::catalog
