#include "app/db/schema/schema.h"

#include "tests/db/teststore.h"

namespace merchantry::db {
namespace {

// What the store itself keeps of taxes, departments and tenders, whoever writes them.
class SetUp : public OnAStore {
protected:
    SetUp() { createSchema(*session); }
    // What the store says when it refuses; empty when it does not.
    std::string refusal(const std::string& batch) {
        try {
            run(batch);
            return "";
        } catch (const DbError& error) {
            return error.what();
        }
    }
    std::string defaults() { return rowsOf("SELECT TaxID FROM TaxDef WHERE DefaultTax = 1"); }
};

TEST_F(SetUp, OneTaxClassIsTheDefaultWhateverIsWritten) {
    run("INSERT INTO TaxDef (Description, DefaultTax) VALUES ('A', 0), ('B', 1), ('C', 0)");
    EXPECT_EQ(defaults(), "2");
    run("UPDATE TaxDef SET DefaultTax = 1 WHERE TaxID = 3");
    EXPECT_EQ(defaults(), "3");
    run("UPDATE TaxDef SET DefaultTax = 1, Amt = 5 WHERE TaxID = 3");
    EXPECT_EQ(defaults(), "3");
    run("UPDATE TaxDef SET DefaultTax = 0");
    EXPECT_EQ(defaults(), "0");
    run("UPDATE TaxDef SET DefaultTax = 1");
    EXPECT_EQ(defaults(), "3");
    run("DELETE FROM TaxDef WHERE TaxID = 3");
    EXPECT_EQ(defaults(), "0");
}

TEST_F(SetUp, TaxClassesAreCalledDifferently) {
    run("INSERT INTO TaxDef (Description) VALUES ('Food')");
    for (const char* name : {"Food", "FOOD", "food  "})
        EXPECT_NE(refusal("INSERT INTO TaxDef (Description) VALUES ('" + std::string(name) + "')"), "") << name;
    EXPECT_EQ(refusal("INSERT INTO TaxDef (Description) VALUES (' Food')"), ""); // only accounting takes them for one
}

TEST_F(SetUp, ClassesThatBecomeOneNameInAccountingAreTold) {
    const struct {
        const char* one;
        const char* other;
        bool same;
    } cases[] = {
        {"Sales  tax", "SALES tax", true},
        {"   Sales tax", "Sales tax ", true},
        {"Sales        tax                          in town", "Sales tax in town", true},
        {"A name of thirty-one characters 1", "A name of thirty-one characters 2", true},
        {"  A name of thirty-one  characters", "A name of thirty-one characters 2", true},
        {"A name of thirty characters, 1", "A name of thirty characters, 2", false},
        {"Sales tax", "Salestax", false},
    };
    for (const auto& one : cases) {
        run("DELETE FROM TaxDef WHERE TaxID > 0");
        run("INSERT INTO TaxDef (Description) VALUES ('" + std::string(one.one) + "'), ('" + one.other + "')");
        EXPECT_EQ(rowsOf("sp_QBGetTaxDefDups").empty(), !one.same) << one.one;
        EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM TaxExportName n WHERE n.ExportName IN (SELECT ExportName FROM TaxExportName WHERE TaxID <> "
                         "n.TaxID)"),
                  one.same ? "2" : "0")
            << one.one;
    }
    // However long a run of blanks is.
    for (int blanks = 1; blanks <= 48; ++blanks) {
        run("DELETE FROM TaxDef WHERE TaxID > 0");
        run("INSERT INTO TaxDef (Description) VALUES ('a" + std::string(static_cast<std::size_t>(blanks), ' ') + "b')");
        EXPECT_EQ(rowsOf("SELECT ExportName FROM TaxExportName WHERE TaxID > 0"), "a b") << blanks;
    }
}

TEST_F(SetUp, DepartmentsWithItemsStayAndItemsLoseADeletedClass) {
    run("INSERT INTO Departments (Department) VALUES ('Toys') INSERT INTO TaxDef (Description) VALUES ('Food')");
    run("INSERT INTO Item (SKU, MatrixSKU, DepartmentID, TaxID) VALUES ('a', 'a', 2, 1), ('b', 'b', 2, 0)");
    EXPECT_EQ(rowsOf("EXEC bsp_ItemCount 'Department', 2 EXEC bsp_ItemCount 'TaxClass', 1"), "2;1");
    EXPECT_EQ(rowsOf("EXEC bsp_ItemsOf 'Department', 2"), "a|a||1;b|b||1");
    EXPECT_EQ(rowsOf("EXEC bsp_ItemsOf 'TaxClass', 0"), "b|b||1");
    EXPECT_NE(refusal("DELETE FROM Departments WHERE DepartmentID = 2"), "");
    run("DELETE FROM TaxDef WHERE TaxID = 1 UPDATE Item SET DepartmentID = 1");
    EXPECT_EQ(rowsOf("EXEC bsp_ItemCount 'TaxClass', 0"), "2");
    run("INSERT INTO [Transaction] (CashierID) VALUES (5) INSERT INTO TransactionEntry (TransactionNumber, SKU, MatrixSKU, DepartmentID) "
        "VALUES (1, 'a', 'a', 2)");
    EXPECT_NE(refusal("DELETE FROM Departments WHERE DepartmentID = 2").find("\"Toys\" cannot be deleted"), std::string::npos);
    run("UPDATE TransactionEntry SET DepartmentID = 1");
    EXPECT_EQ(refusal("DELETE FROM Departments WHERE DepartmentID = 2"), "");
}

TEST_F(SetUp, NewItemsGetTheDefaultClass) {
    run("INSERT INTO TaxDef (Description, DefaultTax) VALUES ('Food', 1) EXEC bsp_NewItem 'a', 'a'");
    EXPECT_EQ(rowsOf("SELECT TaxID FROM Item"), "1");
    EXPECT_EQ(rowsOf("bsp_DefaultTax"), "1|Food");
}

TEST_F(SetUp, TendersStandInTheirOrderThenByName) {
    run("DELETE FROM TenderTypes INSERT INTO TenderTypes (TenderType, DisplayOrder) VALUES ('Cash', 0), ('Card', 0), ('Cheque', 1) "
        "INSERT INTO TenderTypes (StoreID, TenderType) VALUES (2, 'Shells')");
    EXPECT_EQ(rowsOf("EXEC sp_GetTenderTypes 1"), "3|Card|1|NULL;3|Cash|1|NULL;3|Cheque|1|NULL");
    run("sp_UpdateTenderType 1, 'Cheque', 'Bank cheque', 0, 0 EXEC sp_UpdateTenderType 1, 'Cash', 'Coins', 1, 1");
    EXPECT_EQ(rowsOf("EXEC sp_GetTenderTypes 1"), "3|Card|1|NULL;3|Cheque|0|Bank cheque;3|Cash|1|Coins");
    run("sp_UpdateTenderType 1, 'Shells', 'Shells', 1, 0"); // another store's
    EXPECT_EQ(rowsOf("EXEC sp_GetTenderTypes 2"), "1|Shells|1|NULL");
}

TEST_F(SetUp, ATenderWithPaymentsStaysAndSaysWhy) {
    run("INSERT INTO [Transaction] (CashierID) VALUES (5) INSERT INTO TransactionTender (TransactionNumber, TenderType, Amount) VALUES "
        "(1, 'Check', 5)");
    EXPECT_NE(refusal("DELETE FROM TenderTypes").find("\"Check\" cannot be deleted: payments were made with it"), std::string::npos);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM TenderTypes"), "8");
    EXPECT_EQ(refusal("DELETE FROM TenderTypes WHERE TenderType <> 'Check'"), "");
}

TEST_F(SetUp, ANewStoreOffersItsFirstStepsUntilTheyArePutAway) {
    EXPECT_EQ(rowsOf("SELECT ID FROM FirstRoad WHERE PutAway IS NULL"), "1");
    EXPECT_EQ(rowsOf("bsp_FirstRoad"), "NULL||0|0|8|0|1|1|1|0|0");
    run("sp_UpdateTenderType 1, 'Cash', 'Cash', 1, 0 UPDATE Register SET PrinterType = 'EPSON' EXEC bsp_NewItem 'a', 'a' EXEC "
        "bsp_PutFirstRoadAway");
    EXPECT_EQ(rowsOf("bsp_FirstRoad"), "NULL||0|0|8|1|1|1|1|1|1");
    EXPECT_EQ(rowsOf("SELECT ID FROM FirstRoad WHERE PutAway IS NULL"), "");
    EXPECT_NE(refusal("INSERT INTO FirstRoad (ID) VALUES (2)"), "");
}

} // namespace
} // namespace merchantry::db
