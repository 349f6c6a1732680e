#include "catalog/frmItems.h"

#include "app/profit.h"
#include "base/numbers.h"
#include "base/text.h"
#include "catalog/itemscreen.h"
#include "ui/desk.h"

namespace merchantry::catalog {

using namespace app;
using namespace ui;
using db::RecordsetPtr;
using db::Sql;

// Everything that fills frmItems from the store.

namespace {

constexpr int kNeverSold = 1900;

// Adds each row's text, with its key as the entry's number.
void fill(ListBox& list, const RecordsetPtr& rows, const std::string& text, const std::string& key) {
    list.clear();
    for (; !rows->Eof(); rows->MoveNext())
        list.add((*rows)[text].text(), static_cast<int>((*rows)[key].Value().toInteger()));
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
    txtStockAmt.setText(""); // a figure that is not read below must not be written back by leaving the field
    const bool whole = guarded({"MR_frmItems", "Populate_FormData"}, [this] {
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

void frmItems::populateNotes() {
    lblNotesSKU.setCaption(modMain().CurrentSKU);
    const std::string notes = (*modMain().ItemRecordset)["Notes"].text();
    if (!notes.empty())
        txtNotes.setText(notes);
}

} // namespace merchantry::catalog
