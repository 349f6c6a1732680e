#include "exchange/accounting/daybook.h"
#include "exchange/accounting/sentdays.h"

#include "app/db/schema/schema.h"
#include "tests/db/teststore.h"
#include "tests/exchange/iifreader.h"

namespace merchantry::exchange {
namespace {

// A shop with two departments and a tax of 7 percent.
class Books : public db::OnAStore {
protected:
    Books() {
        db::createSchema(*session);
        run("INSERT INTO TaxDef (Amt, Description) VALUES (7, 'County') INSERT INTO Departments (Department) VALUES ('Garden: tools') "
            "INSERT INTO Item (SKU, MatrixSKU, DepartmentID, TaxID) VALUES ('SEED', 'SEED', 1, 1), ('HOE', 'HOE', 2, 1) "
            "INSERT INTO Customer (FirstName, LastName, Address, City, State, Zip) VALUES ('Ann', 'Ash', '1 Main St', 'Akron', 'OH', "
            "'44301') "
            "INSERT INTO Suppliers (Supplier) VALUES ('Acme'), ('ACME')");
    }
    // A receipt of one line, paid in one way; the line's amount is without tax.
    void receipt(const char* time, int till, const char* item, const char* price, const char* tax, const char* tender, const char* paid) {
        run(std::string("INSERT INTO [Transaction] (RegisterID, Time, SubTotal, TaxTotal, Total) VALUES (") + std::to_string(till) + ", '" +
            time + "', " + price + ", " + tax + ", " + price + " + " + tax + ") DECLARE @t int SET @t = SCOPE_IDENTITY() " +
            "INSERT INTO TransactionEntry (TransactionNumber, SKU, MatrixSKU, FullPrice, TaxID, Tax) VALUES (@t, '" + item + "', '" + item +
            "', " + price + ", 1, " + tax + ") INSERT INTO TransactionTender (TransactionNumber, TenderType, Amount) VALUES (@t, '" +
            tender + "', " + paid + ")");
    }
    Daybook march() { return readDays(*session, *Date::fromText("3/1/2026"), *Date::fromText("3/31/2026"), goOn); }
    IifReader sent(const Daybook& book) { return IifReader(iifText(fileOf(*session, book.days, book.map), true)); }

    // The lines of a day, one below the other.
    static std::string linesOf(const BookedDay& day) {
        std::string text;
        for (const AccountEntry& entry : day.entries)
            for (const AccountLine& line : entry.lines)
                text += entry.number + " " + line.account + (line.name.empty() ? "" : " (" + line.name + ")") + " " + line.amount.toText() +
                        "\n";
        return text;
    }

