#pragma once

#include "app/VelmoraSearch.h"
#include "app/db/ado/recordset.h"
#include "app/searchfilter.h"
#include "customers/customerrows.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"

#include <memory>
#include <string>

namespace merchantry::customers {

// The list of customers: narrowed by the field search, with what adds, opens and deletes one.
class frmCustomerView : public ui::Form {
public:
    explicit frmCustomerView(ui::Desk& desk);

    // Reads the list: both flags all customers, one of them the active or the inactive ones.
    void Init_Grid(bool activeWanted, bool inactiveWanted);
    // Narrows the list to the customers whose field, by its caption, holds the text; "All" looks in every field.
    void ApplyFilter(const std::string& field, const std::string& text);

private:
    void Form_Load() override;
    void Form_Activate() override;
    void Form_Unload(bool& cancel) override;

    void OpenSearch();
    void open(const db::Sql& command);
    void shown();
    void reload();
    void cmdAdd_Click();
    void cmdEdit_Click();
    void cmdDelete_Click();
    int placeholder() const;
    void showAll();
    bool accountsShown() const;
    void edit(int row);

    ui::Label lblHeading{*this, "lblHeading", "View Customers"};
    ui::OptionButton optAll{*this, "optAll", "All Customers", true};
    ui::OptionButton optActive{*this, "optActive", "Active Customers"};
    ui::OptionButton optInactive{*this, "optInactive", "Inactive Customers"};
    ui::Grid grdCust{*this, "grdCust"};
    ui::Button cmdAdd{*this, "cmdAdd", "&Add"};
    ui::Button cmdDelete{*this, "cmdDelete", "&Delete"};
    ui::Button cmdEdit{*this, "cmdEdit", "&Edit"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};

    db::RecordsetPtr customers_;
    std::unique_ptr<CustomerRows> rows_; // over customers_, for the grid
    std::unique_ptr<app::VelmoraSearch> srch_FieldSearch;
    app::SearchFilter filter_;
    bool activated_ = false;
    bool newCustomer_ = false; // cmdAdd made one that cmdEdit opens
};

} // namespace merchantry::customers
