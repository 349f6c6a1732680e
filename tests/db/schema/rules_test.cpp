#include "app/db/schema/schema.h"

#include "tests/db/teststore.h"

namespace merchantry::db {
namespace {

// The rules that screens leave to the database, on a new empty store.
class StoreRules : public OnAStore {
protected:
    StoreRules() { createSchema(*session); }
    int errorOf(const std::string& batch) {
        try {
            run(batch);
            return 0;
        } catch (const DbError& error) {
            EXPECT_EQ(error.hresult(), error.native() == 2812 ? kSyntaxError : kIntegrityError) << batch;
            return error.native();
        }
    }
};

TEST_F(StoreRules, ANewStoreHasItsFirstRowsAndIsSound) {
    EXPECT_EQ(rowsOf("SELECT TierID, TierName FROM TierDefs"), "1|Retail");
    EXPECT_EQ(rowsOf("SELECT DepartmentID FROM Departments"), "1");
    EXPECT_EQ(rowsOf("SELECT TaxID, Description, DefaultTax FROM TaxDef"), "0|None|1");
    EXPECT_EQ(rowsOf("SELECT SalesMsgID FROM SalesMessages"), "0");
    EXPECT_EQ(rowsOf("SELECT SupID, Email FROM Suppliers"), "0|");
    EXPECT_EQ(rowsOf("SELECT ID, Name, Password, ManagerFlag FROM Cashier"), "5|manager|manager|1");
    EXPECT_EQ(rowsOf("SELECT CreditID, CreditCode FROM CreditCodes ORDER BY CreditID"), "1|Other;2|application");
    EXPECT_EQ(rowsOf("SELECT TypeId, Description FROM ItemTypes ORDER BY TypeId"), "2|Matrix;3|Split;4|Parent;5|Serialized;6|Standard");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM StoreOptions"), "1");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Item"), "0");
    EXPECT_TRUE(brokenInvariants(*session).empty());
    EXPECT_EQ(errorOf("bsp_NotMade 1, 0"), 2812);
}

// A register's sales are told by its number for years; a row that nothing hangs on may go.
TEST_F(StoreRules, ARegisterThatHasRecordedSomethingStaysAndSaysWhy) {
    run("INSERT INTO Register DEFAULT VALUES INSERT INTO Register DEFAULT VALUES INSERT INTO Register DEFAULT VALUES");
    run("INSERT INTO [Transaction] (RegisterID) VALUES (2) INSERT INTO DrawerEvent (RegisterID, CashierID) VALUES (3, 5)");
    for (const std::string number : {"2", "3"})
        try {
            run("DELETE FROM Register WHERE ID = " + number);
            ADD_FAILURE() << number;
        } catch (const DbError& error) {
            EXPECT_EQ(std::string(error.what()).find("Register " + number + " cannot be deleted"), 0U) << error.what();
        }
    run("DELETE FROM Register WHERE ID = 4");
    EXPECT_EQ(rowsOf("SELECT ID FROM Register ORDER BY ID"), "1;2;3");
}

TEST_F(StoreRules, ACashierWithHistoryStaysAndCustomFieldsTakeTheirValues) {
    run("INSERT INTO Cashier (Name) VALUES ('Ann') INSERT INTO CashierEvent (CashierID) VALUES (6)");
    EXPECT_EQ(errorOf("DELETE FROM Cashier WHERE ID = 6"), 547);
    run("INSERT INTO CustomFields (CustFieldName) VALUES ('Size'), ('Color') INSERT INTO Customer (LastName) VALUES ('Doe')");
    run("INSERT INTO CustomFieldValues (CustID, CustFieldName, FieldValue) VALUES (1, 'Size', '42'), (1, 'Color', 'red')");
    run("DELETE FROM CustomFields WHERE CustFieldName = 'Size'");
    EXPECT_EQ(rowsOf("SELECT CustFieldName FROM CustomFieldValues"), "Color");
}

TEST_F(StoreRules, TheReceiptPrinterOfARegisterIsANameOrNull) {
    EXPECT_EQ(rowsOf("sp_GetReceiptPrinter 1"), "NULL");
    run("sp_SetReceiptPrinter 1, 'Front desk'");
    EXPECT_EQ(rowsOf("sp_GetReceiptPrinter 1"), "Front desk");
    run("sp_SetReceiptPrinter 1, NULL");
    EXPECT_EQ(rowsOf("sp_GetReceiptPrinter 1"), "NULL");
    EXPECT_EQ(rowsOf("sp_GetReceiptPrinter 9"), "");
}

