#pragma once

#include "app/db/ado/recordset.h"
#include "app/takeback.h"
#include "catalog/itempanel.h"
#include "catalog/itemscreen.h"
#include "catalog/listplace.h"
#include "catalog/suppliermatrix.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/tabset.h"
#include "ui/textbox.h"
#include "ui/undoline.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace merchantry::catalog {

// One item, on seven pages. There is no Save: every field is written when the user leaves or clicks it.
class frmItems : public ui::Form {
public:
    explicit frmItems(ui::Desk& desk);

    // Opens the item of the pair "SKU|MatrixSKU"; does nothing for a text that is not two parts. The only way in.
    void CheckSKUs(const std::string& SKUPair, bool Modal);
    // Set by the list that the item was chosen from; the list that opens on leaving takes it up.
    ListPlace listPlace;

private:
    void Form_Load() override;
    void Form_Activate() override;
    void Form_Unload(bool& cancel) override;

    void reopen(const std::string& SKUPair, bool modal);

    // Opening and population, in their order.
    void Init_ItemListBoxes();
    bool FetchItemData();
    void Populate_FormData();
    void populateGeneral();
    void showCost();
    void showPrice();
    void showProfit();
    void showStock();
    void populateSuppliers();
    void fillSupplierChoices();
    void takeSupplier(db::Recordset& rows);
    void populatePrices();
    void showSale();
    void populateSubstitutes();
    void populateNotes();
    void populateMatrix();
    void populateMisc();
    void showSalesMessage(const std::string& message);
    void showSplit();

    // Write-through.
    // False when the store refused it.
    bool writeField(const std::string& procedure, const std::string& column, const std::function<Value()>& value);
    bool writeItem(const std::string& procedure, const std::function<void(db::Recordset& item)>& set);
    void readStored(db::Recordset& item);
    void showStored(const std::string& column);
    void showStoredPrice();
    void showPricesAgain();
    void numberField_LostFocus(ui::TextBox& box, const std::string& procedure, const std::string& column);
    bool neverFilled(const ui::TextBox& box) const;
    void showNameOnTabs();
    void lbxTaxClass_Click();
    void lbxType_Click();
    void applyType(int type);
    void txtPriceAmt_LostFocus();
    void txtStockAmt_LostFocus();

    // Matrix categories.
    void reloadMatrix();
    void lbxMatrixGroups_Click();
    void cmdAddCategory_Click();
    void cmdDeleteCatgory_Click();
    void grdItemMatrix_Error();

    // Prices.
    void lbxTier_Click();
    int selectedTier() const;
    static constexpr int kRetailTier = 1;
    void reloadPrices(int tier);
    void cmdAddPriceMatrixItem_Click();
    void grdPriceMatrix_BeforeEdit(int row, int column, bool& cancel);
    void grdPriceMatrix_AfterEdit(int row, int column);
    void takeEditedPrice(int row, int column);
    void readItemAgain(const std::string& quantity, int column);
    void cmdPriceDelete_Click();
    app::WrittenRows pricesOfTier(int tier) const;
    std::string breakNamed(int tier, const std::string& quantity) const;
    void offerPriceUndo(app::WrittenRows& rows, const std::string& procedure, int tier);
    void grdPriceMatrix_Error();

    // Suppliers.
    void PopulateSupplierRow(int GridRow, int Index);
    void showSupplierCount();
    int supplierAt(int gridRow) const;
    void grdSuppliers_BeforeEdit(int row, int column, bool& cancel);
    void grdSuppliers_AfterEdit(int row, int column);
    void warnOfCost(int row);
    void takeSupplierCell(SupplierRow& entry, int row, int column);
    void putCostBack(SupplierRow& entry, int row, const std::string& sentence);
    void putMinOrderBack(SupplierRow& entry, int row, const std::string& sentence);
    void cmdAddNewSupplier_Click();
    void cmdDeleteSupplier_Click();
    void showSupplierRows();
    std::string putSupplierBack(int index, int reading);
    void moveSupplier(int step);
    void grdSuppliers_Error();
    bool ValidateSupplierMatrix();
    bool SaveSupplierMatrix(); // false when the store refused it
    void deleteSupplier(SupplierRow& row);
    void writeSupplier(SupplierRow& row, const std::optional<Currency>& parked);

    // Substitutes.
    void reloadSubstitutes();
    void showSubstituteCount();
    void cmdSubsAddNew_Click();
    void cmdSubsDelete_Click();
    void grdSubs_ChangePriority(bool Up);
    void grdSubs_Error();

    // Tag-along, sales message, split.
    void showTagAlong();
    void lblTagAlongSKU_Click();
    void cmdRemoveTagAlong_Click();
    bool writeTagAlong(const std::string& procedure, const Value& sku, const Value& matrixSku);
    void txtTagAlongQty_LostFocus();
    void lblSalesMsg_Click();
    void lbxSplitParentSKU_Click();
    void UpdateSplit();

