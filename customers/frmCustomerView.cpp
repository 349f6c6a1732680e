#include "customers/frmCustomerView.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/counted.h"
#include "base/guard.h"
#include "base/numbers.h"
#include "base/text.h"
#include "customers/frmCustomer.h"
#include "ui/calls.h"
#include "ui/desk.h"

#include <array>

namespace merchantry::customers {

using namespace app;
using namespace ui;
using db::CursorType;
using db::LockType;
using db::Sql;

namespace {

constexpr const char* kPlaceholder = "First Name"; // of a customer just added
constexpr int kId = 0;
constexpr int kFirstName = 1;

struct SearchField {
    const char* caption;
    const char* column;
};
constexpr std::array kFields{SearchField{"First Name", "FirstName"},
                             SearchField{"Last Name", "LastName"},
                             SearchField{"Company", "Company"},
                             SearchField{"Phone Number", "CleanPhoneNumber"},
                             SearchField{"City", "City"},
                             SearchField{"State", "State"},
                             SearchField{"Zip Code", "Zip"}};

// The filter for a field's caption and a text; empty for no text.
std::string filterFor(const std::string& caption, const std::string& text) {
    if (text.empty())
        return "";
    std::vector<std::string> clauses;
    for (const SearchField& field : kFields)
        if (caption == "All" || caption == field.caption)
            clauses.push_back(std::string(field.column) + " like '%" + text + "%'");
    return joined(clauses, " or ");
}

} // namespace

frmCustomerView::frmCustomerView(Desk& desk) : Form(desk, "frmCustomerView", "View Customers") {
    setIcon("items");
    grdCust.setColumns(
        {{.heading = "ID", .centred = true, .fixedWidth = true, .width = 1005},
         {.heading = "First Name", .centred = true, .width = 3630},
         {.heading = "Last Name", .centred = true, .width = 3630},
         {.heading = "Company", .hidden = true},
         {.heading = "Phone Number", .hidden = true},
         {.heading = "City", .hidden = true},
         {.heading = "State", .hidden = true},
         {.heading = "Zip Code", .hidden = true},
         {.heading = "Balance", .format = GridColumn::Format::Currency, .hidden = true, .optional = true, .characters = 13},
         {.heading = "Credit Limit", .format = GridColumn::Format::Currency, .hidden = true, .optional = true, .characters = 13}});
    grdCust.showColumn = [this](int) {
        guarded({"frmCustomerView", "ShowColumn"}, [this] {
            if (rows_ != nullptr)
                rows_->readAccounts();
        });
    };
    grdCust.editable = false;
    grdCust.emptyText = "No customers match. Change the search, or add a customer.";
    grdCust.setToolTip("A double click opens the customer. The list's menu (right click) shows balances and credit limits.");
    cmdDelete.isDanger = true;
    cmdDelete.setToolTip("A customer with transactions cannot be deleted; untick Active instead.");
    cmdEdit.isDefault = true;
    cmdExit.isCancel = true;

    for (OptionButton* option : {&optAll, &optActive, &optInactive})
        option->click = [this] { reload(); };
    grdCust.dblClick = [this] { cmdEdit_Click(); };
    cmdAdd.click = [this] { cmdAdd_Click(); };
    cmdEdit.click = [this] { cmdEdit_Click(); };
    cmdDelete.click = [this] { cmdDelete_Click(); };
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        row({title(lblHeading), stretch(), at(optAll), at(optActive), at(optInactive)}),
        at(grdCust).high(18).wide(84).stretched(),
        buttons({at(cmdAdd), gap(), at(cmdDelete), stretch(), at(cmdExit), at(cmdEdit)}),
    }));
    offer("ApplyFilter", [this](const auto& arguments) {
        ApplyFilter(arguments.size() > 0 ? arguments[0] : "All", arguments.size() > 1 ? arguments[1] : "");
        return std::string();
    });
    offer("Init_Grid", [this](const auto& arguments) {
        Init_Grid(arguments.size() > 0 && arguments[0] == "on", arguments.size() > 1 && arguments[1] == "on");
        return std::string();
    });
}

void frmCustomerView::Form_Load() {
    guarded({"MR_frmItemMatrix", "Form_Load"}, [this] { reload(); });
}

void frmCustomerView::Form_Activate() {
    if (activated_)
        return;
    activated_ = true;
    desk().waitCursor(true);
    OpenSearch();
    desk().waitCursor(false);
}

void frmCustomerView::OpenSearch() {
    if (srch_FieldSearch == nullptr)
        srch_FieldSearch = std::make_unique<VelmoraSearch>(desk());
    srch_FieldSearch->FieldSearch = calls(this, &frmCustomerView::ApplyFilter);
    std::vector<std::string> captions{"All"};
    for (const SearchField& field : kFields)
        captions.emplace_back(field.caption);
    srch_FieldSearch->Initialise(joined(captions, srch_FieldSearch->Delimiter()), *this, grdCust.place().left / kTwipsPerPixel, 0, 3);
    desk().yield();
    srch_FieldSearch->Show();
}

void frmCustomerView::Form_Unload(bool& /*cancel*/) {
    if (srch_FieldSearch != nullptr)
        srch_FieldSearch->Close();
    srch_FieldSearch.reset();
    grdCust.bind(nullptr);
    rows_.reset();
    closeRows(customers_);
}

void frmCustomerView::reload() {
    desk().waitCursor(true);
    Init_Grid(optAll.value() || optActive.value(), optAll.value() || optInactive.value());
    desk().waitCursor(false);
}