TEST_F(StoreRules, WritersNameOnlyWhatTheyKnow) {
    run("INSERT INTO Item (SKU, MatrixSKU) VALUES ('a', 'a')");
    run("INSERT INTO Customer (LastName) VALUES ('Doe')");
    run("INSERT INTO Suppliers (Supplier) VALUES ('Acme')");
    run("INSERT INTO [Transaction] (CustomerID) VALUES (1)");
    run("INSERT INTO TransactionEntry (TransactionNumber, SKU, MatrixSKU) VALUES (1, 'a', 'a')");
    run("INSERT INTO Register DEFAULT VALUES");
    run("INSERT INTO batch DEFAULT VALUES");
    run("INSERT INTO PurchaseOrder DEFAULT VALUES");
    EXPECT_EQ(rowsOf("SELECT SupID, Email FROM Suppliers WHERE Supplier = 'Acme'"), "1|");
    EXPECT_EQ(rowsOf("SELECT YEAR(DateLastSold), TypeID, TaxID, Active FROM Item"), "1900|6|0|1");
    EXPECT_EQ(rowsOf("SELECT POID, Status FROM PurchaseOrder"), "1|O");
}

TEST_F(StoreRules, WhatIsDeletedMovesOrTakesAlong) {
    run("INSERT INTO TierDefs (TierName) VALUES ('Trade') INSERT INTO TaxDef (Description) VALUES ('Sales tax') INSERT INTO SalesMessages "
        "(Message) VALUES ('Hi')");
    run("INSERT INTO InvReasonCodes (ReasonCode) VALUES ('Broken')");
    run("INSERT INTO Suppliers (Supplier) VALUES ('Acme')");
    run("INSERT INTO Item (SKU, MatrixSKU, TaxID, SalesMsgID) VALUES ('a', 'a', 1, 1), ('b', 'b', 0, 0)");
    run("INSERT INTO PriceMatrix (SKU, MatrixSKU, Tier) VALUES ('a', 'a', 1), ('a', 'a', 2)");
    run("INSERT INTO Customer (LastName, TierID) VALUES ('Doe', 2)");
    run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty) VALUES ('a', 'a', 'Broken', -1)");
    run("INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID) VALUES ('a', 'a', 1)");
    run("INSERT INTO ItemMatrixGroups (GroupName) VALUES ('Size')");
    run("INSERT INTO ItemMatrixCategories (CategoryName, GroupID) VALUES ('S', 1), ('M', 1)");
    run("INSERT INTO ItemMatrix (SKU, MatrixSKU, CategoryID) VALUES ('a', 'a', 1), ('a', 'a', 2)");
    run("INSERT INTO CustomFields (CustFieldName) VALUES ('Shoe') INSERT INTO CustomFieldValues VALUES (1, 'Shoe', '42')");

    run("DELETE FROM TierDefs WHERE TierID = 2");
    EXPECT_EQ(rowsOf("SELECT TierID FROM Customer"), "1");
    EXPECT_EQ(rowsOf("SELECT Tier FROM PriceMatrix"), "1");
    run("DELETE FROM TaxDef WHERE TaxID = 1");
    run("DELETE FROM SalesMessages WHERE SalesMsgID = 1");
    EXPECT_EQ(rowsOf("SELECT TaxID, SalesMsgID FROM Item WHERE SKU = 'a'"), "0|0");
    run("DELETE FROM InvReasonCodes WHERE ReasonID = 2");
    EXPECT_EQ(rowsOf("SELECT Type FROM InventoryLedger"), "Adjustment");
    run("DELETE FROM Suppliers WHERE SupID = 1");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM SupplierMatrixDetail"), "0");
    run("DELETE FROM ItemMatrixCategories WHERE CategoryID = 1");
    EXPECT_EQ(rowsOf("SELECT CategoryID FROM ItemMatrix"), "2");
    run("DELETE FROM ItemMatrixGroups WHERE GroupID = 1");
    EXPECT_EQ(rowsOf("SELECT (SELECT COUNT(*) FROM ItemMatrix), (SELECT COUNT(*) FROM ItemMatrixCategories)"), "0|0");
    run("DELETE FROM CustomFields WHERE CustFieldName = 'Shoe'");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM CustomFieldValues"), "0");
    EXPECT_EQ(errorOf("DELETE FROM Departments WHERE DepartmentID = 1"), 547);
    run("DELETE FROM Item WHERE SKU = 'a'");
    EXPECT_EQ(rowsOf("SELECT (SELECT COUNT(*) FROM PriceMatrix), (SELECT COUNT(*) FROM InventoryLedger)"), "0|0");
}