    void cmdAdjust_Click();
    void cmdDeleteItem_Click();
    void cmdExit_Click(int index);
    void tabItems_Change(int left);

    void wireGeneral();
    void wireOtherPages();
    void wireSuppliers();
    void wirePrices();
    void wireSubstitutes();
    void wireMatrix();
    void wireMisc();
    static void pressShown(std::initializer_list<ui::Image*> arrows);
    ui::Item generalPage();
    ui::Item suppliersPage();
    ui::Item pricePage();
    ui::Item substitutesPage();
    ui::Item notesPage();
    ui::Item matrixPage();
    ui::Item miscPage();
    void notYet(const std::string& what);

    ui::TabSet tabItems{*this, "tabItems", {"General", "Suppliers", "Price Matrix", "Substitutes", "Notes", "Item Matrix", "Misc"}};

    // General
    ui::Label lblSKUVal{*this, "lblSKUVal"};
    ui::Label lblCostAmt{*this, "lblCostAmt"};
    ui::Label lblProfitMargin{*this, "lblProfitMargin", "Profit Margin:"};
    ui::Label lblProfitPercent{*this, "lblProfitPercent"};
    ui::Label lblCommittedAmt{*this, "lblCommittedAmt"}; // stays blank
    ui::Label lblLastSoldDateVal{*this, "lblLastSoldDateVal"};
    ui::TextBox txtName{*this, "txtName"};
    ui::ListBox lbxType{*this, "lbxType"};
    ui::ListBox lbxDepartment{*this, "lbxDepartment"};
    ui::ListBox lbxTaxClass{*this, "lbxTaxClass"};
    ui::TextBox txtPriceAmt{*this, "txtPriceAmt"};
    ui::TextBox txtStockAmt{*this, "txtStockAmt"}; // locked; leaving it writes what it shows
    ui::Button cmdAdjust{*this, "cmdAdjust", "Adjust"};
    ui::TextBox txtReorder{*this, "txtReorder"};
    ui::TextBox txtRestock{*this, "txtRestock"};
    ui::CheckBox cbxActive{*this, "cbxActive", "Active"};
    ui::CheckBox cbxSerialed{*this, "cbxSerialed", "Serial Item"};
    ui::CheckBox cbxFoodStamps{*this, "cbxFoodStamps", "OK to use Food Stamps"};
    ui::Button cmdDeleteItem{*this, "cmdDeleteItem", "Delete This Item"};

    // Suppliers
    ui::Label lblSuppliersPName{*this, "lblSuppliersPName"};
    ui::Label lblSuppliersSKU{*this, "lblSuppliersSKU"};
    ui::Label lblSupRetailPrice{*this, "lblSupRetailPrice"};
    ui::Grid grdSuppliers{*this, "grdSuppliers"};
    ui::Button cmdAddNewSupplier{*this, "cmdAddNewSupplier", "&Add New"};
    ui::Button cmdDeleteSupplier{*this, "cmdDeleteSupplier", "&Delete"};
    ui::Image imgArrowUp{*this, "imgArrowUp", "arrow-up", "Move the supplier up (Alt+Up)"};
    ui::Image imgArrowDown{*this, "imgArrowDown", "arrow-down", "Move the supplier down (Alt+Down)"};

    // Price Matrix
    ui::Label lblPricePName{*this, "lblPricePName"};
    ui::Label lblPriceSKU{*this, "lblPriceSKU"};
    ui::Label lblRetailUnitPriceAmt{*this, "lblRetailUnitPriceAmt"};
    ui::Label lblPriceCostAmt{*this, "lblPriceCostAmt"};
    ui::Label lblCurCostAmt{*this, "lblCurCostAmt"}; // stays blank
    ui::Label lblPriceSaleAmt{*this, "lblPriceSaleAmt"};
    ui::ListBox lbxTier{*this, "lbxTier"};
    ui::Grid grdPriceMatrix{*this, "grdPriceMatrix"};
    ui::Button cmdAddPriceMatrixItem{*this, "cmdAddPriceMatrixItem", "Add"};
    ui::Button cmdPriceDelete{*this, "cmdPriceDelete", "Delete"};
    ui::Button cmdSales{*this, "cmdSales", "View Sales"};

    // Substitutes
    ui::Label lblSubsPName{*this, "lblSubsPName"};
    ui::Label lblSubsSKU{*this, "lblSubsSKU"};
    ui::Grid grdSubs{*this, "grdSubs"};
    ui::Button cmdSubsAddNew{*this, "cmdSubsAddNew", "Add New"};
    ui::Button cmdSubsDelete{*this, "cmdSubsDelete", "Delete"};
    ui::Image imgSubUp{*this, "imgSubUp", "arrow-up", "Move the substitute up (Alt+Up)"};
    ui::Image imgSubDown{*this, "imgSubDown", "arrow-down", "Move the substitute down (Alt+Down)"};

