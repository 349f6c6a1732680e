#include "app/db/schema/schema.h"
#include "customers/statements/statementrun.h"
#include "tests/db/teststore.h"

#include <atomic>
#include <map>
#include <random>
#include <thread>

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

    EXPECT_EQ(refusal([&] { postStatements(*session, drawn(), go); }),
              "Statements as at 3/20/2026 were posted already, by somebody else meanwhile.");
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
    const StatementRun later = drawn();
    sale(2, "20260318", "20260417", "7"); // what leaves the balance as it was makes another letter all the same
    sale(2, "20260318", "20260417", "-7");
    EXPECT_THROW(postStatements(*session, later, go), AccountsChanged);
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

// Two desktops post the same day: one is told plainly, and reads what was posted.
TEST_F(StatementRuns, AreNotPostedByASecondDesktopAsWell) {
    const auto other = db::Store::open(file)->session();
    const StatementRun mine = drawn();
    const StatementRun theirs = drawUpStatements(*other, mine.asAt, go);
    const std::int32_t number = postStatements(*session, mine, go);
    const std::string before = accounts();
    EXPECT_THROW(postStatements(*other, theirs, go), PostedMeanwhile);
    EXPECT_EQ(accounts(), before);
    EXPECT_EQ(postedStatements(*other, number).financeCharges, mine.financeCharges);
    run("bsp_TakeBackStatementRun " + std::to_string(number));
    EXPECT_NE(refusal([&] {
                  db::NoResult none;
                  other->execute("bsp_TakeBackStatementRun " + std::to_string(number), none);
              }).find("not there any more"),
              std::string::npos);
    expectSound();
}

TEST_F(StatementRuns, PostedAtTheSameMomentArePostedOnce) {
    for (const char* day : {"3/20/2026", "4/20/2026", "5/20/2026"}) {
        std::atomic<int> posted = 0;
        std::atomic<int> refused = 0;
        const auto desktop = [&] {
            const auto own = db::Store::open(file)->session();
            const StatementRun run = drawUpStatements(*own, *Date::fromText(day), go);
            try {
                posted += postStatements(*own, run, go) != 0 ? 1 : 0;
            } catch (const PostedMeanwhile&) {
                ++refused;
            }
        };
        std::thread first(desktop);
        std::thread second(desktop);
        first.join();
        second.join();
        EXPECT_EQ(posted, 1) << day;
        EXPECT_EQ(refused, 1) << day;
    }
    EXPECT_EQ(rowsOf("SELECT COUNT(*), COUNT(DISTINCT RunID) FROM Statement SELECT COUNT(*) FROM StatementRun"), "6|3;3");
    expectSound();
}

// Runs on days after each other raised the minimum each time.
TEST_F(StatementRuns, RaiseTheMinimumOnceAMonth) {
    sale(3, "20260201", "20260201", "365"); // by the store's terms: 15 days of grace, the minimum of 5.00
    std::string charges;
    for (const char* day : {"3/20/2026", "3/21/2026", "3/24/2026", "4/19/2026", "4/20/2026", "4/21/2026"}) {
        const StatementRun run = drawn(day);
        charges += run.statements.back().figures.financeCharge.toText() + " ";
        postStatements(*session, run, go);
    }
    // 27 days 5.40 from 2/17 on, then by the day; from 4/20 on the first run is a month old, and 0.20 + 0.60 + 5.20 are above the minimum
    EXPECT_EQ(charges, "5.6 0.2 0.6 5.2 0.2 0.2 ");
    sale(2, "20260301", "20260301", "36.5");
    EXPECT_EQ(drawn("4/22/2026").statements[1].figures.reckoning,
              "$36.50 overdue since 3/17, 1 day at 20 %: $0.02, raised to the minimum of $5.00");
    postStatements(*session, drawn("4/22/2026"), go);
    EXPECT_EQ(drawn("5/21/2026").statements[1].figures.reckoning,
              "$36.50 overdue since 3/17, 29 days at 20 %: $0.58\n$40.00 overdue since 5/3, 19 days at 20 %: $0.42\n"
              "together $1.00, with the month's minimum of $5.00 reached: $5.00 was charged before");
    EXPECT_EQ(drawn("5/22/2026").statements[1].figures.financeCharge.toText(), "5");
    expectSound();
}

