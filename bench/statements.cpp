// A run of statements over charge customers with 50 postings each, drawn up and posted, beside its statements on SQLite: the same selects
// stepped to their end and the same rows written, prepared once, in one durable transaction.

#include "bench/barestore.h"
#include "bench/chargeaccounts.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"
#include "customers/statements/statementrun.h"

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 3;
// The same work without the program.
class BareRun {
public:
    explicit BareRun(const BareStore& store) {
        for (const char* sql :
             {"BEGIN IMMEDIATE",
              "SELECT ID, FirstName, ChargeAccount, AssessFinanceCharges, APR, MinFinChg, OverdueAfter, (SELECT max(AsAt) FROM Statement t "
              "JOIN StatementRun r ON r.RunID = t.RunID WHERE t.CustomerID = Customer.ID) FROM Customer ORDER BY ID",
              "SELECT CustomerID, CreditTransID, Time, PastDueDate, Total, OutstandingBalance, CreditCode FROM CreditTransaction ORDER BY "
              "CustomerID, "
              "Time, CreditTransID",
              "SELECT a.CustomerID, a.CreditTransID, a.Time, a.Amount, p.Paid FROM CreditApplication a LEFT JOIN (SELECT b.BatchNumber, "
              "b.CustomerID, "
              "max(t.Time) AS Paid FROM CreditApplication b JOIN CreditTransaction t ON t.CreditTransID = b.CreditTransID WHERE b.Amount < "
              "0 GROUP BY "
              "b.BatchNumber, b.CustomerID) p ON p.BatchNumber = a.BatchNumber AND p.CustomerID = a.CustomerID ORDER BY a.CustomerID, "
              "a.ApplicationID",
              "INSERT INTO StatementRun (RunID, AsAt, Posted, StoreID, CashierID, BatchNumber, LastPosting) VALUES (?1, ?1, 0, 1, 5, 1, 0)",
              "INSERT INTO CreditTransaction (CreditTransID, TransactionNumber, BatchNumber, StoreID, CustomerID, CashierID, CreditID, "
              "CreditCode, Time, "
              "PastDueDate, Total, OutstandingBalance) VALUES (?1, -?1, 1, 1, ?2, 5, 1, 'Finance Charge', ?3, ?3, 50000, 50000)",
              "UPDATE Customer SET Balance = Balance + 50000 WHERE ID = ?1",
              "INSERT INTO Statement (RunID, CustomerID, Since, BroughtForward, Charged, Paid, Credited, FinanceCharge, Balance, NotDue, "
              "Days30, Days60, "
              "Days90, Over90, Unapplied, Reckoning, CreditTransID) VALUES (?1, ?2, 0, 0, 0, 0, 0, 50000, 0, 0, 0, 0, 0, 0, 0, "
              "'$100.00 overdue since 3/2, 31 days at 20 %: $1.70, raised to the minimum of $5.00', ?3)",
              "COMMIT", "SELECT max(CreditTransID) FROM CreditTransaction", "PRAGMA synchronous=FULL", "PRAGMA foreign_keys=ON",
              "INSERT INTO ts_identity(id, last) SELECT id, ?1 FROM ts_object WHERE name = 'CreditTransaction' ON CONFLICT(id) DO UPDATE "
              "SET last = "
              "excluded.last"})
            statements_.push_back(store.prepare(sql));
        all(10);
        all(11);
    }
    ~BareRun() {
        for (sqlite3_stmt* statement : statements_)
            sqlite3_finalize(statement);
    }
    BareRun(const BareRun&) = delete;
    BareRun& operator=(const BareRun&) = delete;

    // Drawn up, and drawn up again in the transaction that posts.
    void run(int customers, int number) {
        for (int i = 1; i <= 3; ++i)
            all(i);
        all(0);
        for (int i = 1; i <= 3; ++i)
            all(i);
        one(4, number);
        sqlite3_step(statements_[9]);
        std::int64_t id = sqlite3_column_int64(statements_[9], 0);
        sqlite3_reset(statements_[9]);
        for (int customer = 1; customer <= customers; ++customer) {
            one(5, ++id, customer, 40'000LL * 86'400'000);
            one(6, customer);
            one(7, number, customer, id);
        }
        one(12, id);
        all(8);
    }
    long sum = 0;

private:
    void all(std::size_t which) {
        while (sqlite3_step(statements_[which]) == SQLITE_ROW)
            sum += readRow(statements_[which]);
        sqlite3_reset(statements_[which]);
    }
    template <class... Numbers> void one(std::size_t which, Numbers... numbers) {
        int place = 0;
        (sqlite3_bind_int64(statements_[which], ++place, numbers), ...);
        if (sqlite3_step(statements_[which]) != SQLITE_DONE)
            std::printf("DIFFERENT: %s\n", sqlite3_errmsg(sqlite3_db_handle(statements_[which])));
        sqlite3_reset(statements_[which]);
    }
    std::vector<sqlite3_stmt*> statements_;
};

void measure(int customers) {
    const ItemStore items(customers);
    const auto session = items.session();
    makeChargeAccounts(*session, customers);
    const BareStore store(items.file());
    BareRun bare(store);
    Date asAt = *Date::fromText("3/5/2026");
    int number = 1000;
    std::size_t statements = 0;
    const auto go = [](int) { return true; };
    const std::string what = "a run of statements over " + std::to_string(customers) + " customers";
    ratio(
        what.c_str(), kRuns,
        [&] {
            asAt = asAt.plusDays(30);
            const auto drawn = customers::drawUpStatements(*session, asAt, go);
            statements = drawn.statements.size();
            if (customers::postStatements(*session, drawn, go) == 0)
                std::printf("DIFFERENT: not posted\n");
        },
        [&] { bare.run(customers, ++number); });
    if (statements != static_cast<std::size_t>(customers) || bare.sum == 0)
        std::printf("DIFFERENT: %zu statements\n", statements);
}

} // namespace

int main() {
    for (const int customers : {2'500, 5'000, 10'000})
        measure(customers);
    return 0;
}