    // Notes
    ui::Label lblNotesPName{*this, "lblNotesPName"};
    ui::Label lblNotesSKU{*this, "lblNotesSKU"};
    ui::TextBox txtNotes{*this, "txtNotes"};

    // Item Matrix
    ui::Label lblMatrixPName{*this, "lblMatrixPName"};
    ui::Label lblMatrixSKU{*this, "lblMatrixSKU"};
    ui::Label lblMatrixMessage{*this, "lblMatrixMessage",
                               "You must set Item Type to \"Matrix\" on the General Tab to have these fields available"};
    ui::Label lblMatrixGroups{*this, "lblMatrixGroups", "Groups"};
    ui::Label lblMatrixCategories{*this, "lblMatrixCategories", "Categories"};
    ui::ListBox lbxMatrixGroups{*this, "lbxMatrixGroups"};
    ui::ListBox lbxMatrixCategories{*this, "lbxMatrixCategories"};
    ui::Button cmdAddCategory{*this, "cmdAddCategory", "&Add"};
    ui::Button cmdDeleteCatgory{*this, "cmdDeleteCatgory", "&Delete"};
    ui::Grid grdItemMatrix{*this, "grdItemMatrix"};

    // Misc
    ui::Label lblMiscPName{*this, "lblMiscPName"};
    ui::Label lblMiscSKU{*this, "lblMiscSKU"};
    ui::Label lblTagAlongSKU{*this, "lblTagAlongSKU", "Click Here To Select Tag Along Item"};
    ui::Button cmdAddTagAlong{*this, "cmdAddTagAlong", "Add Tag Along"};
    ui::Button cmdRemoveTagAlong{*this, "cmdRemoveTagAlong", "&Remove Tag Along"};
    ui::TextBox txtTagAlongQty{*this, "txtTagAlongQty"};
    ui::Label lblSalesMsg{*this, "lblSalesMsg", "Click Here To Select Item Sales Message"};
    ui::Frame fraSplit{*this, "fraSplit", "Split"};
    ui::Label lblMiscItemSplit0{*this, "lblMiscItemSplit(0)", "Split Parent:"};
    ui::Label lblMiscItemSplit1{*this, "lblMiscItemSplit(1)", "Split Matrix:"};
    ui::Label lblMiscItemSplit2{*this, "lblMiscItemSplit(2)", "Split Quantity:"};
    ui::ListBox lbxSplitParentSKU{*this, "lbxSplitParentSKU"};
    ui::ListBox lbxSplitParentMatrixSKU{*this, "lbxSplitParentMatrixSKU"};
    ui::TextBox txtSplitQty{*this, "txtSplitQty"};
    ui::Button cmdUpdateSplit{*this, "cmdUpdateSplit", "Update"};

    // One on each page; 1 stands on Suppliers.
    ui::Button cmdExit0{*this, "cmdExit(0)", "E&xit"};
    ui::Button cmdExit1{*this, "cmdExit(1)", "E&xit"};
    ui::Button cmdExit2{*this, "cmdExit(2)", "E&xit"};
    ui::Button cmdExit3{*this, "cmdExit(3)", "E&xit"};
    ui::Button cmdExit4{*this, "cmdExit(4)", "E&xit"};
    ui::Button cmdExit5{*this, "cmdExit(5)", "E&xit"};
    ui::Button cmdExit6{*this, "cmdExit(6)", "E&xit"};

    ItemPanel panel{*this};
    ui::UndoLine undoLine{*this}; // of what the pages delete, and of prices

    bool Loaded = false;  // the screen has been populated
    bool Loading = false; // Form_Load is running
    bool Modal = false;
    bool filled_ = false;                 // a population has come to its end
    bool deleted_ = false;                // the item is gone from the store: nothing of it is to be saved
    int CurrentTab = 1;                   // from 1
    int TaxNoneIndex = 0;                 // position of the tax class "None"
    std::optional<bool> SavedSerialValue; // what type 5 displaced
    std::optional<int> SavedTaxIndex;
    std::vector<std::pair<std::string, std::string>> tiers_; // name and id
    ValueBefore LastPrice;
    std::optional<app::WrittenRows> editedPrices_; // of the tier, before the edit under way
    std::vector<SupplierRow> suppliers_;           // as shown and as deleted; the hidden column of grdSuppliers holds positions in it
    int supplierReadings_ = 0;
    bool suppliersDropped_ = false; // changes of them were lost when the item was read again, and nothing was changed since
    int DefaultSupplier = -1;       // of a new row; -1 when the store has no supplier at all
    ValueBefore LastCost;
    ValueBefore LastMinOrder;
    db::RecordsetPtr supplierRows_;
    db::RecordsetPtr priceRows_;
    db::RecordsetPtr subsRows_;
    db::RecordsetPtr matrixRows_;
};

} // namespace merchantry::catalog
