#pragma once

#include "app/Resizer.h"
#include "app/db/ado/recordset.h"
#include "ui/button.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/textbox.h"

#include <string>

namespace merchantry::catalog {

// The wizard family: a grid loaded by a statement of its own, in which a typed or scanned code finds its row. The members differ in their
// buttons and in what choosing a row does.
class ItemWizardForm : public ui::Form {
protected:
    ItemWizardForm(ui::Desk& desk, const char* name, const char* caption);

    void Form_Load() override;
    void Form_Resize() override;
    void Form_Unload(bool& cancel) override;

    // Caption and filter. Mode is an entry of the filter list, which is hidden unless it is "Standard" or empty.
    void customize(const std::string& title, const std::string& mode);
    // Loads the grid with the filter that is set.
    void requery(const std::string& orderBy);
    // The current row's "SKU|MatrixSKU"; empty when no row is current.
    std::string currentPair() const;
    // The part of the layout that all members share: heading, search, filter, grid.
    std::vector<ui::Item> layoutAbove();

    virtual void choose(const std::string& pair) = 0;
    virtual void showAsParents();

    ui::Label lblHeading{*this, "lblHeading"};
    ui::TextBox txtSearchCriteria{*this, "txtSearchCriteria"};
    ui::Label lblFilterBy{*this, "lblFilterBy", "Filter by:"};
    ui::ComboBox cmbFilterBy{*this, "cmbFilterBy"};
    ui::Label lblGridInstructions{*this, "lblGridInstructions", "Select heading of column to change search field"};
    ui::Grid grdItems{*this, "grdItems"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdEdit{*this, "cmdEdit", "&Edit"};
    ui::Timer tmrSearchCriteriaDelay{*this, "tmrSearchCriteriaDelay", 750};

private:
    void fillFilter();
    void cmbFilterBy_Change();
    void grdItems_Click();
    void cmdEdit_Click();
    void search(const std::string& text);

    app::Resizer resizer_;
    db::RecordsetPtr rows_;
};

// What frmItemLookupWiz and frmItemMatrixLookupWiz share: the buttons that make items.
class ItemEditWizard : public ItemWizardForm {
public:
    void CustomizeForm(const std::string& title, bool showAddItem, bool showAddParent, const std::string& mode);

protected:
    ItemEditWizard(ui::Desk& desk, const char* name, const char* caption);
    virtual void addItem() = 0;

    ui::Button cmdAddNewItem{*this, "cmdAddNewItem", "Add New &Item"};
    ui::Button cmdAddMatrixParent{*this, "cmdAddMatrixParent", "Add Matrix &Parent"};

private:
    void cmdAddMatrixParent_Click();
};

// Choosing a row opens its parent.
class frmItemLookupWiz : public ItemEditWizard {
public:
    explicit frmItemLookupWiz(ui::Desk& desk);

private:
    void choose(const std::string& pair) override;
    void addItem() override;
};

// Choosing a row opens the item.
class frmItemMatrixLookupWiz : public ItemEditWizard {
public:
    explicit frmItemMatrixLookupWiz(ui::Desk& desk);

private:
    void choose(const std::string& pair) override;
    void addItem() override;
};

// The picker of a parent: choosing a row closes it, and the caller reads the pair.
class frmParentLookup : public ItemWizardForm {
public:
    explicit frmParentLookup(ui::Desk& desk);
    void CustomizeForm(const std::string& title, const std::string& mode);
    // "SKU|MatrixSKU" of the row chosen; empty when none was.
    const std::string& Pair() const { return pair_; }

private:
    void choose(const std::string& pair) override;

    std::string pair_;
};

} // namespace merchantry::catalog
