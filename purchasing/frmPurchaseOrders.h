#pragma once

#include "purchasing/orderrows.h"
#include "ui/button.h"
#include "ui/choice.h"
#include "ui/form.h"
#include "ui/grid.h"
#include "ui/label.h"
#include "ui/list.h"

#include <memory>
#include <optional>
#include <string>

namespace merchantry::purchasing {

// The store's orders by filter and sort, and the door to making, editing, receiving, cancelling and printing one. The list is as it was
// when it was read.
class frmPurchaseOrders : public ui::Form {
public:
    explicit frmPurchaseOrders(ui::Desk& desk);

private:
    // What is listed: the statement, and how the line below the list calls it.
    struct Filter {
        db::Sql statement;
        std::string words;
    };

    void Form_Load() override;
    void Form_Unload(bool& cancel) override;

    void cboSearch_Click();
    std::optional<Filter> askedFilter();
    std::optional<Filter> askedNumber();
    std::optional<Filter> askedSupplier();
    std::optional<Filter> askedItem();
    void showFilter(int index);
    void LoadPOList(Filter filter);
    void reload();
    void standOn(const std::string& order);
    void sortList();
    void showSums();
    void setButtons();
    std::int32_t currentNumber() const;
    bool currentIs(const char* status) const;
    void cmdAdd_Click();
    void createByRun();
    void createByHand();
    void cmdEdit_Click();
    void cmdDelete_Click();
    void cmdRecvInvent_Click();
    template <class Screen> void takeFrom();
    void openReport(std::int16_t type);

    ui::Label lblHeading{*this, "lblHeading", "Purchase Orders"};
    ui::ListBox cboSearch{*this, "cboSearch"};
    ui::ListBox cboSortBy{*this, "cboSortBy"};
    ui::OptionButton optAsc{*this, "optAsc", "&Ascending"};
    ui::OptionButton optDescending{*this, "optDescending", "&Descending"};
    ui::Grid grdPO{*this, "grdPO"};
    ui::Button cmdViewHist{*this, "cmdViewHist", "View History"};
    ui::Button cmdPrint{*this, "cmdPrint", "Print PO"};
    ui::Button cmdDelete{*this, "cmdDelete", "Cancel PO"};
    ui::Button cmdRecvInvent{*this, "cmdRecvInvent", "Receive Inventory"};
    ui::Button cmdAdd{*this, "cmdAdd", "Create PO"};
    ui::Button cmdExit{*this, "cmdExit", "E&xit"};
    ui::Button cmdEdit{*this, "cmdEdit", "Edit PO"};

    std::unique_ptr<OrderRows> rows_;
    Filter filter_;        // in force
    int shownFilter_ = -1; // of cboSearch when the list was read
    bool held_ = false;    // cboSearch is set by program
};

} // namespace merchantry::purchasing
