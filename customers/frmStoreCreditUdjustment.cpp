#include "customers/frmStoreCreditUdjustment.h"

#include "app/db/ado/transaction.h"
#include "app/modMain.h"
#include "app/posting.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/textorder.h"
#include "customers/frmCreditAdjCodes.h"
#include "ui/calls.h"
#include "ui/desk.h"

namespace merchantry::customers {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kTag = "MR_frmCreditAdjCodes"; // shared with that screen
constexpr int kCodeLength = 25;
constexpr std::int64_t kUnitsInCent = 100;
constexpr int kApplicationId = 2;
constexpr int kApplicationCashier = 5;
constexpr const char* kApplicationCode = "application";

enum Column { kNumber, kType, kDate, kDue, kTotal, kOpen, kApplied };

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

Currency amountFrom(const std::string& text) {
    const auto amount = amountOf(text);
    if (!amount)
        throw RunTimeError(13, "Type mismatch");
    return *amount;
}

Currency magnitude(Currency amount) {
    return amount < Currency() ? -amount : amount;
}

// As much as one posting may come to, so that accounts and their sums never leave what money can hold.
const Currency kMostAdjusted = Currency::fromUnits(9'999'999'999'900);

// Nothing for what is no amount, or a larger one.
std::optional<Currency> amountWithin(const std::string& text) {
    try {
        const auto amount = amountOf(text);
        return amount && magnitude(*amount) <= kMostAdjusted ? amount : std::nullopt;
    } catch (const OverflowError&) {
        return std::nullopt;
    }
}

std::string shortDate(const Value& date) {
    return date.isNull() ? "" : date.as<Date>().dateOnly().toShortText();
}

// As stored: in cents, and with all its decimals where it has fractions of one (a register's posting can), so that what is shown is what
// can be applied.
std::string asStored(Currency amount) {
    if (amount.units() % kUnitsInCent == 0)
        return amount.toDisplay();
    const std::string digits = magnitude(amount).toText();
    return amount < Currency() ? "($" + digits + ")" : "$" + digits;
}

// Whether what is left open after applying would be more than the posting ever was, with the wrong sign that is.
bool opensMore(Currency total, Currency open, Currency applied) {
    const Currency left = open - applied;
    return open > Currency() ? left > open && left > total : left < open && left < total;
}

} // namespace

frmStoreCreditUdjustment::frmStoreCreditUdjustment(Desk& desk) : Form(desk, "frmStoreCreditUdjustment", "Store Credit Adjustment") {
    setIcon("item");
    grdTrans.setColumns({{.heading = "Trans#", .format = GridColumn::Format::Number, .characters = 9},
                         {.heading = "Type", .characters = 18},
                         {.heading = "Trans Date", .characters = 11},
                         {.heading = "Due Date", .characters = 11},
                         {.heading = "Trans Amount", .alignRight = true, .characters = 13},
                         {.heading = "Balance Amount", .alignRight = true, .characters = 13},
                         {.heading = "Applied Amount", .alignRight = true, .characters = 13}});
    grdTrans.emptyText = "Nothing is open on this account.";
    grdTrans.beforeEdit = [](int, int column, bool& cancel) { cancel = column != kApplied; };
    grdTrans.afterEdit = calls(this, &frmStoreCreditUdjustment::grdTrans_AfterEdit);
    grdTrans.setToolTip("What is above zero the customer owes; below zero the store does. Applied amounts take the sign of their row.");
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
    mdClearAll.click = [this] { mdClearAll_Click(); };
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
        at(grdTrans).high(9).wide(70).stretched(),
        row({stretch(), figure("Transactions", lbTotalTA), figure("Balances", lbTotalBA), figure("Applied", lbTotalAA)}),
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
        grdTrans.setDataRows(0);
        const auto rows =
            openBroker("sp_GetCustomerCreditStatus", db::CommandType::StoredProcedure, db::CursorType::Static, db::LockType::ReadOnly,
                       {number("CustomerId", CustomerID), textParameter("TransStatus", kCodeLength, "open")});
        Currency total;
        Currency open;
        Currency debits;
        Currency credits;
        for (; !rows->Eof(); rows->MoveNext()) {
            const Currency amount = (*rows)["Total"].Value().toCurrency();
            const Currency left = (*rows)["OutstandingBalance"].Value().toCurrency();
            grdTrans.addRow({(*rows)["TransactionNumber"].text(), (*rows)["CreditCode"].text(), shortDate((*rows)["Time"].Value()),
                             shortDate((*rows)["PastDueDate"].Value()), asStored(amount), asStored(left), ""});
            total += amount;
            open += left;
            (left > Currency() ? debits : credits) += left;
        }
        showTotals(total, open, debits, credits);
        nothingUnsaved();
    });
}

