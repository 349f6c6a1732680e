#pragma once

#include "base/rows.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"
#include "ui/menu.h"
#include "ui/tabset.h"
#include "ui/textbox.h"

// Forms that between them use every role and every kind of layout item, as real screens would.
namespace merchantry::ui::sample {

// Many rows made up on the spot: asking a cell is counted, keeping them costs nothing.
class ManyRows : public Rows {
public:
    explicit ManyRows(int count) : count_(count) {}
    int columnCount() const override { return 4; }
    std::string columnName(int column) const override;
    int rowCount() const override { return count_; }
    Value cell(int row, int column) const override;
    std::string_view cellText(int row, int column) const override;
    bool canChange() const override { return true; }
    void setCell(int row, int column, const Value& value) override;
    void addRow(const std::vector<Value>&) override {}
    void removeRow(int) override {}
    int listen(std::function<void()>) override { return 1; }
    void stopListening(int) override {}

    mutable int asked = 0;
    std::vector<std::string> written; // "row/column=text"

private:
    int count_;
    mutable std::string text_;
};

// Menu bar, tool bar, status bar, empty background.
class Shell : public Form {
public:
    explicit Shell(Desk& desk);

    MenuEntry mnuFile{*this, "mnuFile", "&File"};
    MenuEntry mnuOpen{*this, "mnuOpen", "&Open store…", &mnuFile};
    MenuEntry mnuLine{*this, "mnuLine", "-", &mnuFile};
    MenuEntry mnuExit{*this, "mnuExit", "E&xit", &mnuFile};
    MenuEntry mnuStore{*this, "mnuStore", "&Store"};
    MenuEntry mnuItems{*this, "mnuItems", "&Items"};
    MenuEntry mnuItemSetup{*this, "mnuItemSetup", "&Setup", &mnuItems};
    MenuEntry mnuDepartments{*this, "mnuDepartments", "&Departments", &mnuItemSetup};
    MenuEntry mnuSuppliers{*this, "mnuSuppliers", "S&uppliers"};
    MenuEntry mnuCustomers{*this, "mnuCustomers", "&Customers"};
    MenuEntry mnuReports{*this, "mnuReports", "&Reports"};
    MenuEntry mnuHelp{*this, "mnuHelp", "&Help"};
    Toolbar Toolbar1;
    std::vector<std::string> pressed;
};

// An item as a manager edits it: heading, key figures, pages, fields of every kind.
class ItemSheet : public Form {
public:
    explicit ItemSheet(Desk& desk);

    Label lblName{*this, "lblName", "White hanging heart t-light holder"};
    Label lblSKU{*this, "lblSKU", "85123A"};
    Label lblStock{*this, "lblStock", "148"};
    Label lblCost{*this, "lblCost", "$1.42"};
    Label lblPrice{*this, "lblPrice", "$2.55"};
    Label lblProfit{*this, "lblProfit", "44%"};
    TabSet tabItems{*this, "tabItems", {"General", "Suppliers", "Notes", "Misc"}};
    TextBox txtName{*this, "txtName"};
    ListBox lbxType{*this, "lbxType"};
    ComboBox cboDepartment{*this, "cboDepartment"};
    DataCombo dcxTax{*this, "dcxTax"};
    TextBox txtPrice{*this, "txtPrice"};
    TextBox txtStock{*this, "txtStock"};
    Button cmdAdjust{*this, "cmdAdjust", "&Adjust"};
    TextBox txtReorder{*this, "txtReorder"};
    TextBox txtPhone{*this, "txtPhone"};
    CheckBox chkActive{*this, "chkActive", "Acti&ve"};
    CheckBox chkSerial{*this, "chkSerial", "Serial Item"};
    CheckBox chkStamps{*this, "chkStamps", "OK to use Food Stamps"};
    Frame fraPrices{*this, "fraPrices", "Price breaks"};
    Grid grdPrices{*this, "grdPrices"};
    Image imgUp{*this, "imgUp", "arrow-up", "Move up"};
    Image imgDown{*this, "imgDown", "arrow-down", "Move down"};
    ListBox lstSuppliers{*this, "lstSuppliers"};
    Frame fraCost{*this, "fraCost", "Cost"};
    OptionButton optLast{*this, "optLast", "Last cost", true};
    OptionButton optAverage{*this, "optAverage", "Weighted average"};
    TextBox txtNotes{*this, "txtNotes"};
    Label lblMore{*this, "lblMore", "Look up the supplier’s page"};
    Label lblWarning{*this, "lblWarning", "Below reorder point"};
    ProgressBar barStock{*this, "barStock"};
    Timer tmrDelay{*this, "tmrDelay", 20};
    Button cmdDelete{*this, "cmdDelete", "&Delete This Item"};
    Button cmdExit{*this, "cmdExit", "E&xit"};

    std::vector<std::string> events;

protected:
    void Form_Load() override { events.push_back("load"); }
    void Form_Unload(bool&) override { events.push_back("unload"); }

private:
    void fillLists();
    void watchEvents();
    Item generalPage();
    Item suppliersPage();
};

// Orders in a list: options and search above, a grid with colours, commands below.
class OrderList : public Form {
public:
    explicit OrderList(Desk& desk);

    Label lblTitle{*this, "lblTitle", "Purchase Orders"};
    ComboBox cboShow{*this, "cboShow"};
    ComboBox cboSort{*this, "cboSort"};
    Grid grdOrders{*this, "grdOrders"};
    Button cmdCreate{*this, "cmdCreate", "C&reate PO"};
    Button cmdView{*this, "cmdView", "&View PO"};
    Button cmdReceive{*this, "cmdReceive", "Receive &Inventory"};
    Button cmdCancelPO{*this, "cmdCancelPO", "&Cancel PO"};
    Button cmdClose{*this, "cmdClose", "C&lose"};

    std::vector<std::string> events;
};

// The panel that floats over a list.
class SearchPanel : public Form {
public:
    explicit SearchPanel(Desk& desk);
    ComboBox cboField{*this, "cboField"};
    TextBox txtText{*this, "txtText"};
};

// A question with two fields and two buttons.
class SmallDialog : public Form {
public:
    explicit SmallDialog(Desk& desk);
    Label lblAsk{*this, "lblAsk", "Enter the code of the new item, or scan it."};
    TextBox txtSKU{*this, "txtSKU"};
    TextBox txtPassword{*this, "txtPassword"};
    Button cmdOK{*this, "cmdOK", "OK"};
    Button cmdCancel{*this, "cmdCancel", "Cancel"};
};

} // namespace merchantry::ui::sample