TEST_F(StoreRules, WhatRegistersRecordedCannotLoseItsPartners) {
    run("INSERT INTO Item (SKU, MatrixSKU) VALUES ('a', 'a') INSERT INTO Customer (LastName) VALUES ('Doe') INSERT INTO Cashier (Name) "
        "VALUES ('ann')");
    run("INSERT INTO [Transaction] (CustomerID, CashierID) VALUES (1, 6)");
    run("INSERT INTO TransactionEntry (TransactionNumber, SKU, MatrixSKU) VALUES (1, 'a', 'a')");
    for (const char* batch : {"DELETE FROM Item", "DELETE FROM Customer", "DELETE FROM Cashier WHERE ID = 6",
                              "INSERT INTO TransactionEntry (TransactionNumber, SKU, MatrixSKU) VALUES (1, 'x', 'x')"})
        EXPECT_EQ(errorOf(batch), 547) << batch;
    run("INSERT INTO StockSerials (SKU, MatrixSKU, SerialNo) VALUES ('a', 'a', 'S1')");
    EXPECT_EQ(errorOf("INSERT INTO StockSerials (SKU, MatrixSKU, SerialNo) VALUES ('a', 'a', 's1')"), 2601);
    EXPECT_EQ(errorOf("INSERT INTO Item (SKU, MatrixSKU) VALUES ('A', 'a ')"), 2627);
}

TEST_F(StoreRules, CodesThatNoScreenCouldOpenAreNotTaken) {
    for (const char* code : {"A|B", " A", "A "}) {
        const std::string both = "'" + std::string(code) + "', '" + code + "'";
        EXPECT_THROW(run("INSERT INTO Item (SKU, MatrixSKU) VALUES ('ok', 'ok'), (" + both + ")"), DbError) << code;
        EXPECT_THROW(run("bsp_NewItem " + both), DbError) << code;
    }
    EXPECT_THROW(run("bsp_NewItem '$A', '$A'"), DbError);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Item"), "0");
    run("INSERT INTO Item (SKU, MatrixSKU) VALUES ('$DROP', '$DROP') EXEC bsp_NewItem 'A B', 'A-B$'");
    EXPECT_THROW(run("UPDATE Item SET MatrixSKU = 'A|C' WHERE SKU = 'A B'"), DbError);
    run("UPDATE Item SET Name = 'a | b ' WHERE SKU = 'A B'");
    EXPECT_EQ(rowsOf("SELECT MatrixSKU FROM Item WHERE SKU = 'A B'"), "A-B$");
}

// A statement that failed in the middle was passed over, and the rest saved without it.
TEST_F(StoreRules, AnItemIsMadeAndAnAdjustmentUndoneWholeOrNotAtAll) {
    run("ALTER TABLE PriceMatrix ADD CONSTRAINT CK_NoPrice CHECK (SKU <> 'B') EXEC bsp_NewItem 'A', 'A'");
    EXPECT_EQ(errorOf("bsp_NewItem 'B', 'B'"), 547);
    EXPECT_EQ(rowsOf("SELECT SKU FROM Item"), "A");
    EXPECT_EQ(session->transactionDepth(), 0);

    run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Kind, Qty, Cost_ea) VALUES ('A', 'A', 'Other', 'Adjustment', 3, 1) "
        "UPDATE Stock SET Quantity = 3");
    run("ALTER TABLE InventoryLedger ADD CONSTRAINT CK_NoUndo CHECK (ReversesID IS NULL)");
    EXPECT_EQ(errorOf("DECLARE @row int SELECT @row = MAX(LedgerID) FROM InventoryLedger EXEC bsp_UndoAdjustment @row"), 547);
    EXPECT_EQ(rowsOf("SELECT Quantity FROM Stock"), "3");
}

TEST_F(StoreRules, TheLastMovementByDateIsTheLastOnePosted) {
    run("INSERT INTO Item (SKU, MatrixSKU) VALUES ('a', 'a')");
    run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Qty, Cost_ea, PostDate) VALUES ('a', 'a', 1, 1, DATEADD(hour, 2, GETDATE()))");
    run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Qty, Cost_ea) VALUES ('a', 'a', 1, 2), ('a', 'a', 1, 3)");
    run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Qty, Cost_ea, PostDate) VALUES ('a', 'a', 1, 4, '1/2/2020')"); // told to be old
    EXPECT_EQ(rowsOf("SELECT Cost_ea FROM InventoryLedger ORDER BY PostDate DESC"), "3;2;1;4");
}