void frmStoreCreditUdjustment::showTotals(Currency total, Currency open, Currency debits, Currency credits) {
    lbTotalTA.setCaption(asStored(total));
    lbTotalBA.setCaption(asStored(open));
    lbTotalAA.setCaption(Currency().toDisplay());
    txtOutBalance.setText(asStored(GetCustomerBalance(CustomerID)));
    txtDebits.setText(asStored(debits));
    txtCredits.setText(asStored(credits));
}

Currency frmStoreCreditUdjustment::amountAt(int row, int column) const {
    const std::string text = grdTrans.text(row, column);
    return text.empty() ? Currency() : amountFrom(text);
}

Currency frmStoreCreditUdjustment::GetAppliedAmount(int row) const {
    return amountAt(row, kApplied);
}

// What is typed becomes currency, in cents, unless something open has fractions of one; what is no amount is taken out again.
void frmStoreCreditUdjustment::grdTrans_AfterEdit(int row, int column) {
    const std::string typed = std::string(trimmed(grdTrans.text(row, column)));
    const auto amount = amountWithin(typed);
    if (!typed.empty() && !amount)
        desk().message("\"" + typed + "\" is no amount" + (isNumeric(typed) ? " that an account can have." : "."), caption(),
                       MessageIcon::Exclamation);
    grdTrans.setText(row, column, !amount ? "" : hasFractions() ? asStored(*amount) : amount->toDisplay());
    if (!autoApply_)
        showApplied();
}

bool frmStoreCreditUdjustment::hasFractions() const {
    for (int row = 1; row <= grdTrans.dataRows(); ++row)
        if (amountAt(row, kOpen).units() % kUnitsInCent != 0)
            return true;
    return false;
}

void frmStoreCreditUdjustment::showApplied() {
    Currency sum;
    for (int row = 1; row <= grdTrans.dataRows(); ++row)
        sum += GetAppliedAmount(row);
    lbTotalAA.setCaption(asStored(sum));
}

