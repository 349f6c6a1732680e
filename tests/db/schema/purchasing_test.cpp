#include "app/db/schema/schema.h"

#include "tests/db/teststore.h"

namespace merchantry::db {
namespace {

// The procedures of purchasing, on a store with two suppliers and a few items.
class Purchasing : public OnAStore {
protected:
    Purchasing() {
        createSchema(*session);
        run("INSERT INTO Suppliers (Supplier) VALUES ('Acme'), ('Bolt') INSERT INTO Departments (Department) VALUES ('Tools')");
        item("Nut", 2, 4, 10);
        item("Pin", 9, 4, 10); // enough on hand
        item("Rod", -20, 4, 10);
        item("Tap", 0, 0, 0); // never reordered
        item("Old", 0, 4, 10);
        item("Orphan", 0, 4, 10); // nobody delivers it
        run("UPDATE Item SET Active = 0 WHERE SKU = 'Old' UPDATE Item SET DepartmentID = 2 WHERE SKU = 'Rod'");
        run("INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, MinOrder, Priority, PartNo) VALUES ('Nut', 'Nut', 1, 2, 12, 2, "
            "'A-1'), "
            "('Nut', 'Nut', 2, 2.5, 1, 1, 'B-1'), ('Rod', 'Rod', 2, 7, 1, 1, NULL)");
    }
    void item(const std::string& sku, int onHand, int restock, int reorder) {
        run("INSERT INTO Item (SKU, MatrixSKU, Name, Restock, Reorder) VALUES ('" + sku + "', '" + sku + "', '" + sku + "', " +
            std::to_string(restock) + ", " + std::to_string(reorder) + ") INSERT INTO Stock (SKU, MatrixSKU, Quantity) VALUES ('" + sku +
            "', '" + sku + "', " + std::to_string(onHand) + ")");
    }
    int errorOf(const std::string& batch) {
        try {
            run(batch);
            return 0;
        } catch (const DbError& error) {
            return error.native();
        }
    }
    // An order of 10 nuts at 2.00 and 4 rods at 7.00, its number 1.
    void order() {
        EXPECT_EQ(rowsOf("sp_InsertPOHeader 1"), "1");
        EXPECT_EQ(rowsOf("sp_InsertPOItem 1, 'Nut', 'Nut', 10, 2, 'A-1'"), "10");
        EXPECT_EQ(rowsOf("sp_InsertPOItem 1, 'Rod', 'Rod', 4, 7, ''"), "4");
        EXPECT_EQ(rowsOf("sp_UpdatePONumber 1"), "1");
    }
};

TEST_F(Purchasing, ItemsAtTheirLevelAreToldWithWhatIsOnOrder) {
    EXPECT_EQ(rowsOf("sp_GetAllReorderItems"), "Nut|Nut|2|4|10|0;Rod|Rod|-20|4|10|0");
    EXPECT_EQ(rowsOf("sp_GetAllReorderList"), "Nut|Nut|Nut|2|4;Rod|Rod|Rod|-20|4");
    EXPECT_EQ(rowsOf("sp_GetItemReorderData 'Pin', 'Pin'"), "Pin|Pin|9|4|10|0");
    run("sp_InsertWrkDepartment 2");
    EXPECT_EQ(rowsOf("sp_GetReorderItemsByDept"), "Rod|Rod|-20|4|10|0");
    run("sp_InsertWrkSupplier 1 EXEC sp_InsertWrkSupplier 1");
    EXPECT_EQ(rowsOf("sp_GetReorderItemsBySupplier"), "Nut|Nut|2|4|10|0");
    run("INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID) VALUES ('Orphan', 'Orphan', 0) UPDATE Item SET DepartmentID = 2 WHERE "
        "SKU = 'Orphan'");
    EXPECT_EQ(rowsOf("sp_GetReorderItemsByDept"), "Rod|Rod|-20|4|10|0"); // the Empty Supplier is nobody
    run("sp_POBreakGround");
    EXPECT_EQ(rowsOf("sp_GetReorderItemsBySupplier"), "");
    EXPECT_EQ(rowsOf("sp_GetAllItemsBySupplier 2"), "Nut|Nut|Nut|2|4;Rod|Rod|Rod|-20|4");
    order();
    EXPECT_EQ(rowsOf("sp_GetAllReorderItems"), "Nut|Nut|2|4|10|10;Rod|Rod|-20|4|10|4");
    run("sp_CancelItem 1, 1, 'Nut', 'Nut', 3, -1 EXEC sp_ReceiveItem 1, 1, 'Nut', 'Nut', 1, 2, 0, 0, -1, 'A-1'");
    EXPECT_EQ(rowsOf("sp_GetItemReorderData 'Nut', 'Nut'"), "Nut|Nut|3|4|10|6");
}

// What to order, worked out by hand. Nut: Restock 4, 2 on hand, Reorder 10; Rod: -20 on hand.
TEST_F(Purchasing, HowMuchAndFromWhom) {
    run("sp_InsertAllSuppliers");
    struct Case {
        const char* call;
        const char* first; // quantity, cost, part number, supplier, priority
    };
    const Case cases[] = {
        {"sp_GetPOInfoByCost 'Nut', 'Nut', 10", "12|2|A-1|1|2"},       // the supplier's minimum
        {"sp_GetPOInfoByPriority 'Nut', 'Nut', 10", "10|2.5|B-1|2|1"}, // what is wanted
        {"sp_GetPOInfoByCost 'Nut', 'Nut', 14", "14|2|A-1|1|2"},
        {"sp_GetPOInfoByCost 'Nut', 'Nut', 0", "0|2|A-1|1|2"}, // enough on order: nothing
        {"sp_GetPOInfoByCost 'Nut', 'Nut', -3", "0|2|A-1|1|2"},
        {"sp_GetPOInfoByCost 'Rod', 'Rod', 10", "25|7|NULL|2|1"}, // above the level again: 4 + 1 + 20
        {"sp_GetPOInfoByCost 'Rod', 'Rod', 6", "21|7|NULL|2|1"},  // 4 are on order
        {"sp_GetPOInfoByCost 'Pin', 'Pin', 10", ""},              // nobody delivers it
    };
    for (const Case& test : cases) {
        const std::string rows = rowsOf(test.call);
        EXPECT_EQ(rows.substr(0, rows.find(';')), test.first) << test.call;
    }
    run("INSERT INTO ItemSplitMatrix (SKU, MatrixSKU, SplitParentSKU, SplitParentMatrixSKU, SplitQuantity) VALUES ('Nut', 'Nut', 'Pin', "
        "'Pin', 8)");
    EXPECT_EQ(rowsOf("sp_GetPOInfoByCost 'Nut', 'Nut', 10").substr(0, 3), "12|"); // no split item
    run("UPDATE Item SET TypeID = 3 WHERE SKU = 'Nut'");
    EXPECT_EQ(rowsOf("sp_GetPOInfoByCost 'Nut', 'Nut', 10").substr(0, 3), "16|");
    run("sp_POBreakGround EXEC sp_InsertWrkSupplier 2");
    EXPECT_EQ(rowsOf("sp_GetPOInfoByCost 'Nut', 'Nut', 10"), "16|2.5|B-1|2|1");
    EXPECT_EQ(rowsOf("bsp_POInfo 'Nut', 'Nut', 10, 1, 1"), "16|2|A-1|1|2"); // of one supplier, in the run or not
    run("UPDATE SupplierMatrixDetail SET Cost = 2 WHERE SupID = 2 AND SKU = 'Nut' EXEC sp_InsertAllSuppliers");
    EXPECT_EQ(rowsOf("sp_GetPOInfoByCost 'Nut', 'Nut', 10").substr(0, 11), "16|2|B-1|2|"); // equal costs: the lower priority
}

TEST_F(Purchasing, AnOrderLivesFromHeaderToClosed) {
    order();
    EXPECT_EQ(rowsOf("sp_InsertPOHeader 2"), "2");
    EXPECT_EQ(rowsOf("sp_InsertPOItem 2, 'Nut', 'Nut', 0, 2, ''"), "0");
    EXPECT_EQ(rowsOf("bsp_PurchaseOrders").substr(0, 7), "1|Acme|"); // the second has no number yet
    EXPECT_EQ(rowsOf("sp_InsertPOItem 2, 'Nut', 'Nut', 2, 3, '' EXEC sp_InsertPOItem 2, 'Nut', 'Nut', 3, 4, 'X'"), "2;5");
    EXPECT_EQ(rowsOf("sp_UpdatePONumber 2 EXEC sp_UpdatePONumber 2"), "2;2");
    EXPECT_EQ(rowsOf("sp_GetPOItems 2"), "Nut|Nut|5|4|Nut|X|0|0");
    run("sp_UpdatePOItem 2, 'Nut', 'Nut', 7, 1.5, 'Y'");
    EXPECT_EQ(rowsOf("sp_GetPOItems 2"), "Nut|Nut|7|1.5|Nut|Y|0|0");
    const std::string listed = rowsOf("bsp_PurchaseOrders_PO 2");
    EXPECT_NE(listed.find("|10.5|10.5|Open|2"), std::string::npos) << listed;
    run("sp_DeletePOItem 2, 'Nut', 'Nut'");
    EXPECT_EQ(rowsOf("sp_GetPOItems 2"), "");
    EXPECT_EQ(rowsOf("sp_PONumber2POID 1 EXEC sp_GetPOID 99"), "1");
    EXPECT_EQ(rowsOf("sp_GetSupplierInfo 1, 0").substr(0, 7), "Acme|1|");
    EXPECT_EQ(rowsOf("sp_GetSupplierInfo -1, 2").substr(0, 7), "Bolt|2|");
    EXPECT_EQ(rowsOf("bsp_PurchaseOrders_SKU Rod").substr(0, 7), "1|Acme|");
    EXPECT_EQ(rowsOf("bsp_PurchaseOrders_Supplier 2").substr(0, 7), "2|Bolt|");
    run("sp_ChangePOStatus 1, 'P' EXEC sp_ChangePOStatus 1, 'C' EXEC sp_ChangePOStatus 1, 'P'");
    EXPECT_EQ(rowsOf("bsp_PurchaseOrders_Status 'P'"), "");
    const std::string closed = rowsOf("bsp_PurchaseOrders_Status 'O', 'C'");
    EXPECT_NE(closed.find("|48|48|Closed|1"), std::string::npos) << closed; // 10 at 2 and 4 at 7
    EXPECT_EQ(errorOf("sp_InsertPOItem 2, 'Nope', 'Nope', 1, 1, ''"), 547);
}

// Each of two managers saw the other's part open and asks for partial.
TEST_F(Purchasing, AnOrderOfWhichNothingIsOpenIsClosed) {
    order();
    run("sp_ReceiveItem 1, 1, 'Nut', 'Nut', 10, 2, 0, 0, -1, '' EXEC sp_ChangePOStatus 1, 'P'");
    EXPECT_EQ(rowsOf("SELECT Status FROM PurchaseOrder WHERE PONumber = 1"), "P");
    run("sp_CancelItem 1, 1, 'Rod', 'Rod', 4, -1 EXEC sp_ChangePOStatus 1, 'P'");
    EXPECT_EQ(rowsOf("SELECT Status FROM PurchaseOrder WHERE PONumber = 1"), "C");
}

// The editor asks for O after each saving.
TEST_F(Purchasing, AnEditorClosesAndReopensByWhatItLeavesOpen) {
    order();
    const auto stateAfter = [this](const std::string& change) {
        run(change + " EXEC sp_ChangePOStatus 1, 'O'");
        return rowsOf("SELECT Status FROM PurchaseOrder WHERE PONumber = 1");
    };
    EXPECT_EQ(stateAfter("sp_UpdatePOItem 1, 'Nut', 'Nut', 0, 2, ''"), "O"); // the rods are open
    EXPECT_EQ(stateAfter("sp_UpdatePOItem 1, 'Rod', 'Rod', 0, 7, ''"), "C");
    EXPECT_EQ(stateAfter("sp_UpdatePOItem 1, 'Rod', 'Rod', 4, 7, ''"), "O");
    EXPECT_EQ(stateAfter("sp_ReceiveItem 1, 1, 'Rod', 'Rod', 4, 7, 0, 0, -1, '' EXEC sp_ChangePOStatus 1, 'P'"), "C");
    EXPECT_EQ(stateAfter("sp_UpdatePOItem 1, 'Nut', 'Nut', 1, 2, ''"), "P");
    EXPECT_EQ(stateAfter("DELETE FROM PurchaseOrderItem WHERE POID = 1"), "P"); // an order without lines may get some yet
}

TEST_F(Purchasing, AQuantityThatNoOrderHoldsIsRefusedWithItsItem) {
    order();
    for (const char* batch : {"sp_InsertPOItem 1, 'Nut', 'Nut', 32760, 2, ''", "sp_UpdatePOItem 1, 'Nut', 'Nut', 40000, 2, ''",
                              "sp_ReceiveItem 1, 1, 'Nut', 'Nut', 40000, 2, 0, 0, -1, ''"}) {
        try {
            run(batch);
            ADD_FAILURE() << batch;
        } catch (const DbError& error) {
            EXPECT_NE(std::string(error.what()).find("of the item Nut"), std::string::npos) << error.what();
        }
    }
    EXPECT_EQ(rowsOf("SELECT Qty, QtyRecvd FROM PurchaseOrderItem WHERE SKU = 'Nut'"), "10|0");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM PurchaseOrderReceipt"), "0");
}

TEST_F(Purchasing, ADeliveryMovesLineStockLedgerAndCostTogether) {
    order();
    run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) VALUES ('Nut', 'Nut', 'Opening Stock', 2, 1)");
    EXPECT_EQ(rowsOf("sp_InsertOtherCost 1, 1.5, 'Freight'"), "1");
    EXPECT_EQ(rowsOf("sp_ReceiveItem 1, 1, 'Nut', 'Nut', 6, 2, 0.9, 1, -1, 'A-2'"), "1");
    EXPECT_EQ(rowsOf("sp_ReceiveItem 1, 1, 'Rod', 'Rod', 5, 7, 0.6, 1, 1, ''"), "1"); // one more than ordered
    EXPECT_EQ(rowsOf("sp_ReceiveItem 1, 1, 'Nut', 'Nut', 1, 2, 0, 0, -1, 'A-2'"), "2");
    EXPECT_EQ(rowsOf("sp_GetPOItemToReceive 1"), "Nut|Nut|0|2|Nut|10|A-2|7");
    EXPECT_EQ(rowsOf("SELECT Quantity FROM Stock WHERE SKU IN ('Nut', 'Rod') ORDER BY SKU"), "9;-15");
    // 2 at 1.00 and 6 at 2.15: 14.90 / 8; then 1 at 2.00: 16.9 / 9.
    EXPECT_EQ(rowsOf("SELECT Type, Qty, Cost_ea, Cost_wt FROM InventoryLedger WHERE SKU = 'Nut' ORDER BY LedgerID"),
              "Opening Stock|2|1|1;Receipt|6|2.15|1.8625;Receipt|1|2|1.8778");
    EXPECT_EQ(rowsOf("SELECT ReceiptNumber, Quantity, OtherCost, CostID FROM PurchaseOrderReceipt ORDER BY ReceiptLineID"),
              "1|6|0.9|1;1|5|0.6|1;2|1|0|NULL");
    EXPECT_EQ(errorOf("sp_ReceiveItem 1, 1, 'Pin', 'Pin', 1, 1, 0, 0, -1, ''"), 50000);
    EXPECT_EQ(errorOf("sp_ReceiveItem 1, 99, 'Nut', 'Nut', 1, 1, 0, 0, -1, ''"), 50000);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM PurchaseOrderReceipt"), "3");
}

TEST_F(Purchasing, ACancellationNeverTakesMoreThanIsOpen) {
    order();
    EXPECT_EQ(rowsOf("sp_CancelItem 1, 1, 'Nut', 'Nut', 4, -1"), "1");
    EXPECT_EQ(rowsOf("sp_CancelItem 1, 1, 'Rod', 'Rod', 4, 1"), "1");
    EXPECT_EQ(errorOf("sp_CancelItem 1, 1, 'Nut', 'Nut', 7, -1"), 50000);
    EXPECT_EQ(rowsOf("sp_CancelItem 1, 1, 'Nut', 'Nut', 6, -1"), "2");
    EXPECT_EQ(rowsOf("sp_GetPOItemToReceive 1"), "");
    EXPECT_EQ(rowsOf("SELECT CancelNumber, SUM(Quantity) FROM PurchaseOrderCancel GROUP BY CancelNumber ORDER BY CancelNumber"), "1|8;2|6");
    const std::string history = rowsOf("sp_GetPOItemHistory 1, 'Nut', 'Nut'");
    EXPECT_EQ(history.substr(0, 13), "Nut|10|0|1|C|");
    EXPECT_EQ(history.substr(history.size() - 2), "|6");
    EXPECT_EQ(rowsOf("sp_InsertPOHeader 2 EXEC sp_InsertPOItem 2, 'Rod', 'Rod', 1, 7, '' EXEC sp_UpdatePONumber 2"), "2;1;2");
    EXPECT_EQ(rowsOf("sp_GetPOItemHistory 2, 'Rod', 'Rod'"), "Rod|1|1|0|NULL|NULL|NULL");
}

TEST_F(Purchasing, WhatAnOrderPaidIsRememberedForItsSupplier) {
    run("INSERT INTO SupplierMatrixDetail (SKU, MatrixSKU, SupID, Cost, MinOrder, Priority, PartNo) VALUES ('Nut', 'Nut', 1, 1.8, 100, 3, "
        "'A-100')");
    const std::string rows =
        "SELECT SupID, Cost, MinOrder, Priority, PartNo FROM SupplierMatrixDetail WHERE SKU = 'Nut' ORDER BY SupID, MinOrder";
    run("sp_AdjustSupplierMatrix 'Nut', 'Nut', 1, 1.9, 40, 'A-9'");
    EXPECT_EQ(rowsOf(rows), "1|1.9|12|2|A-9;1|1.8|100|3|A-100;2|2.5|1|1|B-1");
    run("sp_AdjustSupplierMatrix 'Nut', 'Nut', 1, 1.7, 200, 'A-7' EXEC sp_AdjustSupplierMatrix 'Nut', 'Nut', 1, 1.6, 5, 'A-6'");
    EXPECT_EQ(rowsOf(rows), "1|1.6|12|2|A-6;1|1.7|100|3|A-7;2|2.5|1|1|B-1");
    run("sp_AdjustSupplierMatrix 'Nut', 'Nut', 1, 1.7, 5, 'A-8'"); // a row has that cost already
    EXPECT_EQ(rowsOf(rows), "1|1.6|12|2|A-6;1|1.7|100|3|A-8;2|2.5|1|1|B-1");
    run("sp_AdjustSupplierMatrix 'Pin', 'Pin', 2, 3, 5, 'P'");
    EXPECT_EQ(rowsOf("SELECT SupID, Cost, MinOrder, Priority, PartNo FROM SupplierMatrixDetail WHERE SKU = 'Pin'"), "2|3|1|1|P");
}

// The number of a cost that was not written was that of the cost before.
TEST_F(Purchasing, ACostOfNoOrderHasNoNumber) {
    order();
    EXPECT_EQ(rowsOf("sp_InsertOtherCost 1, 12.5, 'Freight'"), "1");
    EXPECT_EQ(rowsOf("EXEC sp_InsertOtherCost 1, 2, 'Toll' EXEC sp_InsertOtherCost 77, 5, 'none'"), "2;NULL");
}

// Two sessions on a server would count the same rows and take the same number.
TEST_F(Purchasing, WhatIsCountedForANumberIsLocked) {
    int counted = 0;
    for (const SchemaFile& schemaFile : schemaFiles()) {
        const std::string text(schemaFile.text);
        for (std::size_t at = text.find("MAX("); at != std::string::npos; at = text.find("MAX(", at + 4)) {
            const std::size_t from = text.find(" FROM ", at);
            if (text.substr(at, from - at).find("+ 1") == std::string::npos)
                continue;
            ++counted;
            EXPECT_LT(text.find("WITH (UPDLOCK, HOLDLOCK)", from), from + 60) << schemaFile.name;
        }
    }
    EXPECT_EQ(counted, 4);
}

} // namespace
} // namespace merchantry::db
