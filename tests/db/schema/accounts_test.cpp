#include "app/db/schema/schema.h"

#include "tests/db/teststore.h"

#include <map>
#include <random>
#include <thread>

namespace merchantry::db {
namespace {

// The procedures of customers' accounts, on a store with two charge customers and an open batch.
class CustomerAccounts : public OnAStore {
protected:
    CustomerAccounts() {
        createSchema(*session);
        run("INSERT INTO Customer (FirstName, ChargeAccount) VALUES ('Ann', 1), ('Bob', 1) EXEC sp_AddBatch 1, 5");
    }
    void post(const std::string& amount, int customer = 1) {
        run("sp_PostAdjustment 1, 1, " + std::to_string(customer) + ", 5, " + amount + ", 1, 'Other'");
    }
    // What the refusal says; empty when the amount was applied.
    std::string apply(int number, const std::string& amount, int batch = 1, int customer = 1) {
        try {
            run(" sp_PostAppliedAmount " + std::to_string(batch) + ", " + std::to_string(number) + ", 1, " + std::to_string(customer) +
                ", 5, " + amount + ", 2, 'application'");
            return "";
        } catch (const DbError& error) {
            return error.what();
        }
    }
    // Numbers and what is open of them, oldest first.
    std::string open(int customer = 1) {
        return rowsOf("CREATE TABLE #s (n int, c varchar(25), t datetime, d datetime, a money, o money) INSERT INTO #s EXEC "
                      "sp_GetCustomerCreditStatus " +
                      std::to_string(customer) + ", 'open' SELECT n, o FROM #s DROP TABLE #s");
    }
    std::string balance(int customer = 1) { return rowsOf("SELECT Balance FROM Customer WHERE ID = " + std::to_string(customer)); }
    void expectSound() { EXPECT_EQ(brokenInvariants(*session), std::vector<std::string>()); }
};

TEST_F(CustomerAccounts, AnAdjustmentIsOpenInFullAndMovesTheBalance) {
    post("50");
    post("-12.34");
    EXPECT_EQ(open(), "-1|50;-2|-12.34");
    EXPECT_EQ(balance(), "37.66");
    EXPECT_EQ(rowsOf("SELECT COUNT(PastDueDate), COUNT(*) FROM CreditTransaction"), "1|2"); // only what is owed is due
    EXPECT_THROW(post("5", 99), DbError);
    EXPECT_THROW(run("sp_PostAdjustment 77, 1, 1, 5, 5, 1, 'Other'"), DbError); // no such batch
    EXPECT_EQ(balance(), "37.66");
    expectSound();
}

// An adjustment of 0.004 stood in the list as $0.00; 10.005 applied to what was shown as $10.01 was somebody else's doing, it said.
TEST_F(CustomerAccounts, FractionsOfACentAndWrongSignsAreSaid) {
    for (const char* amount : {"0.004", "-10.005", "0"})
        EXPECT_THROW(post(amount), DbError) << amount;
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM CreditTransaction"), "0");
    post("10");
    post("-10");
    EXPECT_NE(apply(-1, "4.005").find("Transaction -1 has 10.00 open; 4.0050 is no amount in whole cents."), std::string::npos);
    EXPECT_NE(apply(-1, "-4").find("Transaction -1 has 10.00 open; -4.00 would leave more open than it ever was."), std::string::npos);
    // what a register posted with fractions can be settled
    run("INSERT INTO CreditTransaction (CustomerID, CreditCode, Total, OutstandingBalance) VALUES (1, 'Sale', 4.005, 4.005) "
        "UPDATE Customer SET Balance = 4.005 WHERE ID = 1");
    EXPECT_NE(apply(-3, "4.01").find("has 4.0050 open; 4.01 cannot be applied"), std::string::npos);
    EXPECT_EQ(apply(-3, "4.005"), "");
    EXPECT_EQ(apply(-2, "-4.005"), "");
    EXPECT_EQ(open(), "-1|10;-2|-5.995");
    expectSound();
}

TEST_F(CustomerAccounts, HalvesMeetAndRowsAtZeroAreNoLongerOpen) {
    post("10");
    post("50");
    post("-30");
    EXPECT_EQ(apply(-1, "10"), "");
    EXPECT_EQ(open(), "-2|50;-3|-30;-4|10"); // the half that waits for its other one
    expectSound();
    EXPECT_EQ(apply(-2, "20"), "");
    EXPECT_EQ(apply(-3, "-30"), "");
    EXPECT_EQ(open(), "-2|30");
    EXPECT_EQ(balance(), "30");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM CreditTransaction SELECT SUM(CAST(Pending AS int)), SUM(Amount) FROM CreditApplication"),
              "3;0|0");
    expectSound();
}

TEST_F(CustomerAccounts, WhatPassesZeroIsRefusedAndTheOtherHalfTakenBack) {
    post("100");
    post("-30");
    run("sp_AddBatch 1, 5");
    EXPECT_EQ(apply(-1, "30"), "");
    EXPECT_EQ(apply(-1, "30", 2), ""); // a second manager applies the same credit
    EXPECT_EQ(apply(-2, "-30", 2), "");
    EXPECT_NE(apply(-2, "-30").find("has 0.00 open; -30.00 cannot be applied"), std::string::npos);
    EXPECT_EQ(open(), "-1|70");
    EXPECT_NE(apply(-1, "70.01"), "");
    EXPECT_NE(apply(-1, "-31"), ""); // more than was ever owed
    EXPECT_NE(apply(-9, "1"), "");
    EXPECT_EQ(open(), "-1|70");
    EXPECT_EQ(apply(-1, "-30"), ""); // an application is given back,
    run("sp_CloseBatch 1, 1, 5");    // but by half only
    EXPECT_EQ(open(), "-1|70");
    run("sp_CloseBatch -1, 1, 5 EXEC sp_CloseBatch 2, 1, 5");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM batch WHERE Closed IS NULL"), "0");
    expectSound();
}

// The program was ended between two halves: the row that waits is one like any other.
TEST_F(CustomerAccounts, AHalfThatWasLeftCanBeApplied) {
    post("100");
    post("-30");
    EXPECT_EQ(apply(-1, "30"), "");
    run("sp_AddBatch 1, 5");
    EXPECT_EQ(apply(-3, "30", 2), "");
    EXPECT_EQ(apply(-2, "-30", 2), "");
    EXPECT_EQ(open(), "-1|70");
    EXPECT_EQ(apply(-1, "5"), ""); // and the first batch goes on
    EXPECT_EQ(apply(-1, "-5"), "");
    run("sp_CloseBatch 1, 1, 5");
    EXPECT_EQ(open(), "-1|70");
    expectSound();
}

// Postings of registers have their transaction's number.
TEST_F(CustomerAccounts, PostingsOfRegistersGoByTheirOwnNumber) {
    run("INSERT INTO [Transaction] (RegisterID, CashierID, CustomerID, Time, TransType) VALUES (1, 5, 1, '20260101', 'Sale') "
        "INSERT INTO CreditTransaction (TransactionNumber, CustomerID, CreditCode, Time, Total, OutstandingBalance) VALUES (1, 1, 'Sale', "
        "'20260101', 40, 40), (NULL, 1, 'Payment', '20260110', -15, -15) UPDATE Customer SET Balance = 25 WHERE ID = 1");
    EXPECT_EQ(open(), "1|40;-2|-15");
    EXPECT_EQ(apply(1, "15"), "");
    EXPECT_EQ(apply(-2, "-15"), "");
    EXPECT_EQ(open(), "1|25");
    EXPECT_EQ(rowsOf("sp_GetCustomerCreditStatus 1, 'all'").substr(0, 2), "1|");
    EXPECT_THROW(run("DELETE FROM Customer WHERE ID = 1"), DbError);
    expectSound();
}

// Any postings and applications in any order, by several batches at once, some of them refused: what is open adds up to the balance, to the
// cent.
TEST_F(CustomerAccounts, WhatIsOpenAddsUpToTheBalanceWhateverIsDone) {
    std::mt19937 random(20261122);
    const auto below = [&](unsigned n) { return static_cast<int>(random() % n); };
    run("sp_AddBatch 1, 5 EXEC sp_AddBatch 1, 5");
    int postings = 0;
    for (int step = 0; step < 1500; ++step) {
        const std::string amount = std::to_string(below(4000) - 2000) + "e-2";
        if (below(4) == 0) {
            run("DECLARE @a money = " + amount + " EXEC sp_PostAdjustment 1, 1, " + std::to_string(1 + below(2)) + ", 5, @a, 1, 'Other'");
            ++postings;
        } else if (below(40) == 0) {
            run("sp_CloseBatch " + std::to_string(1 + below(3)) + ", 1, 5");
        } else {
            apply(-1 - below(static_cast<unsigned>(postings) * 3 / 2 + 1), amount.substr(0, amount.size() - 3), 1 + below(3), 1 + below(2));
        }
        if (step % 50 == 0)
            expectSound();
    }
    for (const char* batch : {"1", "2", "3"})
        run(std::string("sp_CloseBatch ") + batch + ", 1, 5");
    expectSound();
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM CreditTransaction t WHERE OutstandingBalance <> Total - ISNULL((SELECT SUM(Amount) FROM "
                     "CreditApplication a WHERE a.CreditTransID = t.CreditTransID), 0) AND Total <> 0"),
              "0");
}

} // namespace
} // namespace merchantry::db