void frmStoreCreditUdjustment::mdClearAll_Click() {
    for (int row = 1; row <= grdTrans.dataRows(); ++row)
        grdTrans.setText(row, kApplied, "");
    lbTotalAA.setCaption(Currency().toDisplay());
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

// False when it was said what does not fit.
bool frmStoreCreditUdjustment::appliedFits(Currency& sum) {
    for (int row = 1; row <= grdTrans.dataRows(); ++row) {
        if (grdTrans.text(row, kApplied).empty())
            continue;
        sum += GetAppliedAmount(row);
        if (magnitude(GetAppliedAmount(row)) <= magnitude(amountAt(row, kOpen)))
            continue;
        desk().message("At least one transaction's applied amount is grettear then the outstanding balance for that transaction. Please "
                       "correct and post applied amounts again.",
                       "Wrong Applied Amount");
        return false;
    }
    return true;
}

void frmStoreCreditUdjustment::cmdPostApplAmounts_Click() {
    if (!hasCustomer())
        return;
    Currency sum;
    if (!appliedFits(sum))
        return;
    if (sum != Currency()) {
        desk().message(
            "The total of applied credits do not equal the total of applied debits. Please correct and post applied amounts again.",
            "Wrong Applied Amounts");
        return;
    }
    if (signsFit())
        postApplied();
}

// False when it was said which amount has the wrong sign. The other way round an amount takes back what was applied before, and no more.
bool frmStoreCreditUdjustment::signsFit() {
    for (int row = 1; row <= grdTrans.dataRows(); ++row) {
        if (!opensMore(amountAt(row, kTotal), amountAt(row, kOpen), GetAppliedAmount(row)))
            continue;
        const bool debit = amountAt(row, kOpen) > Currency();
        desk().message("Transaction " + grdTrans.text(row, kNumber) + " is a " +
                           (debit ? "debit: what is applied to it stands above zero." : "credit: what is applied to it stands below zero."),
                       "Wrong Applied Amount");
        return false;
    }
    return true;
}

// Without a handler: a refusal of the store, because somebody else applied it meanwhile, ends the program with nothing applied twice.
void frmStoreCreditUdjustment::postApplied() {
    for (int row = 1; row <= grdTrans.dataRows(); ++row)
        if (!grdTrans.text(row, kApplied).empty() && !PostAppliedRow(row))
            return;
    loadTransactions();
}

bool frmStoreCreditUdjustment::PostAppliedRow(int row) {
    const std::int64_t transactionNumber = std::stoll(grdTrans.text(row, kNumber));
    const Currency amount = GetAppliedAmount(row);
    if (amount == Currency())
        return true;
    if (!hasBatch())
        return false;
    return postedWhole([&] {
        call(" sp_PostAppliedAmount",
             {number("BatchNumber", BatchNumber), number("AppTransNumber", transactionNumber), number("StoreId", StoreId),
              number("CustomerId", CustomerID), number("CashierId", kApplicationCashier), money("AdjustmentAmount", amount),
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
    autoApply_ = true; // and stays so: from here on edits by hand no longer add up in lbTotalAA
    proposePairs();
    desk().yield();
    if (signsFit())
        postApplied();
}

// Each credit, from the top of the list, takes the first debits that are left.
void frmStoreCreditUdjustment::proposePairs() {
    for (int i = 1; i <= grdTrans.dataRows(); ++i) {
        Currency credit = amountAt(i, kOpen) - GetAppliedAmount(i);
        if (credit >= Currency())
            continue;
        for (int j = 1; j <= grdTrans.dataRows() && credit != Currency(); ++j) {
            const Currency debit = amountAt(j, kOpen) - GetAppliedAmount(j);
            if (debit <= Currency())
                continue;
            const Currency part = std::min(magnitude(credit), debit);
            ApplyPair(i, j, part);
            credit += part;
        }
        if (credit != Currency())
            return; // no debit is left
    }
}

void frmStoreCreditUdjustment::ApplyPair(int credit, int debit, Currency amount) {
    grdTrans.setText(credit, kApplied, asStored(GetAppliedAmount(credit) - amount));
    grdTrans.setText(debit, kApplied, asStored(GetAppliedAmount(debit) + amount));
}

void frmStoreCreditUdjustment::cmdDetail_Click() {
    guarded({kTag, "cmdDetails_Click", caption() + " - Critical Error"}, [this] { showDetail(); });
}

void frmStoreCreditUdjustment::showDetail() {
    if (!grdTrans.selected()) {
        desk().message("An transaction must be selected before viewing details on that transaction", "Transaction Details");
        return;
    }
    modMain().doors.ReportViewer("CreditViewDetail.rpt", {grdTrans.text(grdTrans.row(), kNumber)}, "Transaction Details");
}

void frmStoreCreditUdjustment::cmdAddCode_Click() {
    desk().showModal(desk().form<frmCreditAdjCodes>());
    guarded({kTag, "Form_Load"}, [this] { fillCodes(); });
}

} // namespace merchantry::customers