// A register that was cut off for days brings its sales when the statements of those days are posted.
TEST_F(StatementRuns, TellOfLatePostingsOnTheNextStatement) {
    postStatements(*session, drawn(), go);
    sale(1, "20260310", "20260310", "30");
    sale(1, "20260402", "20260402", "-50");
    const StatementRun april = drawn("4/20/2026");
    const Statement& s = april.statements[0].figures;
    EXPECT_EQ(s.broughtForward.toText(), "121.25");
    EXPECT_EQ(s.charged.toText(), "30");
    EXPECT_EQ(s.credited.toText(), "50");
    // 120.00 until 4/2, 70.00 then, and 30.00, all of 3/21 to 4/20
    EXPECT_EQ(s.financeCharge.toText(), "2.05"); // 0.85 + 0.69 + 0.51
    EXPECT_EQ(s.balance, s.broughtForward + s.charged - s.paid - s.credited + s.financeCharge);
    const std::int32_t number = postStatements(*session, april, go);
    EXPECT_EQ(drawn("5/20/2026").statements[0].figures.charged, Currency());
    run("bsp_TakeBackStatementRun " + std::to_string(number)); // they wait for the next run again
    EXPECT_EQ(drawn("5/20/2026").statements[0].figures.charged.toText(), "30");
    expectSound();
}

// The program ended between the two halves of an application: the debit is as open as before, for a statement.
TEST_F(StatementRuns, AHalfWithoutItsOtherWasNotAppliedYet) {
    run("INSERT INTO CreditTransaction (CustomerID, CreditCode, Time, Total, OutstandingBalance) VALUES (1, 'Payment', '20260311', -50, "
        "-50) "
        "UPDATE Customer SET Balance = 70 WHERE ID = 1");
    const Statement before = drawn().statements[0].figures;
    run("EXEC sp_AddBatch 1, 5 EXEC sp_PostAppliedAmount 1, -1, 1, 1, 5, 50, 2, 'application' UPDATE CreditApplication SET Time = "
        "'20260315' "
        "UPDATE CreditTransaction SET Time = '20260315' WHERE Total = 0");
    expectSound();
    const Statement half = drawn().statements[0].figures;
    EXPECT_EQ(half.reckoning, before.reckoning);
    EXPECT_EQ(half.balance, before.balance);
    EXPECT_EQ(half.ages.days30, before.ages.days30);
    EXPECT_EQ(half.ages.unapplied, before.ages.unapplied);
}

// Whatever is posted, dated, applied and taken back in whatever order.
class RandomAccounts : public StatementRuns {
protected:
    int upTo(int most) { return std::uniform_int_distribution<int>(1, most)(random); }
    static std::string dayText(int day) { return Date::fromText("3/1/2026")->plusDays(day).toIsoText().substr(0, 10); }

