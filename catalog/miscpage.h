#pragma once

#include "catalog/itempage.h"
#include "ui/frame.h"
#include "ui/list.h"

#include <string>

namespace merchantry::catalog {

// The Misc page of frmItems: what a sale adds by itself or says, and of what a split item is a part.
class MiscPage : public ItemPage {
public:
    explicit MiscPage(ItemScreen& screen);

    ui::Item item() override;
    // The items to choose a split's parent from, once as the screen opens.
    void loadParents();
    void populate() override;
    // The split is hidden for an item of another type.
    void showFor(bool splitItem);

private:
    void showTagAlong();
    void lblTagAlongSKU_Click();
    void cmdRemoveTagAlong_Click();
    bool writeTagAlong(const std::string& procedure, const Value& sku, const Value& matrixSku);
    void txtTagAlongQty_LostFocus();
    void showSalesMessage(const std::string& message);
    void lblSalesMsg_Click();
    void showSplit();
    void lbxSplitParentSKU_Click();
    void UpdateSplit();

    ui::Label lblTagAlongSKU;
    ui::Button cmdAddTagAlong;
    ui::Button cmdRemoveTagAlong;
    ui::TextBox txtTagAlongQty;
    ui::Label lblSalesMsg;
    ui::Frame fraSplit;
    ui::Label lblMiscItemSplit0;
    ui::Label lblMiscItemSplit1;
    ui::Label lblMiscItemSplit2;
    ui::ListBox lbxSplitParentSKU;
    ui::ListBox lbxSplitParentMatrixSKU;
    ui::TextBox txtSplitQty;
    ui::Button cmdUpdateSplit;
};

} // namespace merchantry::catalog
