#pragma once

#include "app/ADOUtilities.h"
#include "app/Resizer.h"
#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/tabset.h"
#include "ui/textbox.h"

#include <string>

namespace merchantry::catalog {

// A matrix parent: its own few fields, which Update writes, and the items of its family.
class frmItemParent : public ui::Form {
public:
    explicit frmItemParent(ui::Desk& desk);

    // Opens the parent of the pair (or the plain SKU), modally. A parent that does not exist is said and nothing is shown.
    void UpdateParent(const std::string& SKUPair);

private:
    void growWithTheWindow();
    void wire();
    void Form_Load() override;
    void Form_Resize() override;
    void Form_Unload(bool& cancel) override;

    void load();
    void showDepartment();
    void showSalesMessage();
    void dcxDepartment_Click();
    void cmdLookupSalesMessage_Click();
    void cmdUpdateItem_Click();
    void cmdDeleteItem_Click();
    void cmdAddNewItem_Click();
    void cmdSelect_Click();
    void grdItems_Click();
    void loadChildren(const std::string& orderBy);

    ui::Label lblHeading{*this, "lblHeading"};
    ui::TabSet tabParent{*this, "tabParent", {"Parent Details", "Item Matrix"}};

    // Parent Details
    ui::Label lblParentDetail{*this, "lblParentDetail", "Matrix Parent Detail"};
    ui::TextBox txtSKU{*this, "txtSKU"};         // the key: shown, never changed
    ui::TextBox txtField0{*this, "txtField(0)"}; // the name
    ui::DataCombo dcxDepartment{*this, "dcxDepartment"};
    ui::TextBox txtField1{*this, "txtField(1)"}; // the notes
    ui::TextBox txtSalesMsg{*this, "txtSalesMsg"};
    ui::Button cmdLookupSalesMessage{*this, "cmdLookupSalesMessage", "Lookup &Sales Message"};

    // Item Matrix
    ui::Label lblMatrixChildren{*this, "lblMatrixChildren", "Matrix Item Children"};
    ui::TextBox txtSearchCriteria{*this, "txtSearchCriteria"};
    ui::Label lblGridInstructions{*this, "lblGridInstructions", "Select heading of column to change search field"};
    ui::Grid grdItems{*this, "grdItems"};
    ui::Button cmdAddNewItem{*this, "cmdAddNewItem", "Add New &Item"};
    ui::Button cmdSelect{*this, "cmdSelect", "Se&lect"};

    ui::Button cmdDeleteItem{*this, "cmdDeleteItem", "&Delete"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdUpdateItem{*this, "cmdUpdateItem", "&Update"};
    ui::Timer tmrSearchCriteriaDelay{*this, "tmrSearchCriteriaDelay", 1000};

    std::string sku_; // of the parent to open
    app::Resizer resizer_;
    app::DataControl data_;
    db::RecordsetPtr item_;
    db::RecordsetPtr departments_;
    db::RecordsetPtr children_;
    bool showing_ = false; // the screen fills its fields, not the user
};

} // namespace merchantry::catalog