void frmCustomerView::Init_Grid(bool activeWanted, bool inactiveWanted) {
    guarded({"frmCustomerView", "Init_Grid"}, [&] {
        if (activeWanted && inactiveWanted)
            open("sp_GetAllCustomers 1, 0");
        else if (activeWanted)
            open("sp_GetAllCustomers 1, 1");
        else if (inactiveWanted)
            open("sp_GetAllCustomers 0, 0");
    });
}

void frmCustomerView::open(const Sql& command) {
    const int row = grdCust.row();
    grdCust.bind(nullptr);
    rows_.reset();
    closeRows(customers_);
    cmdEdit.setEnabled(false);
    cmdDelete.setEnabled(false);
    customers_ = openDirect(command, CursorType::Static, LockType::Optimistic);
    rows_ = std::make_unique<CustomerRows>(*customers_);
    if (accountsShown())
        rows_->readAccounts();
    {
        const AtEnd listed([this] { shown(); });
        filter_.reapply(*customers_);
    }
    if (row >= 1 && row <= grdCust.dataRows())
        grdCust.setCurrent(row, std::max(0, grdCust.col()));
}

// After the rows or their filter changed.
void frmCustomerView::shown() {
    grdCust.bind(rows_.get());
    const int count = customers_->RecordCount();
    cmdEdit.setEnabled(count > 0);
    cmdDelete.setEnabled(count > 0);
    grdCust.setStatusText(filter_.words(count, counted(count, "customer")));
}

void frmCustomerView::ApplyFilter(const std::string& field, const std::string& text) {
    guarded({.tag = "frmCustomerView", .procedure = "ApplyFilter", .plain = "The search could not be made."}, [&] {
        const AtEnd listed([this] {
            if (customers_ != nullptr) // the list could be read
                shown();
        });
        filter_.apply(customers_.get(), filterFor(field, text));
    });
}

bool frmCustomerView::accountsShown() const {
    return !grdCust.column(CustomerRows::kBalance).hidden || !grdCust.column(CustomerRows::kLimit).hidden;
}

// The row of a customer that was added and not filled in yet; 0 when there is none.
int frmCustomerView::placeholder() const {
    for (int row = 1; row <= grdCust.dataRows(); ++row)
        if (customers_->cellText(row - 1, kFirstName) == kPlaceholder)
            return row;
    return 0;
}

// All customers: one that is added is active, and must be found in the list whatever was searched for.
void frmCustomerView::showAll() {
    filter_.clear();
    if (srch_FieldSearch != nullptr)
        srch_FieldSearch->Search("All", "");
    if (optInactive.value()) {
        optAll.setValue(true);
        reload();
    }
    customers_->setFilter("");
    shown();
}

void frmCustomerView::cmdAdd_Click() {
    guarded({"frmCashiers", "Add_Click"}, [this] {
        if (customers_ == nullptr)
            return;
        showAll();
        if (const int blank = placeholder(); blank > 0) {
            grdCust.setCurrent(blank, kFirstName);
            desk().message("You already have a blank customer to use. Please edit it first", kProduct);
            return;
        }
        customers_->AddNew();
        (*customers_)["FirstName"] = Value(std::string(kPlaceholder));
        (*customers_)["LastName"] = Value(std::string("Last Name"));
        customers_->Update();
        grdCust.setCurrent(grdCust.dataRows(), kFirstName);
        newCustomer_ = true;
        Form_Load();
        cmdEdit_Click();
    });
}

void frmCustomerView::edit(int row) {
    const std::int64_t id = grdCust.value(row, kId).toInteger();
    bool there = false;
    guarded({"frmCustomerView", "cmdEdit_Click"}, [&] { there = !openDirect(Sql("SELECT ID FROM Customer WHERE ID = ") + id)->Eof(); });
    if (!there) {
        desk().message("That customer was deleted meanwhile. The list is read again.", kProduct);
        return Form_Load();
    }
    auto& customer = desk().form<frmCustomer>();
    customer.CustomerID = static_cast<std::int32_t>(id);
    desk().showModal(customer);
    Form_Load();
}

void frmCustomerView::cmdEdit_Click() {
    if (!std::exchange(newCustomer_, false)) {
        if (grdCust.selected())
            edit(grdCust.row());
        return;
    }
    for (int row = 1; row <= grdCust.dataRows(); ++row)
        if (customers_->cellText(row - 1, kFirstName) == kPlaceholder) {
            grdCust.setCurrent(row, kFirstName);
            edit(row);
        }
}

void frmCustomerView::cmdDelete_Click() {
    if (!grdCust.selected() || desk().message("Are you sure you want to delete this customer?", kProduct, MessageIcon::Question,
                                              MessageButtons::OkCancel) != Answer::Ok)
        return;
    guarded({.tag = "frmCustomerView", .procedure = "cmdDelete_Click", .plain = "The customer was not deleted."}, [this] {
        try {
            openBroker(Sql("DELETE FROM Customer WHERE ID = ") + grdCust.value(grdCust.row(), kId).toInteger(), db::CommandType::Text,
                       CursorType::ForwardOnly, LockType::ReadOnly);
        } catch (const db::DbError& error) {
            if (error.category() != db::DbError::Category::Integrity)
                throw;
            desk().message("You may not delete a customer that has transactions associated with it.", kProduct);
        }
    });
    Form_Load();
}

} // namespace merchantry::customers
