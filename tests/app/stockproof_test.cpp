#include "app/stockproof.h"

#include "app/db/embedded/store.h"
#include "app/storefile.h"
#include "tests/scratchfolder.h"

#include <gtest/gtest.h>

namespace merchantry::app {
namespace {

class StockProof : public testing::Test {
protected:
    StockProof() {
        createStoreFile(file, {}, [](int) {});
        session = db::Store::open(file)->session();
        run("INSERT INTO Item (SKU, MatrixSKU) VALUES ('A', 'A'), ('B', 'B1'), ('B', 'B2')");
        run("INSERT INTO Stock (SKU, MatrixSKU) VALUES ('A', 'A'), ('B', 'B1'), ('B', 'B2')");
    }
    void run(const std::string& batch) {
        db::NoResult none;
        session->execute(batch, none);
    }
    // A movement as registers and screens post it, the stock with it.
    void move(const std::string& matrixSku, int quantity, const std::string& cost, const std::string& reverses = "NULL") {
        const std::string key = "'" + matrixSku.substr(0, 1) + "', '" + matrixSku + "'";
        run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Qty, Cost_ea, ReversesID) VALUES (" + key + ", " + std::to_string(quantity) +
            ", " + cost + ", " + reverses + ")");
        run("UPDATE Stock SET Quantity = Quantity + " + std::to_string(quantity) + " WHERE MatrixSKU = '" + matrixSku + "'");
    }
    std::string ledger(const std::string& matrixSku) {
        class Cells : public db::ResultSink {
        public:
            void beginSet(const std::vector<db::Column>&) override {}
            void row(const db::RowView& row) override { text += row.value(0).toText() + "@" + row.value(1).toText() + " "; }
            std::string text;
        } cells;
        session->execute("SELECT QtyAfter, Cost_wt FROM InventoryLedger WHERE MatrixSKU = '" + matrixSku + "' ORDER BY LedgerID", cells);
        return cells.text;
    }
    Proof prove() {
        return proveStock(*session, [](int) { return true; });
    }

