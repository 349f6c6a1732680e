#pragma once

#include "catalog/itempanel.h"
#include "catalog/listplace.h"
#include "catalog/matrixpage.h"
#include "catalog/miscpage.h"
#include "catalog/notespage.h"
#include "catalog/pricespage.h"
#include "catalog/substitutespage.h"
#include "catalog/supplierspage.h"
#include "ui/choice.h"
#include "ui/tabset.h"

#include <array>
#include <functional>
#include <optional>
#include <string>

namespace merchantry::catalog {

// One item, on seven pages: the first one, and those of classes of their own. There is no Save: every field is written when the user
// leaves or clicks it.
class frmItems : public ui::Form, private ItemScreen {
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

    // What the pages ask.
    ui::Form& form() override { return *this; }
    ui::UndoLine& undoLine() override { return undoLine_; }
    bool filled() const override { return filled_; }
    std::string retailPrice() const override { return txtPriceAmt.text(); }
    std::string cost() const override { return lblCostAmt.caption(); }
    void readAgain() override { Populate_FormData(); }
    void pricesWritten() override { panel.pricesChanged(); }
    void pricesPutBack() override;

    // Write-through: as writeField, and shows what is stored when the store refused it.
    bool writeShown(const std::string& procedure, const std::string& column, const std::function<Value()>& value);
    void showStored(const std::string& column);
    void showStoredPrice();
    void showRetailPrice();
    void numberField_LostFocus(ui::TextBox& box, const std::string& procedure, const std::string& column);
    bool neverFilled(const ui::TextBox& box) const;
    void showNameOnTabs();
    void lbxTaxClass_Click();
    void lbxType_Click();
    void applyType(int type);
    void txtPriceAmt_LostFocus();
    void txtStockAmt_LostFocus();

    void cmdAdjust_Click();
    void cmdDeleteItem_Click();
    void cmdExit_Click(int index);
    void tabItems_Change(int left);

    void wireGeneral();
    void wireFields();
    void pressArrow(bool up);
    ui::Item generalPage();
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

    ui::Button cmdExit0{*this, "cmdExit(0)", "E&xit"};

    // The others
    SuppliersPage suppliers_{*this};
    PricesPage prices_{*this};
    SubstitutesPage substitutes_{*this};
    NotesPage notes_{*this};
    MatrixPage matrix_{*this};
    MiscPage misc_{*this};
    const std::array<ItemPage*, 6> pages_{&suppliers_, &prices_, &substitutes_, &notes_, &matrix_, &misc_};

    ItemPanel panel{*this};
    ui::UndoLine undoLine_{*this}; // of what the pages delete, and of prices

    bool Loaded = false;  // the screen has been populated
    bool Loading = false; // Form_Load is running
    bool Modal = false;
    bool filled_ = false;                 // a population has come to its end
    bool deleted_ = false;                // the item is gone from the store: nothing of it is to be saved
    int CurrentTab = 1;                   // from 1
    int TaxNoneIndex = 0;                 // position of the tax class "None"
    std::optional<bool> SavedSerialValue; // what type 5 displaced
    std::optional<int> SavedTaxIndex;
};

} // namespace merchantry::catalog
