#pragma once

#include "catalog/itempage.h"
#include "ui/choice.h"
#include "ui/list.h"

#include <functional>
#include <optional>
#include <string>

namespace merchantry::catalog {

// The first page of frmItems: what the item is, its retail price, its stock and when to order it.
class GeneralPage {
public:
    explicit GeneralPage(ItemScreen& screen);

    // How the page stands on the window, with the button of the side panel.
    ui::Item item(ui::Button& panelButton);
    // The lists to choose from, once as the screen opens. Throws DbError.
    void loadLists();
    // The figure is empty until it is read: what is not read must not be written back by leaving the field.
    void forgetStock();
    // Shows what the store has of the current item. Throws DbError.
    void populate();
    void showPrice();
    std::string retailPrice() const { return txtPriceAmt.text(); }
    std::string cost() const { return lblCostAmt.caption(); }

    ui::Button cmdExit;

private:
    void wire();
    void showItem();
    void showCost();
    void showProfit();
    void showStock();
    void writePrice();
    // As writeField, and shows what is stored when the store refused it.
    bool writeShown(const std::string& procedure, const std::string& column, const std::function<Value()>& value);
    void showStored(const std::string& column);
    void numberField_LostFocus(ui::TextBox& box, const std::string& procedure, const std::string& column);
    void lbxTaxClass_Click();
    void lbxType_Click();
    void applyType(int type);
    void txtPriceAmt_LostFocus();
    void showStoredPrice();
    void txtStockAmt_LostFocus();
    void cmdAdjust_Click();
    void notYet(const std::string& what);
    void cmdDeleteItem_Click();

    ItemScreen& screen_;
    ui::Label lblSKUVal;
    ui::Label lblCostAmt;
    ui::Label lblProfitMargin;
    ui::Label lblProfitPercent;
    ui::Label lblCommittedAmt; // stays blank
    ui::Label lblLastSoldDateVal;
    ui::TextBox txtName;
    ui::ListBox lbxType;
    ui::ListBox lbxDepartment;
    ui::ListBox lbxTaxClass;
    ui::TextBox txtPriceAmt;
    ui::TextBox txtStockAmt; // locked; leaving it writes what it shows
    ui::Button cmdAdjust;
    ui::TextBox txtReorder;
    ui::TextBox txtRestock;
    ui::CheckBox cbxActive;
    ui::CheckBox cbxSerialed;
    ui::CheckBox cbxFoodStamps;
    ui::Button cmdDeleteItem;

    int TaxNoneIndex = 0;                 // position of the tax class "None"
    std::optional<bool> SavedSerialValue; // what type 5 displaced
    std::optional<int> SavedTaxIndex;
    bool passing_ = false; // the last write failed for a reason that passes
};

} // namespace merchantry::catalog