    ScratchFolder folder;
    std::filesystem::path file = folder / "a.store";
    std::unique_ptr<db::Session> session;
};

// Worked by hand: each line is balance @ weighted cost after the movement.
TEST_F(StockProof, FollowsTheWeightedCostOfAHandWorkedTable) {
    move("A", 10, "2");     // 10 @ 2
    move("A", 5, "3.5");    // (20 + 17.5) / 15 = 2.5
    move("A", -4, "2.5");   // goes out at the average
    move("A", 3, "1.1");    // (27.5 + 3.3) / 14 = 2.2
    move("A", 1, "0");      // 30.8 / 15 = 2.05333...
    move("A", -20, "9");    // below nothing: the average stays
    move("A", 6, "7.7777"); // nothing on hand: the new cost is the average
    move("A", -1, "0");
    move("A", 2, "0.0001");  // nothing on hand again
    move("B1", -3, "4.4");   // never moved: its own cost
    move("B1", 5, "1");      // below nothing before
    move("B1", 1, "1.0001"); // 3.0001 / 3 = 1.00003... down
    move("B1", 1, "1.0003"); // (3 + 1.0003) / 4 = 1.000075, half and more goes up
    EXPECT_EQ(ledger("A"), "10@2 15@2.5 11@2.5 14@2.2 15@2.0533 -5@2.0533 1@7.7777 0@7.7777 2@0.0001 ");
    EXPECT_EQ(ledger("B1"), "-3@4.4 2@1 3@1 4@1.0001 ");
    const Proof proof = prove();
    EXPECT_TRUE(proof.ledger.empty());
    EXPECT_TRUE(proof.stock.empty());
    EXPECT_EQ(proof.rows, 13);
    EXPECT_EQ(proof.items, 2);
}

TEST_F(StockProof, KnowsWhatAnUndoneAdjustmentDoesToTheAverage) {
    move("A", 10, "2");
    move("A", 5, "3.5");
    move("A", -5, "3.5", "2"); // back to 10 @ 2
    move("A", -4, "0");        // out at the average, with whatever cost was typed
    move("A", 4, "0", "4");    // and back at the average, too
    move("A", 5, "9");         // (20 + 45) / 15 = 4.3333
    move("A", -13, "4.3333");
    move("A", -5, "9", "6"); // nothing would be left: stays
    EXPECT_EQ(ledger("A"), "10@2 15@2.5 10@2 6@2 10@2 15@4.3333 2@4.3333 -3@4.3333 ");
    move("B1", 10, "1");
    move("B1", 1, "100"); // 110 / 11 = 10
    move("B1", -9, "10");
    move("B1", -1, "100", "10"); // (20 - 100) would be less than nothing: stays
    EXPECT_EQ(ledger("B1"), "10@1 11@10 2@10 1@10 ");
    move("B2", 10, "2");
    move("B2", -5, "0");
    move("B2", 5, "4");       // (10 + 20) / 10 = 3
    move("B2", 5, "0", "14"); // what left at 2 comes back at 2: (30 + 10) / 15 = 2.6667
    EXPECT_EQ(ledger("B2"), "10@2 5@2 10@3 15@2.6667 ");
    EXPECT_TRUE(prove().ledger.empty());
}

TEST_F(StockProof, NamesTheFirstRowOfEachItemThatDisagrees) {
    move("A", 10, "2");
    move("A", 5, "3.5");
    move("A", -1, "2.5");
    move("B1", 7, "1");
    move("B2", 7, "1");
    run("UPDATE InventoryLedger SET Cost_wt = 2.4 WHERE LedgerID IN (2, 3)");
    run("UPDATE InventoryLedger SET QtyAfter = NULL WHERE LedgerID = 4");
    run("UPDATE Stock SET Quantity = 8 WHERE MatrixSKU = 'B2'");
    const Proof proof = prove();
    ASSERT_EQ(proof.ledger.size(), 2U);
    EXPECT_EQ(proof.ledger[0].sentence(), "Item A/A: ledger row 2 holds the weighted cost $2.40 where its movements make $2.50.");
    EXPECT_EQ(proof.ledger[1].sentence(), "Item B/B1: ledger row 4 holds the balance nothing where its movements make 7.");
    ASSERT_EQ(proof.stock.size(), 1U);
    EXPECT_EQ(proof.stock[0].sentence(), "Item B/B2: the stock is 8, its ledger adds up to 7.");
}

TEST_F(StockProof, LooksAgainAtWhatMovedMeanwhileAndStopsWhenTold) {
    run("BEGIN TRANSACTION DECLARE @i int SET @i = 0 WHILE @i < 5000 BEGIN INSERT INTO InventoryLedger (SKU, MatrixSKU, Qty, Cost_ea, "
        "Cost_wt, QtyAfter) "
        "VALUES "
        "('A', 'A', 1, 1, 1, @i + 1) SET @i = @i + 1 END UPDATE Stock SET Quantity = 5000 WHERE MatrixSKU = 'A' COMMIT");
    const Proof meanwhile = proveStock(*session, [this](int percent) {
        const auto other = db::Store::open(file)->session();
        db::NoResult none;
        if (percent < 100)
            other->execute(
                "INSERT INTO InventoryLedger (SKU, MatrixSKU, Qty, Cost_ea) VALUES ('A', 'A', -2, 1) UPDATE Stock SET Quantity = "
                "Quantity - 2 WHERE MatrixSKU = 'A'",
                none);
        return true;
    });
    EXPECT_EQ(meanwhile.rows, 5000);
    EXPECT_TRUE(meanwhile.stock.empty());
    const Proof stopped = proveStock(*session, [](int percent) { return percent == 100; });
    EXPECT_TRUE(stopped.stopped);
    EXPECT_EQ(stopped.rows, 5000);
}

} // namespace
} // namespace merchantry::app
