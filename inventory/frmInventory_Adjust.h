#pragma once

#include "ui/button.h"
#include "ui/form.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/textbox.h"

#include <cstdint>
#include <optional>
#include <string>

namespace merchantry::inventory {

// One adjustment of one item without serial numbers: changes the stock and records the movement in the ledger.
class frmInventory_Adjust : public ui::Form {
public:
    explicit frmInventory_Adjust(ui::Desk& desk);

    // Opens for the item, modally. The row of the calling grid is kept and not used.
    void AdjustInv(const std::string& SKU, const std::string& MatrixSKU, const std::string& Name, std::int16_t Row);

private:
    void Form_Load() override;

    void fillReasons();
    void showCost();
    void showOnHand();
    void showAfterwards();
    void cmdAddCode_Click();
    void cmdAdjust_Click();

    ui::Label lblInvAdjust{*this, "lblInvAdjust", "Inventory Adjustment"};
    ui::Label lblSKU{*this, "lblSKU"};             // shows the item's own code
    ui::Label lblMatrixSKU{*this, "lblMatrixSKU"}; // shows the name
    ui::TextBox txtQty{*this, "txtQty"};
    ui::TextBox txtCost{*this, "txtCost"};
    ui::Label lblOnHand{*this, "lblOnHand"};         // the stock as the screen opened
    ui::Label lblAfterwards{*this, "lblAfterwards"}; // what it becomes by the quantity as typed so far
    ui::ListBox lbxReasonCode{*this, "lbxReasonCode"};
    ui::Button cmdAddCode{*this, "cmdAddCode", "Add &Code"};
    ui::Label lblQtyNote{*this, "lblQtyNote",
                         "To increase or decrease inventory, enter a positive or negative number in the quantity field, respectfully. To "
                         "associate a specific cost for these units enter the amount in the cost field."};
    ui::Label lblCostNote{*this, "lblCostNote",
                          "Note: The cost field is set to the current average inventory cost of the item by default."};
    ui::Button cmdClose{*this, "cmdClose", "C&lose"};
    ui::Button cmdAdjust{*this, "cmdAdjust", "&Adjust"};

    std::string sku_;
    std::string matrixSku_;
    std::string name_;
    std::int16_t row_ = 0;
    std::optional<std::int64_t> present_; // nothing before it is read and where no stock is kept
};

} // namespace merchantry::inventory
