#pragma once

#include "app/VelmoraSearch.h"
#include "app/db/ado/recordset.h"
#include "app/searchfilter.h"
#include "catalog/listplace.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <memory>
#include <string>

namespace merchantry::catalog {

// The list family: all items in a grid, narrowed by the field search. Its two members differ in what choosing a row and adding an item do.
class ItemListForm : public ui::Form {
public:
    // Shows the list modally, Add New only in mode 1; the pair "SKU|MatrixSKU" chosen, empty when none was.
    std::string SelectSKU(int mode);
    // Reloads the list: both flags all items, one of them the active or the inactive ones.
    void Init_Grid(bool activeOnly, bool inactiveOnly);
    // The field search calls back: narrows the list to the items whose field holds the text.
    void srch_FieldSearch(const std::string& field, const std::string& text);

protected:
    ItemListForm(ui::Desk& desk, const char* name, const char* caption, const char* initGridTag);

    void Form_Load() override;
    void Form_Activate() override;
    void Form_Unload(bool& cancel) override;

    virtual void choose(const std::string& pair) = 0;
    // Both codes as the user typed them, cleaned or not.
    virtual void cleanCodes(std::string& sku, std::string& matrixSku) const = 0;
    virtual void added(const std::string& pair) = 0;
    // Reads the items again; sort and search stay.
    void reload();

    ui::Label lblHeading{*this, "lblHeading"};
    ui::OptionButton optAll{*this, "optAll", "All Items", true};
    ui::OptionButton optActive{*this, "optActive", "Active Items"};
    ui::OptionButton optInactive{*this, "optInactive", "Inactive Items"};
    ui::Grid grdItems{*this, "grdItems"};
    ui::Button cmdAddNew{*this, "cmdAddNew", "&Add New"};
    ui::Button cmdBulkPrice{*this, "cmdBulkPrice", "Change &Prices..."};
    ui::Button cmdSelect{*this, "cmdSelect", "&Select"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};

    std::string pair_;
    ListPlace place_; // where it opens; kept up to date with what the user searches

private:
    void takePlace();
    void standOn(const std::string& pair);
    void loadGrid(const db::Sql& command);
    void shown();
    void grdItems_Click();
    void cmdSelect_Click();
    void cmdAddNew_Click();
    void cmdBulkPrice_Click();
    void OpenSearch();

    std::string initGridTag_;
    db::RecordsetPtr rows_;
    app::SearchFilter filter_;
    std::unique_ptr<app::VelmoraSearch> search_;
    bool activated_ = false;
};

// The walk-through list beside frmItems: choosing an item opens it and closes the list.
class frmItemList : public ItemListForm {
public:
    explicit frmItemList(ui::Desk& desk);
    void ShowFormAddNewVisible();

private:
    void choose(const std::string& pair) override;
    void cleanCodes(std::string&, std::string&) const override {}
    void added(const std::string& pair) override;
};

// The picker: choosing an item closes the list and hands the pair to the caller.
class frmItemLookup : public ItemListForm {
public:
    explicit frmItemLookup(ui::Desk& desk);

private:
    void choose(const std::string& pair) override;
    void cleanCodes(std::string& sku, std::string& matrixSku) const override;
    void added(const std::string& pair) override;
};

} // namespace merchantry::catalog
