#include "bench/chargeaccounts.h"

#include <string>

namespace merchantry::bench {
namespace {

constexpr int kMonths = 25; // a sale and a payment in each

} // namespace

void makeChargeAccounts(db::Session& session, int customers) {
    db::NoResult none;
    session.begin();
    session.execute("INSERT INTO Customer (FirstName, ChargeAccount, AssessFinanceCharges) SELECT TOP " + std::to_string(customers) +
                        " SKU, 1, 1 FROM Item",
                    none);
    for (int month = 0; month < kMonths; ++month) {
        const std::string first = "DATEADD(month, " + std::to_string(month) + ", '20240101')";
        const std::string paid = month == kMonths - 1 ? "0" : "1";
        session.execute("INSERT INTO batch (CashierID) VALUES (5) "
                        "INSERT INTO CreditTransaction (CustomerID, CreditCode, Time, PastDueDate, Total, OutstandingBalance) SELECT ID, "
                        "'Sale', " +
                            first + ", " + first + ", 100 + ID % 90, CASE WHEN " + paid +
                            " = 1 THEN 0 ELSE 100 + ID % 90 END FROM Customer "
                            "INSERT INTO CreditTransaction (CustomerID, CreditCode, Time, Total, OutstandingBalance) SELECT ID, 'Payment', "
                            "DATEADD(day, 10, " +
                            first + "), CASE WHEN " + paid + " = 1 THEN -(100 + ID % 90) ELSE -1 END, CASE WHEN " + paid +
                            " = 1 THEN 0 ELSE -1 END FROM Customer",
                        none);
    }
    session.execute(
        "INSERT INTO CreditApplication (BatchNumber, CustomerID, CreditTransID, Time, Amount, Pending) SELECT DATEDIFF(month, "
        "'20240101', Time) + 1, CustomerID, CreditTransID, DATEADD(day, CASE WHEN Total > 0 THEN 10 ELSE 0 END, Time), Total, 0 "
        "FROM CreditTransaction WHERE OutstandingBalance = 0 ORDER BY CreditTransID "
        "UPDATE Customer SET Balance = 99 + ID % 90",
        none);
    session.commit();
}

} // namespace merchantry::bench
