#include "app/db/schema/schema.h"
#include "customers/statements/statementrun.h"
#include "tests/db/teststore.h"

namespace merchantry::customers {
namespace {

// Three charge customers of whom one owes since March, one since today and one nothing, and one without an account.
class StatementRuns : public db::OnAStore {
protected:
    StatementRuns() {
        db::createSchema(*session);
        run("UPDATE StoreOptions SET ReminderPrior = 20 "
            "INSERT INTO Customer (FirstName, LastName, ChargeAccount, AssessFinanceCharges, APR, MinFinChg, OverdueAfter) VALUES "
            "('Ann', 'Ash', 1, 1, 20, 0, 0), ('Bob', '', 1, 1, NULL, NULL, NULL), ('Cy', '', 1, 1, NULL, NULL, NULL), ('Di', '', 0, 0, "
            "NULL, "
            "NULL, NULL)");
        sale(1, "20260301", "20260301", "120");
        sale(2, "20260318", "20260417", "40");
    }
    void sale(int customer, const std::string& day, const std::string& due, const std::string& amount) {
        const std::string id = std::to_string(customer);
        run("INSERT INTO CreditTransaction (CustomerID, CreditCode, Time, PastDueDate, Total, OutstandingBalance) VALUES (" + id +
            ", 'Sale', '" + day + "', '" + due + "', " + amount + ", " + amount + ") UPDATE Customer SET Balance = Balance + " + amount +
            " WHERE ID = " + id);
    }
    StatementRun drawn(const char* day = "3/20/2026") { return drawUpStatements(*session, *Date::fromText(day), go); }
    std::string refusal(const std::function<void()>& work) {
        try {
            work();
            return "";
        } catch (const std::exception& error) {
            return error.what();
        }
    }
    std::string accounts() {
        return rowsOf("SELECT CustomerID, Total, OutstandingBalance FROM CreditTransaction ORDER BY CreditTransID SELECT ID, Balance FROM "
                      "Customer ORDER BY ID SELECT COUNT(*) FROM Statement SELECT COUNT(*) FROM StatementRun SELECT COUNT(*) FROM batch");
    }
    void expectSound() { EXPECT_EQ(db::brokenInvariants(*session), std::vector<std::string>()); }