    // Up to twenty days late, or as many ahead.
    void post() {
        const std::string customer = std::to_string(upTo(3));
        const std::string amount = Currency::fromUnits((upTo(2) == 1 ? 100 : -100) * upTo(20'000)).toText();
        const std::string day = dayText(today + upTo(40) - 20);
        run("INSERT INTO CreditTransaction (CustomerID, CreditCode, Time, PastDueDate, Total, OutstandingBalance) VALUES (" + customer +
            (upTo(2) == 1 ? ", 'Payment', '" : ", 'Sale', '") + day + "', '" + day + "', " + amount + ", " + amount +
            ") UPDATE Customer SET Balance = Balance + " + amount + " WHERE ID = " + customer);
    }
    // A part of a debit and of a credit, one batch; now and then the second half is missing.
    void apply() {
        const std::string customer = std::to_string(upTo(3));
        const auto open = [&](const char* sign) {
            return rowsOf("SELECT TOP 1 CreditTransID, OutstandingBalance FROM CreditTransaction WHERE CustomerID = " + customer +
                          " AND Total " + sign + " 0 AND OutstandingBalance " + sign + " 0 ORDER BY (CreditTransID * 7919 + " +
                          std::to_string(upTo(1000)) + ") % 101, CreditTransID");
        };
        const std::string debit = open(">");
        const std::string credit = open("<");
        if (debit.empty() || credit.empty())
            return;
        const auto amountIn = [](const std::string& row) { return Currency::fromText(row.substr(row.find('|') + 1)); };
        const Currency most = std::min(amountIn(debit), -amountIn(credit));
        const Currency part = upTo(2) == 1 ? most : Currency::fromUnits(std::max<std::int64_t>(100, most.units() / 300 * 100));
        run("EXEC sp_AddBatch 1, 5");
        const auto half = [&](const std::string& row, Currency amount) {
            run("DECLARE @b int SELECT @b = MAX(BatchNumber) FROM batch EXEC sp_PostAppliedAmount @b, -" + row.substr(0, row.find('|')) +
                ", 1, " + customer + ", 5, " + amount.toText() + ", 2, 'application' UPDATE CreditApplication SET Time = '" +
                dayText(today + upTo(3) - 2) + "' WHERE ApplicationID = (SELECT MAX(ApplicationID) FROM CreditApplication)");
        };
        half(debit, part);
        if (upTo(10) > 1)
            half(credit, -part);
    }
    void runStatements() {
        today += upTo(35);
        const StatementRun run = drawUpStatements(*session, *Date::fromText(dayText(today)), go);
        for (const CustomerStatement& one : run.statements) {
            const Statement& s = one.figures;
            EXPECT_EQ(s.balance, s.broughtForward + s.charged - s.paid - s.credited + s.financeCharge);
            EXPECT_EQ(s.balance, s.ages.notDue + s.ages.days30 + s.ages.days60 + s.ages.days90 + s.ages.over90 + s.ages.unapplied);
            if (last.contains(one.customer)) {
                EXPECT_EQ(s.broughtForward, last[one.customer]) << "customer " << one.customer << " as at " << dayText(today);
            }
        }
        const std::int32_t number = postStatements(*session, run, go);
        expectSound();
        if (upTo(4) == 1)
            return takeBack(number);
        for (const CustomerStatement& one : run.statements)
            last[one.customer] = one.figures.balance;
    }
    void takeBack(std::int32_t number) {
        run("bsp_TakeBackStatementRun " + std::to_string(number));
        expectSound();
    }

    std::mt19937 random{7};
    int today = 0;
    std::map<std::int32_t, Currency> last; // balance of the last statement
};

TEST_F(RandomAccounts, StatementsGoOnFromEachOtherAndMissNothing) {
    run("DELETE FROM CreditTransaction UPDATE Customer SET Balance = 0, ChargeAccount = 1");
    for (int turn = 0; turn < 240 && today < 200; ++turn) {
        const int what = upTo(10);
        what <= 5 ? post() : what <= 9 ? apply() : runStatements();
    }
    ASSERT_FALSE(last.empty());
    today += 60; // behind every posting: what the statements tell is what is owed
    const StatementRun all = drawUpStatements(*session, *Date::fromText(dayText(today)), go);
    for (const CustomerStatement& one : all.statements)
        EXPECT_EQ((one.figures.balance - one.figures.financeCharge).toText(),
                  rowsOf("SELECT Balance FROM Customer WHERE ID = " + std::to_string(one.customer)));
}

} // namespace
} // namespace merchantry::customers