    BookProgress goOn = [](int) { return true; };
};

TEST_F(Books, HoldWhatEachRegisterSoldAndHowItWasPaid) {
    receipt("2026-03-02 10:00", 1, "SEED", "10", "0.70", "Cash", "10.70");
    receipt("2026-03-02 23:59:59", 1, "HOE", "20", "1.40", "Charge Account", "21.40");
    receipt("2026-03-02 11:00", 2, "SEED", "-5", "-0.35", "Cash", "-5.35");
    run("INSERT INTO CreditTransaction (TransactionNumber, CustomerID, CreditCode, Time, Total, OutstandingBalance) VALUES (2, 1, 'Sale', "
        "'2026-03-02 23:59:59', 21.40, 21.40) EXEC sp_AddBatch 1, 5 EXEC sp_PostAdjustment 1, 1, 1, 5, -15, 1, 'Payment' "
        "UPDATE CreditTransaction SET Time = '2026-03-03' WHERE Total = -15");
    const Daybook book = march();
    ASSERT_EQ(book.days.size(), 2U);
    EXPECT_EQ(linesOf(book.days[0]),
              "20260302-1 Undeposited Funds 10.7\n20260302-1 Customer Accounts Clearing 21.4\n"
              "20260302-1 Sales:General -10\n20260302-1 Sales:Garden- tools -20\n"
              "20260302-1 Sales Tax Payable:County -2.1\n"
              "20260302-2 Undeposited Funds -5.35\n20260302-2 Sales:General 5\n20260302-2 Sales Tax Payable:County 0.35\n"
              "A1 Accounts Receivable (1) 21.4\nA1 Customer Accounts Clearing -21.4\n");
    EXPECT_EQ(linesOf(book.days[1]), "A2 Accounts Receivable (1) -15\nA2 Undeposited Funds 15\n");
    EXPECT_EQ(book.days[0].figures, (DayFigures{3, Currency::fromInteger(25), Currency::fromText("1.75"), Currency::fromText("26.75"),
                                                Currency(), Currency::fromText("21.40")}));
    EXPECT_EQ(book.days[0].fault + book.days[1].fault, "");

    const IifReader iif = sent(book);
    EXPECT_EQ(iif.entries.size(), 4U);
    EXPECT_EQ(iif.entries[0].lines[0].at("DATE"), "03/02/2026");
    EXPECT_EQ(iif.entries[2].lines[0].at("NAME"), "Ann Ash #1");
    ASSERT_EQ(iif.lists.at("CUST").size(), 1U);
    EXPECT_EQ(iif.lists.at("CUST")[0].at("BADDR2"), "Akron, OH 44301");
    EXPECT_EQ(iif.lists.at("ACCNT")[0].at("NAME"), "Sales") << "an account stands behind the one above it";
    EXPECT_EQ(iif.sumOf("Customer Accounts Clearing"), Currency());
}

TEST_F(Books, HoldDeliveriesAsBillsOfSuppliersWhoseNamesStayApart) {
    run("INSERT INTO PurchaseOrder (PONumber, SupID) VALUES (1001, 1), (1002, 2) "
        "INSERT INTO PurchaseOrderReceipt (ReceiptNumber, POID, SKU, MatrixSKU, Quantity, Cost, OtherCost, PostDate) VALUES "
        "(7, 1, 'SEED', 'SEED', 10, 1.255, 2, '2026-03-05'), (7, 1, 'HOE', 'HOE', 2, 3, 0.5, '2026-03-05'), "
        "(8, 2, 'HOE', 'HOE', 3, 0, 0, '2026-03-05'), (9, 2, 'HOE', 'HOE', 1, 4, 0, '2026-03-06')");
    const Daybook book = march();
    ASSERT_EQ(book.days.size(), 2U);
    EXPECT_EQ(linesOf(book.days[0]), "R7 Accounts Payable (1) -21.05\nR7 Purchases 18.55\nR7 Freight In 2.5\n") << "nothing is owed for 8";
    const IifReader iif = sent(book);
    EXPECT_EQ(iif.entries[0].lines[0].at("NAME"), "Acme");
    EXPECT_EQ(iif.entries[1].lines[0].at("NAME"), "ACME #2");
}

TEST_F(Books, BalanceWhereLinesHaveFractionsOfACent) {
    receipt("2026-03-02 10:00", 1, "SEED", "3.335", "0.235", "Cash", "3.57");
    receipt("2026-03-02 10:00", 1, "HOE", "10.335", "0.725", "Cash", "11.06");
    const Daybook book = march();
    EXPECT_EQ(book.days[0].fault, "");
    EXPECT_EQ(linesOf(book.days[0]), "20260302-1 Undeposited Funds 14.63\n20260302-1 Sales:General -3.34\n"
                                     "20260302-1 Sales:Garden- tools -10.33\n20260302-1 Sales Tax Payable:County -0.96\n");
    receipt("2026-03-03 10:00", 1, "SEED", "1.005", "0.005", "Cash", "1.01");
    receipt("2026-03-03 10:00", 1, "HOE", "9.005", "0.005", "Cash", "9.01");
    EXPECT_EQ(linesOf(march().days[1]), "20260303-1 Undeposited Funds 10.02\n20260303-1 Sales:General -1\n"
                                        "20260303-1 Sales:Garden- tools -9.01\n20260303-1 Sales Tax Payable:County -0.01\n");
}

TEST_F(Books, SayWhereADayDoesNotAgree) {
    receipt("2026-03-02 10:00", 1, "SEED", "10", "0.70", "Cash", "10.70");
    receipt("2026-03-02 10:00", 3, "SEED", "10", "0.70", "Cash", "10.70");
    receipt("2026-03-02 11:00", 3, "HOE", "20", "1.40", "Cash", "20.40");
    EXPECT_EQ(march().days[0].fault, "Register 3: the receipts say $32.10 with $2.10 tax, their lines come to $32.10 with $2.10 tax, their "
                                     "tenders to $31.10. The first that does not agree is number 3.");
    run("UPDATE TransactionTender SET Amount = 21.40 WHERE TransactionNumber = 3 UPDATE TransactionEntry SET Tax = 0.69 WHERE "
        "TransactionNumber "
        "= 1 UPDATE TransactionEntry SET FullPrice = 10.01 WHERE TransactionNumber = 1");
    EXPECT_EQ(march().days[0].fault, "Register 1: the receipts say $10.70 with $0.70 tax, their lines come to $10.70 with $0.69 tax, their "
                                     "tenders to $10.70.");
}

TEST_F(Books, BookWhatTheMapDoesNotKnowAndWhatRegistersBookThemselves) {
    run("INSERT INTO Item (SKU, MatrixSKU, Name) VALUES ('$CreditPayment', '$CreditPayment', 'Payment on account')");
    receipt("2026-03-02 10:00", 1, "$CreditPayment", "25", "0", "Bank Transfer", "25");
    const Daybook book = march();
    EXPECT_EQ(book.days[0].fault, "");
    EXPECT_EQ(linesOf(book.days[0]), "20260302-1 Undeposited Funds 25\n20260302-1 Customer Accounts Clearing -25\n");
    EXPECT_EQ(book.days[0].figures.sales, Currency()) << "a payment is no sale";
    EXPECT_EQ(sent(book).lists.at("ACCNT").size(), 2U);
}

TEST_F(Books, GoWhereTheMapSaysAndStayWithinWhatAccountingTakes) {
    MappedAccount cash = AccountMap::read(*session).of(AccountUse::Tender, "cash");
    EXPECT_EQ(cash.account, "Undeposited Funds");
    cash.account = "Till Money:Front";
    cash.type = "BANK";
    keepAccount(*session, cash);
    cash.account = "Till Money:Back";
    keepAccount(*session, cash);
    EXPECT_EQ(AccountMap::read(*session).of(AccountUse::Tender, "Cash").account, "Till Money:Back");
    // one account, with all below it, has one type
    AccountMap map = AccountMap::read(*session);
    const auto place = [&](AccountUse use, const std::string& code) {
        const auto& all = map.all();
        return static_cast<std::size_t>(
            std::find_if(all.begin(), all.end(), [&](const auto& one) { return one.use == use && one.code == code; }) - all.begin());
    };
    EXPECT_EQ(map.withAccount(place(AccountUse::Department, "1"), "accounts receivable").front().type, "AR");
    EXPECT_EQ(map.withAccount(place(AccountUse::Department, "1"), "Till Money:Sold").front().type, "BANK");
    const auto sales = map.withType(place(AccountUse::Department, "1"), "EXINC");
    EXPECT_EQ(sales.size(), 2U) << "both departments stand below Sales";
    EXPECT_EQ(sales[1].type, "EXINC");
    for (const auto& [account, type] : {std::pair("", "BANK"), std::pair("A::B", "BANK"), std::pair("Tills", "AR"),
                                        std::pair("A\tB", "BANK"), std::pair("An account with a name of 32 characters", "BANK")})
        EXPECT_NE(accountComplaint({AccountUse::Tender, "Cash", "", account, type}), "") << account;
    EXPECT_NE(accountComplaint({AccountUse::Receivable, "", "", "Customers", "OCASSET"}), "");
}

TEST_F(Books, OfADayGoOutOnceAndTheSameAgain) {
    receipt("2026-03-02 10:00", 1, "SEED", "10", "0.70", "Cash", "10.70");
    const auto other = store->session();
    const Daybook book = march();
    const std::string bytes = iifText(fileOf(*session, book.days, book.map), false);
    const int number = keepSent(*session, book.days, bytes);
    EXPECT_EQ(changedSince(*session), std::vector<Date>());
    EXPECT_THROW(keepSent(*other, book.days, bytes), AlreadySent);
    EXPECT_EQ(sentFiles(*other).size(), 1U);
    receipt("2026-03-02 12:00", 1, "SEED", "1", "0.07", "Cash", "1.07");
    EXPECT_EQ(sentBytes(*other, number), bytes);
    EXPECT_NE(sentDays(*other).at(book.days[0].day).figures, march().days[0].figures) << "what was posted since is seen";
    EXPECT_EQ(changedSince(*other), std::vector<Date>{book.days[0].day});
    EXPECT_EQ(firstUnsent(*session, *Date::fromText("3/9/2026")), *Date::fromText("3/3/2026"));
}

TEST(Iif, HoldsNoTextThatWouldBreakItsLines) {
    AccountFile file;
    file.accounts = {{"Sales:Caf\xC3\xA9", "INC"}, {"Cash", "BANK"}};
    file.customers = {{"O'Brien \"Bob\"", {"1\t2", "two\r\nlines"}, "", ""}};
    file.entries = {
        {"GENERAL JOURNAL",
         *Date::fromText("1/9/2026"),
         "1",
         {{"Cash", Currency::fromInteger(1234)}, {"Sales:Caf\xC3\xA9", Currency::fromInteger(-1234), "", "\xF0\x9F\x9B\x92\xE2\x88\x92"}}}};
    const std::string bytes = iifText(file, false);
    EXPECT_EQ(bytes,
              "!ACCNT\tNAME\tACCNTTYPE\r\nACCNT\tSales\tINC\r\nACCNT\tSales:Caf\xE9\tINC\r\nACCNT\tCash\tBANK\r\n"
              "!CUST\tNAME\tBADDR1\tBADDR2\tBADDR3\tBADDR4\tBADDR5\tPHONE1\tEMAIL\r\nCUST\tO'Brien 'Bob'\t1 2\ttwo  lines\t\t\t\t\t\r\n"
              "!TRNS\tTRNSTYPE\tDATE\tACCNT\tNAME\tAMOUNT\tDOCNUM\tMEMO\r\n!SPL\tTRNSTYPE\tDATE\tACCNT\tNAME\tAMOUNT\tDOCNUM\tMEMO\r\n"
              "!ENDTRNS\r\nTRNS\tGENERAL JOURNAL\t01/09/26\tCash\t\t1234.00\t1\t\r\nSPL\tGENERAL JOURNAL\t01/09/26\tSales:Caf\xE9\t\t"
              "-1234.00\t1\t?-\r\nENDTRNS\r\n");
    EXPECT_EQ(IifReader(bytes).entries.size(), 1U);
}

} // namespace
} // namespace merchantry::exchange