TEST_F(StoreRules, TheLedgerKeepsTheMovingWeightedAverage) {
    struct Step {
        int qty;
        const char* cost;
        const char* average;
        int after;
    };
    run("INSERT INTO Item (SKU, MatrixSKU) VALUES ('a', 'a')");
    // Worked by hand.
    for (const Step& step : {Step{10, "2", "2", 10}, Step{5, "3.5", "2.5", 15}, Step{-6, "9", "2.5", 9}, Step{1, "0", "2.25", 10},
                             Step{-12, "1", "2.25", -2}, Step{4, "3", "3", 2}, Step{1, "1", "2.3333", 3}, Step{0, "100", "2.3333", 3}}) {
        run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) VALUES ('a', 'a', 'Adjustment', " + std::to_string(step.qty) +
            ", " + step.cost + ")");
        EXPECT_EQ(rowsOf("SELECT TOP 1 Cost_wt, QtyAfter FROM InventoryLedger ORDER BY PostDate DESC, LedgerID DESC"),
                  std::string(step.average) + "|" + std::to_string(step.after));
    }
    // Several rows in one statement, of two items.
    run("INSERT INTO Item (SKU, MatrixSKU) VALUES ('b', 'b')");
    run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) VALUES ('b', 'b', 'x', 2, 1), ('a', 'a', 'x', 1, 2.3333), ('b', "
        "'b', 'x', 2, 2)");
    EXPECT_EQ(rowsOf("SELECT Cost_wt, QtyAfter FROM InventoryLedger WHERE SKU = 'b' ORDER BY LedgerID"), "1|2;1.5|4");
    // A clock that was set back between two movements.
    run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea, PostDate) VALUES ('b', 'b', 'x', 2, 3, '2099-01-01'), "
        "('b', 'b', 'x', 2, 6, '2098-01-01'), ('b', 'b', 'x', -1, 0, GETDATE())");
    EXPECT_EQ(rowsOf("SELECT Cost_wt, QtyAfter FROM InventoryLedger WHERE SKU = 'b' AND LedgerID > 11 ORDER BY LedgerID"), "2|6;3|8;3|7");
    EXPECT_TRUE(brokenInvariants(*session).empty());
    run("ALTER TABLE InventoryLedger DISABLE TRIGGER InventoryLedger_Insert INSERT INTO InventoryLedger (SKU, MatrixSKU, Qty, QtyAfter) "
        "VALUES ('b', 'b', 1, 77)");
    EXPECT_EQ(brokenInvariants(*session),
              std::vector<std::string>{"An item's newest ledger row does not hold the sum of its movements. The first: item b."});
}

TEST_F(StoreRules, PhoneNumbersKeepTheirDigits) {
    run("INSERT INTO Customer (LastName, PhoneNumber) VALUES ('Doe', '(555) 123-4567'), ('Roe', NULL)");
    EXPECT_EQ(rowsOf("SELECT CleanPhoneNumber FROM Customer ORDER BY ID"), "5551234567;NULL");
    run("UPDATE Customer SET PhoneNumber = '555.000/1' WHERE LastName = 'Roe'");
    EXPECT_EQ(rowsOf("SELECT CleanPhoneNumber FROM Customer WHERE LastName = 'Roe'"), "5550001");
}

TEST_F(StoreRules, ProceduresOfTheItemScreens) {
    run("bsp_NewItem 'P', 'C1'");
    EXPECT_EQ(rowsOf("bsp_NewItem 'P', 'C1'"), "0");
    EXPECT_EQ(rowsOf("bsp_NewItem 'Q', 'Q'"), "1");
    EXPECT_EQ(rowsOf("EXEC bsp_ItemStockLookup 'P', 'C1'"), "0|1900-01-01 00:00:00|0|0");
    EXPECT_EQ(rowsOf("bsp_PriceMatrixGrid 'P', 'C1', 1"), "P|C1|1|1|0");
    run("UPDATE Item SET Active = 0 WHERE SKU = 'Q' INSERT INTO Item (SKU, MatrixSKU) VALUES ('$DROP', '$DROP')");
    EXPECT_EQ(rowsOf("sp_GetAllItems 1, 0"), "P|C1||General;Q|Q||General");
    EXPECT_EQ(rowsOf("sp_GetAllItems 1, 1"), "P|C1||General");
    EXPECT_EQ(rowsOf("sp_GetAllItems 0, 0"), "Q|Q||General");
    EXPECT_EQ(rowsOf("sp_GetAllItems"), "C1|P||0|0;Q|Q||0|0");
    run("INSERT INTO Sales (SKU, MatrixSKU, DateFrom, DateTo) VALUES ('Q', 'Q', '1/1/2026', '2/1/2026'), ('Q', 'Q', '3/1/2026', "
        "'4/1/2026')");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Sales"), "2");
    EXPECT_EQ(rowsOf("bsp_SalesGrid 'Q', 'Q'").substr(0, 5), "2|Q|Q");
    EXPECT_EQ(rowsOf("sp_QBGetTaxDefDups"), "");
    EXPECT_NE(rowsOf("sp_GetSysInfo").find("|" + std::to_string(kSchemaVersion) + "|"), std::string::npos);
}

} // namespace
} // namespace merchantry::db