    RunProgress go = [](int) { return true; };
};

TEST_F(StatementRuns, AreDrawnUpWithoutWritingAndPostedOnce) {
    const std::string before = accounts();
    const StatementRun march = drawn();
    EXPECT_EQ(accounts(), before);
    ASSERT_EQ(march.statements.size(), 2U); // nothing to tell of the third
    EXPECT_EQ(march.statements[0].name, "Ann Ash");
    EXPECT_EQ(march.financeCharges.toText(), "1.25");
    EXPECT_EQ(march.balances.toText(), "161.25");

    const std::int32_t number = postStatements(*session, march, go);
    EXPECT_EQ(rowsOf("SELECT CreditCode, Time, PastDueDate, Total FROM CreditTransaction WHERE CustomerID = 1 AND CreditTransID > 2"),
              "Finance Charge|2026-03-20 23:59:59|2026-03-20 00:00:00|1.25");
    EXPECT_EQ(
        rowsOf("SELECT BroughtForward, Charged, FinanceCharge, Balance, NotDue, Days30, Reckoning FROM Statement WHERE CustomerID = 1"),
        "0|120|1.25|121.25|1.25|120|$120.00 overdue since 3/2, 19 days at 20 %: $1.25");
    expectSound();

    EXPECT_NE(refusal([&] { postStatements(*session, drawn(), go); }).find("Statements as at 03/20/2026 were posted already."),
              std::string::npos);
    EXPECT_NE(refusal([&] { postStatements(*session, drawn("3/19/2026"), go); }).find("posted already"), std::string::npos);

    const StatementRun april = drawn("4/20/2026"); // the charge is brought forward and bears no interest itself
    EXPECT_EQ(april.statements[0].figures.broughtForward.toText(), "121.25");
    EXPECT_EQ(april.statements[0].figures.reckoning, "$120.00 overdue since 3/2, 31 days at 20 %: $2.04");

    run("bsp_TakeBackStatementRun " + std::to_string(number));
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM StatementRun SELECT COUNT(*) FROM CreditTransaction SELECT Balance FROM Customer WHERE ID = 1"),
              "0;2;120");
    expectSound();
}

TEST_F(StatementRuns, AreNotTakenBackOnceSomethingIsAppliedOrALaterOneStands) {
    postStatements(*session, drawn(), go);
    const std::int32_t april = postStatements(*session, drawn("4/20/2026"), go);
    EXPECT_NE(refusal([&] { run("bsp_TakeBackStatementRun 1"); }).find("Only the last run"), std::string::npos);
    run("EXEC sp_AddBatch 1, 5 EXEC sp_PostAdjustment 3, 1, 1, 5, -2.04, 1, 'Other'");
    const std::string charge =
        rowsOf("SELECT MAX(CreditTransID) FROM CreditTransaction WHERE CustomerID = 1 AND CreditCode = 'Finance Charge'");
    const std::string credit = rowsOf("SELECT MAX(CreditTransID) FROM CreditTransaction");
    run("sp_PostAppliedAmount 3, -" + charge + ", 1, 1, 5, 2.04, 2, 'application' EXEC sp_PostAppliedAmount 3, -" + credit +
        ", 1, 1, 5, -2.04, 2, 'application'");
    EXPECT_NE(refusal([&] { run("bsp_TakeBackStatementRun " + std::to_string(april)); }).find("the finance charge of Ann Ash"),
              std::string::npos);
    expectSound();
}

TEST_F(StatementRuns, AreAllPostedOrNone) {
    const StatementRun march = drawn();
    run("CREATE TRIGGER NoBob ON Statement AFTER INSERT AS IF EXISTS (SELECT * FROM inserted WHERE CustomerID = 2) RAISERROR('a full "
        "disk', 16, "
        "1)");
    const std::string before = accounts();
    EXPECT_NE(refusal([&] { postStatements(*session, march, go); }).find("a full disk"), std::string::npos);
    EXPECT_EQ(accounts(), before);
    run("DROP TRIGGER NoBob");
    int asked = 0;
    EXPECT_EQ(postStatements(*session, march, [&](int) { return ++asked < 2; }), 0);
    EXPECT_EQ(accounts(), before);
    sale(2, "20260319", "20260418", "5"); // a register, after they were drawn up
    EXPECT_THROW(postStatements(*session, march, go), AccountsChanged);
    EXPECT_NE(postStatements(*session, drawn(), go), 0);
    expectSound();
}

// A payment that a clerk applies a week later was there when it came in.
TEST_F(StatementRuns, APaymentCountsFromItsDay) {
    run("INSERT INTO CreditTransaction (CustomerID, CreditCode, Time, Total, OutstandingBalance) VALUES (1, 'Payment', '20260311', -120, "
        "-120) "
        "UPDATE Customer SET Balance = 0 WHERE ID = 1");
    const std::string waiting = drawn().statements[0].figures.reckoning;
    EXPECT_EQ(waiting, "$120.00 overdue since 3/2, 10 days at 20 %: $0.66");
    run("EXEC sp_AddBatch 1, 5 EXEC sp_PostAppliedAmount 1, -1, 1, 1, 5, 120, 2, 'application' "
        "EXEC sp_PostAppliedAmount 1, -3, 1, 1, 5, -120, 2, 'application' UPDATE CreditApplication SET Time = '20260318'");
    EXPECT_EQ(drawn().statements[0].figures.reckoning, waiting);
    EXPECT_EQ(drawn().statements[0].figures.paid.toText(), "120");
}

// Two bills paid in two months, applied together: neither was paid later for that.
TEST_F(StatementRuns, EachDebitIsPaidByItsOwnCredit) {
    sale(3, "20260101", "20260101", "1000");
    sale(3, "20260105", "20260105", "-1000");
    sale(3, "20260301", "20260302", "10");
    sale(3, "20260319", "20260319", "-10");
    const std::string waiting = drawn().statements.back().figures.reckoning;
    EXPECT_NE(waiting.find("$10.00 overdue since 3/18, 2 days at 20 %: $0.01, raised to the minimum of $5.00"), std::string::npos)
        << waiting;
    run("EXEC sp_AddBatch 1, 5");
    for (const char* half : {"-3, 1, 3, 5, 1000", "-4, 1, 3, 5, -1000", "-5, 1, 3, 5, 10", "-6, 1, 3, 5, -10"})
        run("sp_PostAppliedAmount 1, " + std::string(half) + ", 2, 'application'");
    run("UPDATE CreditApplication SET Time = '20260319'");
    EXPECT_EQ(drawn().statements.back().figures.reckoning, waiting);
}

TEST_F(StatementRuns, AreForChargeAccountsAndDaysThatAreOver) {
    sale(4, "20260101", "20260101", "40");
    EXPECT_EQ(drawn().statements.size(), 2U);
    EXPECT_NE(refusal([&] { run("bsp_NewStatementRun '99981231', 1, 5"); }).find("is not over yet"), std::string::npos);
}

} // namespace
} // namespace merchantry::customers
