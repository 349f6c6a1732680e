#include "purchasing/rehearsal.h"

#include "app/db/schema/schema.h"
#include "app/modMain.h"
#include "app/stockproof.h"
#include "tests/db/teststore.h"

#include <random>

namespace merchantry::purchasing {
namespace {

constexpr int kItems = 8;

// Receipts of one large order, with sales between them.
class Rehearsal : public db::OnAStore {
protected:
    Rehearsal() {
        db::createSchema(*session);
        run("INSERT INTO Suppliers (Supplier) VALUES ('Acme') INSERT INTO PurchaseOrder (SupID, PONumber) VALUES (1, 1)");
        for (int item = 0; item < kItems; ++item) {
            const std::string code = "'I" + std::to_string(item) + "', 'I" + std::to_string(item) + "'";
            run("bsp_NewItem " + code);
            run("INSERT INTO PurchaseOrderItem (POID, SKU, MatrixSKU, Qty, Cost) VALUES (1, " + code + ", 32000, 1)");
        }
        app::modMain().provider = std::make_unique<db::Provider>();
        app::modMain().Conn = std::make_shared<db::Connection>(*app::modMain().provider);
        app::modMain().Conn->Open("Data Source=" + file.string());
    }
    ~Rehearsal() override { app::resetModMain(); }

    std::int64_t upTo(std::int64_t most) { return static_cast<std::int64_t>(random_() % static_cast<std::uint64_t>(most + 1)); }

    // Costs with four decimals, some lines free, some not there.
    std::vector<ReceiveLine> delivery() {
        std::vector<ReceiveLine> lines;
        for (const OpenLine& open : openLines(1)) {
            ReceiveLine line;
            static_cast<OpenLine&>(line) = open;
            line.RecvQty = static_cast<std::int16_t>(upTo(2) == 0 ? 0 : upTo(40));
            line.Cost = Currency::fromUnits(upTo(3) == 0 ? 0 : upTo(2'000'000));
            lines.push_back(line);
        }
        return lines;
    }
    void sell() {
        for (int item = 0; item < kItems; ++item) {
            const std::string code = "I" + std::to_string(item);
            const std::string sold = std::to_string(upTo(30));
            run("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) VALUES ('" + code + "', '" + code + "', 'Sale', -" +
                sold + ", 0) UPDATE Stock SET Quantity = Quantity - " + sold + " WHERE SKU = '" + code + "'");
        }
    }
    std::string newestMovement(const std::string& sku) {
        return rowsOf("SELECT TOP 1 Qty, Cost_ea, Cost_wt, QtyAfter FROM InventoryLedger WHERE SKU = '" + sku + "' ORDER BY LedgerID DESC");
    }

private:
    std::mt19937_64 random_{20261121};
};

TEST_F(Rehearsal, SaysWhatThePostingMakesOfEachItem) {
    int compared = 0;
    int belowZero = 0;
    for (int round = 0; round < 60; ++round) {
        std::vector<ReceiveLine> lines = delivery();
        const Currency other = Currency::fromUnits(upTo(3) == 0 ? 0 : upTo(9999) * 100);
        const auto told = rehearsed(1, lines, other);
        spreadOver(lines, subtotalOf(lines), other);
        if (told.empty())
            continue;
        const std::int32_t number = postReceipt(1, lines, other, "Freight");
        for (const RehearsedLine& one : told) {
            const std::string expected = std::to_string(one.line.RecvQty) + "|" + one.costEach.toText() + "|" + one.costAfter().toText() +
                                         "|" + std::to_string(one.after.onHand);
            EXPECT_EQ(newestMovement(one.line.SKU), expected) << "round " << round << ", " << one.line.SKU;
            ++compared;
            belowZero += one.before.onHand < 0 ? 1 : 0;
        }
        EXPECT_EQ(rowsOf("SELECT SUM(OtherCost) FROM PurchaseOrderReceipt WHERE ReceiptNumber = " + std::to_string(number)),
                  other.toText());
        sell();
    }
    EXPECT_GT(compared, 200);
    EXPECT_GT(belowZero, 20);
    const app::Proof proof = app::proveStock(*session, [](int) { return true; });
    EXPECT_TRUE(proof.ledger.empty() && proof.stock.empty());
}

TEST_F(Rehearsal, WritesNothingAndLeavesThePriceToTheCheaperOfListAndSale) {
    run("UPDATE PriceMatrix SET Price = 8 WHERE SKU IN ('I0', 'I1', 'I2') UPDATE PriceMatrix SET Price = 0 WHERE SKU = 'I3' DELETE FROM "
        "PriceMatrix "
        "WHERE SKU = 'I4'");
    run("INSERT INTO Sales (SKU, MatrixSKU, DateFrom, DateTo, SalePrice) SELECT SKU, MatrixSKU, DATEADD(day, -1, GETDATE()), DATEADD(day, "
        "1, GETDATE()), 6 "
        "FROM Item WHERE SKU = 'I1' INSERT INTO Sales (SKU, MatrixSKU, DateFrom, DateTo, SalePrice) SELECT SKU, MatrixSKU, DATEADD(day, "
        "-9, GETDATE()), "
        "DATEADD(day, -1, GETDATE()), 6 FROM Item WHERE SKU = 'I2'");
    std::vector<ReceiveLine> lines = delivery();
    for (ReceiveLine& line : lines) {
        line.RecvQty = 2;
        line.Cost = Currency::fromText("3");
    }
    const auto told = rehearsed(1, lines, Currency());
    ASSERT_EQ(told.size(), static_cast<std::size_t>(kItems));
    EXPECT_EQ(told[0].margin(), 62); // 5 of 8, the half to the even number
    EXPECT_EQ(told[1].margin(), 50);
    EXPECT_EQ(told[2].margin(), 62); // that sale is over
    EXPECT_FALSE(told[3].margin());
    EXPECT_FALSE(told[4].price);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM InventoryLedger"), "0");
}

} // namespace
} // namespace merchantry::purchasing
