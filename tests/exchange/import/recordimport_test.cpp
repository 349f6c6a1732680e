#include "tests/exchange/import/importstore.h"

namespace merchantry::exchange {
namespace {

class RecordImport : public ImportStore {
protected:
    RecordImport() {
        run("INSERT INTO Customer (FirstName, LastName, PhoneNumber, Email, AccountNumber, AccountOpened) VALUES ('Ann', 'Ash', '(555) "
            "123-4567', "
            "'ann@example.com', 'C1', '20190131'), ('Bob', 'Birch', NULL, 'bob@example.com', NULL, '20190131')");
    }
};

TEST_F(RecordImport, SuppliersComeByNameAndAreUndoneAsOne) {
    const std::string before = everything();
    plan("Vendor,Street,City,State,Zip,Phone,Email\nacme,1 Main St,Salem,ma,2134,5551234567,a@b.c\nBolt Ltd,,Troy,NY,12180,,\n,x,,,,,\n",
         Target::Suppliers);
    EXPECT_EQ(bad(), "E2 This looks like the zip 02134, whose zero in front a spreadsheet dropped. On page 2 you choose whether such codes "
                     "are mended or taken as they are.\nA4 There is no name in this row.\n");
    options.codes = ImportOptions::Codes::Mend;
    planTable(Target::Suppliers);
    EXPECT_EQ(said(),
              "changed 1: Address (empty) to 1 Main St; City (empty) to Salem; State (empty) to MA; Zip (empty) to 02134; Phone (empty) to "
              "(555) 123-4567; Email (empty) to a@b.c\n"
              "new : Name Bolt Ltd; City Troy; State NY; Zip 12180\n"
              "bad : There is no name in this row.\n");
    const std::int32_t key = write();
    EXPECT_EQ(rowsOf("SELECT Supplier, Address1, City, State, Zip, Phone FROM Suppliers WHERE SupID > 0 ORDER BY SupID"),
              "Acme|1 Main St|Salem|MA|02134|(555) 123-4567;Bolt Ltd|NULL|Troy|NY|12180|NULL");
    run("UPDATE Suppliers SET City = 'Lynn' WHERE SupID = 1 INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID) VALUES ('00123', "
        "'00123', 2)");
    EXPECT_EQ(keptBy(key), "The Supplier Acme was changed since.\nThe Supplier Bolt Ltd is used since.\n");
    run("UPDATE Suppliers SET City = 'Salem' WHERE SupID = 1 DELETE FROM SupplierMatrixDetail WHERE SupID = 2");
    EXPECT_EQ(keptBy(key), "");
    EXPECT_EQ(everything(), before);
}

TEST_F(RecordImport, CustomersAreKnownByNumberEmailPhoneOrName) {
    const std::string before = everything();
    plan("Account No,First Name,Last Name,Phone,E-mail,Customer Since,Tax Exempt,Notes\n"
         "C1,Anna,Ash,,,2020-05-01,yes,\n"
         ",Bob,Birch,5550001111,bob@example.com,,,\"two\nlines\"\n"
         ",Cy,Cedar,,cy@example.com,,no,\n"
         ",,,,,,yes,\n"
         ",Bobby,B.,,bobby@example.com,5/40/2020,perhaps,\n",
         Target::Customers);
    EXPECT_EQ(said(),
              "changed C1: First name Ann to Anna; Tax exempt no to yes; Customer since 1/31/2019 to 5/1/2020\n"
              "changed No. 2: Phone (empty) to (555) 000-1111; Notes (empty) to two\nlines\n"
              "new : First name Cy; Last name Cedar; Email cy@example.com; Tax exempt no\n"
              "bad : There is no name in this row.\n"
              "bad : \"5/40/2020\" is no date. Dates are written like 11/21/2026 or 2026-11-21. \"perhaps\" is neither yes nor no.\n");
    const std::int32_t key = write();
    EXPECT_EQ(rowsOf("SELECT FirstName, TaxExempt, AccountOpened, CleanPhoneNumber FROM Customer ORDER BY ID").substr(0, 45),
              "Anna|1|2020-05-01 00:00:00|5551234567;Bob|0|2");
    EXPECT_EQ(rowsOf("SELECT FirstName, Active FROM Customer WHERE Email = 'cy@example.com'"), "Cy|1");
    EXPECT_EQ(keptBy(key), "");
    EXPECT_EQ(everything(), before);
    plan("Email,City\nbob@example.com,Troy\nbob@example.com,Lynn\n", Target::Customers);
    EXPECT_EQ(bad(), "2 Row 3 is for the same one.\n3 Row 2 is for the same one.\n");
}

TEST_F(RecordImport, RowsThatComeTwiceAreNamedBesideOtherBadCells) {
    plan("Account No,First Name,State,Tax Exempt\nC9,Cy,XX,\nC9,Cyrus,,perhaps\nC1,Ann,,maybe\nC1,Anna,,\n,,XX,\n,,XX,\n",
         Target::Customers);
    EXPECT_EQ(bad(), "2 Row 3 is for the same one.\nC2 \"XX\" is none of the states' codes, such as CA.\n"
                     "3 Row 2 is for the same one.\nD3 \"perhaps\" is neither yes nor no.\n"
                     "4 Row 5 is for the same one.\nD4 \"maybe\" is neither yes nor no.\n5 Row 4 is for the same one.\n"
                     "C6 \"XX\" is none of the states' codes, such as CA.\nC7 \"XX\" is none of the states' codes, such as CA.\n");
    EXPECT_EQ(plan_->count(RowState::Bad), 6);
}

TEST_F(RecordImport, SumsBelowTheListAreNoSuppliersOrCustomers) {
    plan("Name,City\nBolt,Troy\nSumme:,2\n", Target::Suppliers);
    EXPECT_EQ(bad(), "A3 This looks like a sum below the list.\n");
    plan("Account No,First Name,Last Name,City\nC9,Kai,Sum,Troy\nTOTAL,,,1\n", Target::Customers);
    EXPECT_EQ(bad(), "A3 This looks like a sum below the list.\n");
    plan("Account No,First Name,Last Name,City\nC9,Kai,Sum,Troy\n", Target::Customers);
    EXPECT_EQ(bad(), "");
}

TEST_F(RecordImport, CustomersChangedMeanwhileLeaveTheStoreAlone) {
    plan("Email,City\nann@example.com,Troy\nbob@example.com,Troy\n", Target::Customers);
    run("UPDATE Customer SET City = 'Lynn' WHERE ID = 2");
    const std::string before = everything();
    try {
        write();
        ADD_FAILURE();
    } catch (const StoreChanged& changed) {
        EXPECT_NE(std::string(changed.what()).find("Bob Birch has another city meanwhile"), std::string::npos) << changed.what();
    }
    EXPECT_EQ(everything(), before);
}

} // namespace
} // namespace merchantry::exchange
