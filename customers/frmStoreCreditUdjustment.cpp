#include "customers/frmStoreCreditUdjustment.h"

#include "app/db/ado/transaction.h"
#include "app/modMain.h"
#include "app/posting.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/textorder.h"
#include "customers/accountamounts.h"
#include "customers/frmCreditAdjCodes.h"
#include "ui/desk.h"

namespace merchantry::customers {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kTag = "MR_frmCreditAdjCodes"; // shared with that screen
constexpr int kCodeLength = 25;
constexpr int kApplicationId = 2;
constexpr int kApplicationCashier = 5;
constexpr const char* kApplicationCode = "application";

const db::SqlType kInt{db::TypeKind::Int, 0, 0, 0};
const db::SqlType kMoney{db::TypeKind::Money, 0, 0, 0};

db::Parameter number(const char* name, std::int64_t value) {
    return {name, kInt, Value(value), false};
}

db::Parameter money(const char* name, Currency amount) {
    return {name, kMoney, Value(amount), false};
}

// Each call has a connection of its own: what the screen's connection begins does not cover it.
void call(const Sql& procedure, const std::vector<db::Parameter>& parameters) {
    openBroker(procedure, db::CommandType::StoredProcedure, db::CursorType::ForwardOnly, db::LockType::ReadOnly, parameters);
}

} // namespace

frmStoreCreditUdjustment::frmStoreCreditUdjustment(Desk& desk) : Form(desk, "frmStoreCreditUdjustment", "Store Credit Adjustment") {
    setIcon("item");
    for (TextBox* box : {&txtOutBalance, &txtDebits, &txtCredits}) {
        box->setLocked(true);
        box->alignRight = true;
    }
    txtAmount.alignRight = true;
    txtAmount.setToolTip("Above zero the customer owes more, below zero less.");
    cmdAutoApply.setToolTip("Applies the credits to the debits from the top of the list, and posts that at once.");
    cbCustomers.click = cbCustomers.change = [this] { chooseCustomer(); };
    cmdPostAdjustment.click = [this] { cmdPostAdjustment_Click(); };
    cmdPostApplAmounts.click = [this] { cmdPostApplAmounts_Click(); };
    cmdAutoApply.click = [this] { cmdAutoApply_Click(); };
    mdClearAll.click = [this] { open_.clearApplied(); };
    cmdDetail.click = [this] { cmdDetail_Click(); };
    cmdAddCode.click = [this] { cmdAddCode_Click(); };
    cmdExit.click = [this] { unload(); };
    cmdExit.isCancel = true;

    asksBeforeLeaving({&cbCustomers, &cbCreditCodes});
    setLayout(column({
        title(lblHeading),
        row({fields({field("Custo&mer:", cbCustomers).wide(34)}), stretch()}),
        row({fields({field("Outstanding balance:", txtOutBalance).wide(10)}), fields({field("Debits:", txtDebits).wide(10)}),
             fields({field("Credits:", txtCredits).wide(10)}), stretch()}),
        open_.item(),
        open_.totals(),
        row({at(cmdDetail), stretch(), at(mdClearAll), at(cmdAutoApply), at(cmdPostApplAmounts)}),
        box("Adjustment", row({fields({field("Amou&nt:", txtAmount).wide(13)}), fields({field("C&ode:", cbCreditCodes).wide(22)}),
                               at(cmdAddCode), stretch(), at(cmdPostAdjustment)})),
        buttons({stretch(), note("Posted amounts are saved at once"), at(cmdExit)}),
    }));
    offer("GetCustomerBalance",
          [this](const auto& arguments) { return GetCustomerBalance(arguments.empty() ? -1 : std::stoi(arguments[0])).toFixedText(); });
}

void frmStoreCreditUdjustment::Form_Load() {
    guarded({kTag, "Form_Load"}, [this] {
        fillCodes();
        fillCustomers();
    });
}

