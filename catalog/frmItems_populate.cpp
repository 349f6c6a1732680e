#include "catalog/frmItems.h"

#include "app/db/ado/ahead.h"
#include "app/profit.h"
#include "base/numbers.h"
#include "base/text.h"
#include "catalog/itemscreen.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::Sql;

// Everything that fills frmItems from the store.

namespace {

constexpr int kNeverSold = 1900;

// All that Populate_FormData opens; of the first tier its price and, twice, its grid: choosing the tier and filling the grid both read it.
void readItemAhead(db::Ahead& ahead) {
    const auto key = itemKey();
    const auto ofFirstTier = itemKeyAnd(intParameter("Tier", 1));
    ahead.select(itemCost());
    ahead.call("bsp_PriceMatrixGrid", ofFirstTier);
    ahead.call("bsp_ItemStockLookup", key);
    ahead.call("bsp_SupplierMatrixDetailLookup", key, true);
    ahead.select(supplierChoices());
    ahead.select(tierChoices());
    ahead.call("bsp_PriceMatrixGrid", ofFirstTier, true);
    ahead.call("bsp_PriceMatrixGrid", ofFirstTier, true);
    ahead.call("bsp_SalesGrid", key);
    ahead.call("bsp_SubsGrid", key, true);
    ahead.call("bsp_ItemMatrixGrid", key, true);
    ahead.call("bsp_SalesMessagesLookup",
               {intParameter("id", static_cast<int>((*modMain().ItemRecordset)["SalesMsgID"].Value().toInteger()))});
    ahead.select(itemSplit());
    ahead.read();
}

} // namespace

void frmItems::Init_ItemListBoxes() {
    guarded({kItemsTag, "Init_ItemListBoxes"}, [this] {
        db::Ahead ahead(*modMain().Conn);
        ahead.call("bsp_ItemTypesLookup", {});
        ahead.call("bsp_DepartmentsLookup", {});
        ahead.call("bsp_TaxClassLookup", {});
        ahead.call("bsp_ItemGroupDefsLookup", {});
        ahead.select(splitParents());
        ahead.read();
        fill(lbxType, openList("bsp_ItemTypesLookup"), "Description", "TypeID");
        fill(lbxDepartment, openList("bsp_DepartmentsLookup"), "Department", "DepartmentID");
        fill(lbxTaxClass, openList("bsp_TaxClassLookup"), "Description", "TaxID");
        for (int i = 0; i < lbxTaxClass.count(); ++i)
            if (lbxTaxClass.entries()[static_cast<std::size_t>(i)].text == "None")
                TaxNoneIndex = i;
        matrix_.loadGroups();
        misc_.loadParents();
    });
}

bool frmItems::FetchItemData() {
    bool found = false;
    guarded({kItemsTag, "FetchItemData"}, [&] {
        modMain().ItemRecordset = openUpdatable("bsp_ItemLookup", itemKey());
        found = !modMain().ItemRecordset->Eof();
    });
    return found;
}

void frmItems::Populate_FormData() {
    txtStockAmt.setText(""); // a figure that is not read below must not be written back by leaving the field
    const bool whole = guarded({kItemsTag, "Populate_FormData"}, [this] {
        db::Ahead ahead(*modMain().Conn);
        readItemAhead(ahead);
        populateGeneral();
        showCost();
        showPrice();
        showProfit();
        showStock();
        for (ItemPage* page : pages_)
            page->populate();
        filled_ = true;
    });
    if (!whole)
        desk().status("The item could not be read to its end. If it has a cost but no price, give it a price and open it again.");
    panel.refresh();
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
    const auto cost = openDirect(itemCost());
    if (!cost->Eof())
        lblCostAmt.setCaption("$" + (*cost)["Cost_wt"].text());
}

void frmItems::showPrice() {
    const auto prices = openList("bsp_PriceMatrixGrid", itemKeyAnd(intParameter("Tier", 1)));
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

} // namespace merchantry::catalog
