#include "customers/opentransactions.h"

#include "app/modMain.h"
#include "base/numbers.h"
#include "base/text.h"
#include "customers/accountamounts.h"
#include "ui/calls.h"
#include "ui/desk.h"

#include <algorithm>

namespace merchantry::customers {

using namespace app;
using namespace ui;

namespace {

constexpr int kStatusLength = 25;

enum Column { kNumber, kType, kDate, kDue, kTotal, kOpen, kApplied };

std::string shortDate(const Value& date) {
    return date.isNull() ? "" : date.as<Date>().dateOnly().toShortText();
}

} // namespace

OpenTransactions::OpenTransactions(Form& form)
    : grdTrans(form, "grdTrans"), lbTotalTA(form, "lbTotalTA"), lbTotalBA(form, "lbTotalBA"), lbTotalAA(form, "lbTotalAA") {
    grdTrans.setColumns({{.heading = "Trans#", .format = GridColumn::Format::Number, .characters = 9},
                         {.heading = "Type", .characters = 18},
                         {.heading = "Trans Date", .characters = 11},
                         {.heading = "Due Date", .characters = 11},
                         {.heading = "Trans Amount", .alignRight = true, .characters = 13},
                         {.heading = "Balance Amount", .alignRight = true, .characters = 13},
                         {.heading = "Applied Amount", .alignRight = true, .characters = 13}});
    grdTrans.emptyText = "Nothing is open on this account.";
    grdTrans.beforeEdit = [](int, int column, bool& cancel) { cancel = column != kApplied; };
    grdTrans.afterEdit = calls(this, &OpenTransactions::grdTrans_AfterEdit);
    grdTrans.setToolTip("What is above zero the customer owes; below zero the store does. Applied amounts take the sign of their row.");
}

Item OpenTransactions::item() {
    return at(grdTrans).high(9).wide(70).stretched();
}

Item OpenTransactions::totals() {
    return row({stretch(), figure("Transactions", lbTotalTA), figure("Balances", lbTotalBA), figure("Applied", lbTotalAA)});
}

OpenTransactions::Sums OpenTransactions::load(std::int32_t customer) {
    grdTrans.setDataRows(0);
    const auto rows =
        openBroker("sp_GetCustomerCreditStatus", db::CommandType::StoredProcedure, db::CursorType::Static, db::LockType::ReadOnly,
                   {intParameter("CustomerId", customer), textParameter("TransStatus", kStatusLength, "open")});
    Currency total;
    Sums sums;
    for (; !rows->Eof(); rows->MoveNext()) {
        const Currency amount = (*rows)["Total"].Value().toCurrency();
        const Currency left = (*rows)["OutstandingBalance"].Value().toCurrency();
        grdTrans.addRow({(*rows)["TransactionNumber"].text(), (*rows)["CreditCode"].text(), shortDate((*rows)["Time"].Value()),
                         shortDate((*rows)["PastDueDate"].Value()), asStored(amount), asStored(left), ""});
        total += amount;
        (left > Currency() ? sums.debits : sums.credits) += left;
    }
    showTotals(total, sums.debits + sums.credits);
    return sums;
}

void OpenTransactions::showTotals(Currency total, Currency open) {
    lbTotalTA.setCaption(asStored(total));
    lbTotalBA.setCaption(asStored(open));
    lbTotalAA.setCaption(Currency().toDisplay());
}

Currency OpenTransactions::amountAt(int row, int column) const {
    const std::string text = grdTrans.text(row, column);
    return text.empty() ? Currency() : amountFrom(text);
}

Currency OpenTransactions::GetAppliedAmount(int row) const {
    return amountAt(row, kApplied);
}

// What is typed becomes currency, in cents, unless something open has fractions of one; what is no amount is taken out again.
void OpenTransactions::grdTrans_AfterEdit(int row, int column) {
    const std::string typed = std::string(trimmed(grdTrans.text(row, column)));
    const auto amount = amountWithin(typed);
    if (!typed.empty() && !amount)
        grdTrans.form().desk().message("\"" + typed + "\" is no amount" + (isNumeric(typed) ? " that an account can have." : "."),
                                       grdTrans.form().caption(), MessageIcon::Exclamation);
    grdTrans.setText(row, column, !amount ? "" : anyFractions() ? asStored(*amount) : amount->toDisplay());
    if (!autoApply_)
        showApplied();
}

bool OpenTransactions::anyFractions() const {
    for (int row = 1; row <= grdTrans.dataRows(); ++row)
        if (hasFractions(amountAt(row, kOpen)))
            return true;
    return false;
}

void OpenTransactions::showApplied() {
    Currency sum;
    for (int row = 1; row <= grdTrans.dataRows(); ++row)
        sum += GetAppliedAmount(row);
    lbTotalAA.setCaption(asStored(sum));
}

void OpenTransactions::clearApplied() {
    for (int row = 1; row <= grdTrans.dataRows(); ++row)
        grdTrans.setText(row, kApplied, "");
    lbTotalAA.setCaption(Currency().toDisplay());
}

bool OpenTransactions::appliedFits() {
    Currency sum;
    if (!appliedWithinOpen(sum))
        return false;
    if (sum == Currency())
        return signsFit();
    say("The total of applied credits do not equal the total of applied debits. Please correct and post applied amounts again.",
        "Wrong Applied Amounts");
    return false;
}

bool OpenTransactions::appliedWithinOpen(Currency& sum) {
    for (int row = 1; row <= grdTrans.dataRows(); ++row) {
        if (grdTrans.text(row, kApplied).empty())
            continue;
        sum += GetAppliedAmount(row);
        if (magnitude(GetAppliedAmount(row)) <= magnitude(amountAt(row, kOpen)))
            continue;
        say("At least one transaction's applied amount is grettear then the outstanding balance for that transaction. Please "
            "correct and post applied amounts again.",
            "Wrong Applied Amount");
        return false;
    }
    return true;
}

// The other way round an amount takes back what was applied before, and no more.
bool OpenTransactions::signsFit() {
    for (int row = 1; row <= grdTrans.dataRows(); ++row) {
        if (!opensMore(amountAt(row, kTotal), amountAt(row, kOpen), GetAppliedAmount(row)))
            continue;
        const bool debit = amountAt(row, kOpen) > Currency();
        say("Transaction " + grdTrans.text(row, kNumber) + " is a " +
                (debit ? "debit: what is applied to it stands above zero." : "credit: what is applied to it stands below zero."),
            "Wrong Applied Amount");
        return false;
    }
    return true;
}

void OpenTransactions::say(const std::string& words, const std::string& title) {
    grdTrans.form().desk().message(words, title);
}

void OpenTransactions::proposePairs() {
    autoApply_ = true; // and stays so: from here on edits by hand no longer add up in lbTotalAA
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

void OpenTransactions::ApplyPair(int credit, int debit, Currency amount) {
    grdTrans.setText(credit, kApplied, asStored(GetAppliedAmount(credit) - amount));
    grdTrans.setText(debit, kApplied, asStored(GetAppliedAmount(debit) + amount));
}

std::vector<OpenTransactions::Applied> OpenTransactions::applied() const {
    std::vector<Applied> amounts;
    for (int row = 1; row <= grdTrans.dataRows(); ++row)
        if (const Currency amount = GetAppliedAmount(row); amount != Currency())
            amounts.push_back({std::stoll(grdTrans.text(row, kNumber)), amount});
    return amounts;
}

std::string OpenTransactions::marked() const {
    return grdTrans.selected() ? grdTrans.text(grdTrans.row(), kNumber) : "";
}

} // namespace merchantry::customers