void frmStoreCreditUdjustment::fillCodes() {
    cbCreditCodes.clear();
    const auto codes = openBroker("bsp_CreditAdjCodes", db::CommandType::StoredProcedure, db::CursorType::Static, db::LockType::ReadOnly);
    for (; !codes->Eof(); codes->MoveNext()) {
        const std::string code = (*codes)["CreditCode"].text();
        cbCreditCodes.add(code, static_cast<int>((*codes)["CreditID"].Value().toInteger()));
        if (sameText(code, "other"))
            cbCreditCodes.setListIndex(cbCreditCodes.count() - 1);
    }
}

void frmStoreCreditUdjustment::fillCustomers() {
    cbCustomers.clear();
    const auto customers =
        openDirect("SELECT ID, FirstName, LastName, Balance FROM Customer WHERE chargeaccount = 1 ORDER BY FirstName,LastName",
                   db::CursorType::Static);
    for (; !customers->Eof(); customers->MoveNext())
        cbCustomers.add((*customers)["FirstName"].text() + " " + (*customers)["LastName"].text(),
                        static_cast<int>((*customers)["ID"].Value().toInteger()));
    customerCount_ = cbCustomers.count();
    if (customerCount_ > 0)
        cbCustomers.setListIndex(0);
}

void frmStoreCreditUdjustment::Form_Activate() {
    if (std::exchange(activated_, true))
        return;
    BatchNumber = -1;
    if (customerCount_ >= 1)
        return;
    desk().message("No customers are eligible for store credit.", "Store Credit");
    unload();
}

void frmStoreCreditUdjustment::Form_Unload(bool& /*cancel*/) {
    CloseBatch();
}

Currency frmStoreCreditUdjustment::GetCustomerBalance(std::int32_t customer) {
    const auto row = openDirect(Sql("SELECT Balance FROM Customer WHERE ID = ") + customer);
    return row->Eof() ? Currency() : (*row)["Balance"].Value().toCurrency();
}

void frmStoreCreditUdjustment::AddBatch() {
    guarded({kTag, "Add Batch"}, [this] {
        call("sp_AddBatch", {number("StoreId", StoreId), number("CashierId", CashierId)});
        BatchNumber = static_cast<std::int32_t>((*openDirect("SELECT MAX(BatchNumber)FROM batch"))[0].Value().toInteger());
    });
}

void frmStoreCreditUdjustment::CloseBatch() {
    guarded({kTag, "Close Batch "}, [this] {
        call("sp_CloseBatch", {number("BatchNUmber", BatchNumber), number("StoreId", StoreId), number("CashierId", CashierId)});
    });
}

void frmStoreCreditUdjustment::chooseCustomer() {
    if (cbCustomers.listIndex() < 0)
        return;
    CustomerID = cbCustomers.itemData();
    loadTransactions();
}

void frmStoreCreditUdjustment::loadTransactions() {
    guarded({kTag, "LoadTransactions"}, [this] {
        const auto [debits, credits] = open_.load(CustomerID);
        txtOutBalance.setText(asStored(GetCustomerBalance(CustomerID)));
        txtDebits.setText(asStored(debits));
        txtCredits.setText(asStored(credits));
        nothingUnsaved();
    });
}

bool frmStoreCreditUdjustment::hasCustomer() {
    if (CustomerID >= 0)
        return true;
    desk().message("Please selet a customer first.", "No Customer Selcted");
    return false;
}

// Without a handler: what is no amount, and what the store refuses, ends the program with nothing posted.
void frmStoreCreditUdjustment::cmdPostAdjustment_Click() {
    if (!hasCustomer())
        return;
    if (isNumeric(txtAmount.text()) && !amountWithin(txtAmount.text())) {
        desk().message("An adjustment of more than " + kMostAdjusted.toDisplay() + " cannot be posted.", "Wrong Adjustment Amount");
        return;
    }
    if (amountFrom(txtAmount.text()) == Currency()) {
        desk().message("Please enter a positive or negative adjustment amount", "Wrong Adjustment Amount");
        return;
    }
    txtAmount.setText(amountFrom(txtAmount.text()).toDisplay());
    if (amountFrom(txtAmount.text()) == Currency())
        desk().message("Less than a cent cannot be posted.", "Wrong Adjustment Amount");
    else if (cbCreditCodes.listIndex() < 0)
        desk().message("Please choose a code first.", caption(), MessageIcon::Exclamation);
    else
        postAdjustment(amountFrom(txtAmount.text()));
}

