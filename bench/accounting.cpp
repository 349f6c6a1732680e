// A year of sales as a file for accounting, beside its selects on SQLite, stepped to their end: receipts of three lines on three registers,
// with tenders, and a posting to an account for every tenth.

#include "bench/barestore.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"
#include "exchange/accounting/daybook.h"

#include <string>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 5;
constexpr int kGoods = 1000;
constexpr int kDays = 365;

void makeYear(db::Session& session, int perDay) {
    db::NoResult none;
    session.begin();
    for (const std::string& batch :
         {std::string("INSERT INTO Customer (FirstName) SELECT TOP 500 SKU FROM Item ORDER BY SKU"),
          "INSERT INTO [Transaction] (RegisterID, Time, SubTotal, TaxTotal, Total) SELECT TOP " + std::to_string(perDay * kDays) +
              " 1, '20250101', 30, 2.1, 32.1 FROM Item a CROSS JOIN Item b",
          "UPDATE [Transaction] SET RegisterID = TransactionNumber % 3 + 1, Time = DATEADD(minute, 540 + TransactionNumber % 600, "
          "DATEADD(day, TransactionNumber % " +
              std::to_string(kDays) + ", '20250101'))",
          std::string(
              "INSERT INTO TransactionEntry (TransactionNumber, SKU, MatrixSKU, Quantity, FullPrice, TaxID, Tax, DepartmentID) SELECT "
              "t.TransactionNumber, i.SKU, i.MatrixSKU, 1, 10, 0, 0.7, 1 FROM [Transaction] t CROSS JOIN (SELECT TOP 3 SKU, MatrixSKU "
              "FROM Item WHERE SKU NOT LIKE '$%' ORDER BY SKU) i"),
          std::string("INSERT INTO TransactionTender (TransactionNumber, TenderType, Amount) SELECT TransactionNumber, CASE "
                      "TransactionNumber % 3 WHEN 0 THEN 'Cash' WHEN 1 THEN 'Check' ELSE 'Credit Card' END, Total FROM [Transaction]"),
          std::string(
              "INSERT INTO CreditTransaction (TransactionNumber, CustomerID, CreditCode, Time, Total, OutstandingBalance) SELECT "
              "TransactionNumber, TransactionNumber % 500 + 1, 'Sale', Time, Total, Total FROM [Transaction] WHERE TransactionNumber % "
              "10 = 0")})
        session.execute(batch, none);
    session.commit();
}

// The export's selects as SQLite takes them; times are milliseconds since 1900.
class BareSelects {
public:
    explicit BareSelects(const BareStore& store) {
        const std::string lines = " FROM \"Transaction\" t JOIN TransactionEntry e ON e.TransactionNumber = t.TransactionNumber ";
        const std::string day = "t.Time / 86400000";
        const std::string item = "JOIN Item i ON i.SKU = e.SKU AND i.MatrixSKU = e.MatrixSKU ";
        const std::string sums = "sum(e.Quantity * e.FullPrice - e.Discount), sum(e.Tax)";
        for (const std::string& sql :
             {"SELECT " + day +
                  ", t.RegisterID, CASE WHEN e.SKU LIKE '$%' THEN e.SKU END, coalesce(e.DepartmentID, i.DepartmentID), e.TaxID, " + sums +
                  lines + "LEFT " + item + "WHERE t.Time > 0 GROUP BY 1, 2, 3, 4, 5",
              "SELECT " + day +
                  ", t.RegisterID, d.TenderType, sum(d.Amount) FROM \"Transaction\" t JOIN TransactionTender d ON d.TransactionNumber = "
                  "t.TransactionNumber WHERE t.Time > 0 GROUP BY 1, 2, 3",
              "SELECT " + day +
                  ", t.RegisterID, count(*), sum(t.SubTotal), sum(t.TaxTotal), sum(t.Total) FROM \"Transaction\" t WHERE t.Time > 0 "
                  "GROUP BY 1, 2",
              "SELECT " + day + ", " + sums + lines + item + "AND i.SKU NOT LIKE '$%' WHERE t.Time > 0 GROUP BY 1",
              std::string(
                  "SELECT CreditTransID, Time / 86400000, CustomerID, CreditCode, Total, TransactionNumber > 0 FROM CreditTransaction "
                  "WHERE Total <> 0 AND Time > 0 ORDER BY CreditTransID"),
              std::string(
                  "SELECT ID, FirstName, LastName, Company, Address, Address2, City, State, Zip, PhoneNumber, Email FROM Customer")})
            statements_.push_back(store.prepare(sql));
    }
    ~BareSelects() {
        for (sqlite3_stmt* statement : statements_)
            sqlite3_finalize(statement);
    }
    BareSelects(const BareSelects&) = delete;
    BareSelects& operator=(const BareSelects&) = delete;

    void run() {
        for (sqlite3_stmt* statement : statements_) {
            while (sqlite3_step(statement) == SQLITE_ROW)
                sum += readRow(statement);
            sqlite3_reset(statement);
        }
    }
    long sum = 0;

private:
    std::vector<sqlite3_stmt*> statements_;
};

void measure(int perDay) {
    const ItemStore goods(kGoods);
    const auto session = goods.session();
    makeYear(*session, perDay);
    const BareStore store(goods.file());
    BareSelects bare(store);
    std::size_t bytes = 0;
    std::string fault;
    const std::string what = "a year of " + std::to_string(perDay) + " receipts a day for accounting";
    ratio(
        what.c_str(), kRuns,
        [&] {
            auto book = exchange::readDays(*session, *Date::fromText("1/1/2025"), *Date::fromText("12/31/2025"), [](int) { return true; });
            for (const auto& day : book.days)
                fault += day.fault;
            bytes = exchange::iifText(exchange::fileOf(*session, book.days, book.map), true).size();
        },
        [&] { bare.run(); });
    if (bytes < static_cast<std::size_t>(kDays) * 100 || !fault.empty() || bare.sum == 0)
        std::printf("DIFFERENT: %zu bytes; %s\n", bytes, fault.substr(0, 200).c_str());
}

} // namespace

int main() {
    for (const int perDay : {50, 100, 200})
        measure(perDay);
    return 0;
}
