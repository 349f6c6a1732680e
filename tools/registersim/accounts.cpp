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
        const Currency left = payFor(customer, paid);
        postings_.push_back({customer, 0, static_cast<int>(batches_.size()), day, -paid, -left});
    }
}

// Matches a payment with the oldest debts; gives back what is left of it.
Currency Accounts::payFor(int customerId, Currency amount) {
    for (Posting& posting : postings_) {
        if (posting.customerId != customerId || posting.open <= Currency())
            continue;
        const Currency part = std::min(posting.open, amount);
        posting.open -= part;
        amount -= part;
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
    BulkInsert rows(session_, "CreditTransaction",
                    "TransactionNumber, BatchNumber, CustomerID, CreditID, CreditCode, Time, PastDueDate, Total, OutstandingBalance",
                    "iiiitddmm");
    for (const Posting& posting : postings_) {
        const bool debit = posting.transactionNumber != 0;
        rows.add({debit ? Value(posting.transactionNumber) : Value(),
                  debit ? Value() : Value(batchNumbers[static_cast<std::size_t>(posting.batch) - 1]), posting.customerId, 1,
                  debit ? "Sale" : "Payment", posting.time, debit ? Value(posting.time.plusDays(kDaysToPay)) : Value(), posting.total,
                  posting.open});
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