void frmStoreCreditUdjustment::postAdjustment(Currency amount) {
    if (!hasBatch())
        return;
    const bool done = postedWhole([&] {
        call("sp_PostAdjustment",
             {number("BatchNumber", BatchNumber), number("StoreId", StoreId), number("CustomerId", CustomerID),
              number("CashierId", CashierId), money("AdjustmentAmount", amount), number("CreditId", cbCreditCodes.itemData()),
              textParameter("CreditCode", kCodeLength, cbCreditCodes.text())});
    });
    if (done)
        loadTransactions();
}

void frmStoreCreditUdjustment::cmdPostApplAmounts_Click() {
    if (hasCustomer() && open_.appliedFits())
        postApplied();
}

// Without a handler: a refusal of the store, because somebody else applied it meanwhile, ends the program with nothing applied twice.
void frmStoreCreditUdjustment::postApplied() {
    for (const OpenTransactions::Applied& one : open_.applied())
        if (!PostAppliedRow(one))
            return;
    loadTransactions();
}

bool frmStoreCreditUdjustment::PostAppliedRow(const OpenTransactions::Applied& applied) {
    if (!hasBatch())
        return false;
    return postedWhole([&] {
        call(" sp_PostAppliedAmount",
             {number("BatchNumber", BatchNumber), number("AppTransNumber", applied.number), number("StoreId", StoreId),
              number("CustomerId", CustomerID), number("CashierId", kApplicationCashier), money("AdjustmentAmount", applied.amount),
              number("CreditId", kApplicationId), textParameter("CreditCode", kCodeLength, kApplicationCode)});
    });
}

// False when the batch could not be opened, which was reported.
bool frmStoreCreditUdjustment::hasBatch() {
    if (BatchNumber == -1)
        AddBatch();
    return BatchNumber != -1;
}

bool frmStoreCreditUdjustment::postedWhole(const std::function<void()>& post) {
    return posted(desk(), caption(), [&] {
        db::Transaction transaction(modMain().Conn);
        post();
        transaction.commit();
    });
}

void frmStoreCreditUdjustment::cmdAutoApply_Click() {
    if (amountFrom(txtCredits.text()) >= Currency()) {
        desk().message("There are no outstanding credits to apply. Please select a different customer.", "No Outstanding Credits");
        return;
    }
    if (amountFrom(txtDebits.text()) <= Currency()) {
        desk().message(
            "There is no outstanding debits to which the outstanding credits may be applied. Please select a different customer.",
            "No Outstanding Credits");
        return;
    }
    open_.proposePairs();
    desk().yield();
    if (open_.signsFit())
        postApplied();
}

void frmStoreCreditUdjustment::cmdDetail_Click() {
    guarded({kTag, "cmdDetails_Click", caption() + " - Critical Error"}, [this] { showDetail(); });
}

void frmStoreCreditUdjustment::showDetail() {
    const std::string number = open_.marked();
    if (number.empty()) {
        desk().message("An transaction must be selected before viewing details on that transaction", "Transaction Details");
        return;
    }
    modMain().doors.ReportViewer("CreditViewDetail.rpt", {number}, "Transaction Details");
}

void frmStoreCreditUdjustment::cmdAddCode_Click() {
    desk().showModal(desk().form<frmCreditAdjCodes>());
    guarded({kTag, "Form_Load"}, [this] { fillCodes(); });
}

} // namespace merchantry::customers
