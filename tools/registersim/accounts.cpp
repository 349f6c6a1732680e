#include "tools/registersim/accounts.h"

#include <algorithm>
#include <map>

namespace merchantry::registersim {
namespace {

constexpr int kDaysToPay = 30;
constexpr int kManager = 5;

} // namespace

Accounts::Accounts(db::Session& session, Random& random) : session_(session), random_(random) {}

void Accounts::charge(int customerId, int transactionNumber, Date time, Currency amount) {
    postings_.push_back({customerId, transactionNumber, 0, time, amount, amount});
}

void Accounts::collect(Date day) {
    std::map<int, Currency> due;
    for (const Posting& posting : postings_)
        if (posting.transactionNumber != 0 && posting.open > Currency() && posting.time.plusDays(kDaysToPay - 10) < day)
            due[posting.customerId] += posting.open;
    if (due.empty())
        return;
    batches_.push_back(day);
    for (const auto& [customer, amount] : due) {
        const int mood = random_.below(10);
        if (mood == 0)
            continue;
        const Currency paid = mood < 3 ? Currency::fromUnits(amount.units() / 200 * 100) : amount;
        if (paid == Currency())
            continue;
        const Currency left = payFor(customer, paid, postings_.size());
        postings_.push_back({customer, 0, static_cast<int>(batches_.size()), day, -paid, -left});
    }
}

// Matches a payment with the oldest debts; gives back what is left of it.
Currency Accounts::payFor(int customerId, Currency amount, std::size_t payment) {
    for (std::size_t i = 0; i < postings_.size() && amount > Currency(); ++i) {
        Posting& posting = postings_[i];
        if (posting.customerId != customerId || posting.open <= Currency())
            continue;
        const Currency part = std::min(posting.open, amount);
        posting.open -= part;
        amount -= part;
        matches_.push_back({i, payment, part});
    }
    return amount;
}

void Accounts::finish() {
    std::vector<int> numbers;
    for (const Date day : batches_) {
        run(session_, "INSERT INTO batch (CashierID, RegisterID, Opened, Closed) VALUES (@p1, 1, @p2, @p3)", "idd",
            {kManager, day, Date::fromMs(day.ms() + 1'800'000)});
        numbers.push_back(static_cast<int>(session_.lastIdentity().toInteger()));
    }
    write(numbers);
    writeBalances();
}

void Accounts::write(const std::vector<int>& batchNumbers) {
    const int firstId =
        static_cast<int>(query(session_, "SELECT ISNULL(MAX(CreditTransID), 0) + 1 FROM CreditTransaction")[0][0].toInteger());
    BulkInsert rows(
        session_, "CreditTransaction",
        "CreditTransID, TransactionNumber, BatchNumber, CustomerID, CreditID, CreditCode, Time, PastDueDate, Total, OutstandingBalance",
        "iiiiitddmm", true);
    int id = firstId;
    for (const Posting& posting : postings_) {
        const bool debit = posting.transactionNumber != 0;
        rows.add({id++, debit ? Value(posting.transactionNumber) : Value(),
                  debit ? Value() : Value(batchNumbers[static_cast<std::size_t>(posting.batch) - 1]), posting.customerId, 1,
                  debit ? "Sale" : "Payment", posting.time, debit ? Value(posting.time.plusDays(kDaysToPay)) : Value(), posting.total,
                  posting.open});
    }
    rows.finish();
    writeMatches(batchNumbers, firstId);
}

// Both halves of each match, dated as the payment.
void Accounts::writeMatches(const std::vector<int>& batchNumbers, int firstId) {
    BulkInsert rows(session_, "CreditApplication", "BatchNumber, CustomerID, CreditTransID, Time, Amount, Pending", "iiidmb");
    for (const Match& match : matches_) {
        const Posting& payment = postings_[match.payment];
        const int batch = batchNumbers[static_cast<std::size_t>(payment.batch) - 1];
        for (const auto& [posting, amount] : {std::pair(match.debt, match.amount), std::pair(match.payment, -match.amount)})
            rows.add({batch, payment.customerId, firstId + static_cast<int>(posting), payment.time, amount, false});
    }
    rows.finish();
}

void Accounts::writeBalances() {
    std::map<int, Currency> balances;
    for (const Posting& posting : postings_)
        balances[posting.customerId] += posting.open;
    for (const auto& [customer, balance] : balances)
        run(session_, "UPDATE Customer SET Balance = Balance + @p1 WHERE ID = @p2", "mi", {balance, customer});
}

} // namespace merchantry::registersim
