#include "purchasing/orderrun.h"

#include "app/db/schema/schema.h"
#include "purchasing/orderpreview.h"
#include "tests/db/teststore.h"

#include <random>

namespace merchantry::purchasing {
namespace {

std::vector<OrderLine> linesOf(const std::vector<int>& suppliers) {
    std::vector<OrderLine> lines;
    for (const int supplier : suppliers) {
        OrderLine line;
        line.SupID = static_cast<std::int16_t>(supplier);
        line.SKU = std::to_string(lines.size());
        lines.push_back(line);
    }
    return lines;
}

// "supplier:place" of each line.
std::string told(const std::vector<OrderLine>& lines) {
    std::string text;
    for (const OrderLine& line : lines)
        text += (text.empty() ? "" : " ") + std::to_string(line.SupID) + ":" + line.SKU;
    return text;
}

std::string grouped(const std::vector<int>& suppliers) {
    auto lines = linesOf(suppliers);
    groupBySupplier(lines);
    return told(lines);
}

// The passes as they are told, line by line.
std::string groupedStepByStep(const std::vector<int>& suppliers) {
    auto lines = linesOf(suppliers);
    const auto line = [&](int j) -> OrderLine& { return lines[static_cast<std::size_t>(j) - 1]; };
    bool exchanged = true;
    for (int i = static_cast<int>(lines.size()) - 1; i >= 2 && exchanged; --i) {
        exchanged = false;
        for (int j = 1; j <= i; ++j)
            if (line(j).SupID > line(j + 1).SupID) {
                std::swap(line(j), line(j + 1));
                exchanged = true;
            }
    }
    return told(lines);
}

TEST(Grouping, LeavesTheLastPassOut) {
    EXPECT_EQ(grouped({}), "");
    EXPECT_EQ(grouped({7}), "7:0");
    EXPECT_EQ(grouped({2, 1}), "2:0 1:1"); // two lines are never sorted
    EXPECT_EQ(grouped({2, 2, 1}), "2:0 1:2 2:1");
    EXPECT_EQ(grouped({3, 2, 1}), "2:1 1:2 3:0");
    EXPECT_EQ(grouped({1, 2, 1, 2}), "1:0 1:2 2:1 2:3");
    EXPECT_EQ(grouped({5, -1, 0, 32767, -32768}), "-1:1 -32768:4 0:2 5:0 32767:3");
}

TEST(Grouping, IsThatOfTheExchangeSortForAnyList) {
    std::mt19937 random(5); // the same lists in every run
    for (int round = 0; round < 2000; ++round) {
        std::vector<int> suppliers(random() % 12);
        for (int& supplier : suppliers)
            supplier = static_cast<int>(random() % 6);
        ASSERT_EQ(grouped(suppliers), groupedStepByStep(suppliers)) << told(linesOf(suppliers));
    }
}

// Orders on a store with three suppliers and five items; line i is item i.
class OrderRun : public db::OnAStore {
protected:
    OrderRun() {
        createSchema(*session);
        run("INSERT INTO Suppliers (Supplier) VALUES ('Acme'), ('Bolt'), ('Cord')");
        for (int i = 0; i < 5; ++i)
            run("INSERT INTO Item (SKU, MatrixSKU, Name) VALUES ('" + std::to_string(i) + "', '" + std::to_string(i) + "', 'Item')");
        connection = std::make_shared<db::Connection>(provider);
        connection->Open("Data Source=" + file.string());
    }
    static std::vector<OrderLine> ordered(const std::vector<std::pair<int, int>>& suppliersAndQuantities) {
        std::vector<int> suppliers;
        for (const auto& [supplier, quantity] : suppliersAndQuantities)
            suppliers.push_back(supplier);
        auto lines = linesOf(suppliers);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            lines[i].MatrixSKU = lines[i].SKU;
            lines[i].ReorderQty = static_cast<std::int16_t>(suppliersAndQuantities[i].second);
            lines[i].Cost = Currency::fromUnits(12345);
        }
        return lines;
    }
    // "orders lines", and what stands in the store: number, supplier and items of every order.
    std::string written(const OrdersWritten& result) {
        return std::to_string(result.orders) + " " + std::to_string(result.lines) + ": " +
               rowsOf("SELECT o.PONumber, o.SupID, i.SKU, i.Qty FROM PurchaseOrder o LEFT JOIN PurchaseOrderItem i ON i.POID = o.POID "
                      "ORDER BY o.POID, i.SKU");
    }

    db::Provider provider;
    db::ConnectionPtr connection;
};

TEST_F(OrderRun, WritesAnOrderForEachRunOfOneSupplier) {
    int told = 0;
    const auto result =
        writeOrders(connection, ordered({{2, 5}, {2, 6}, {1, 0}, {3, 7}, {2, 8}}), [&](int done) { return done == ++told; });
    EXPECT_EQ(written(result), "3 4: 1|2|0|5;1|2|1|6;2|3|3|7;3|2|4|8"); // nothing is asked of supplier 1: no order, no number
    EXPECT_EQ(told, 5);
    EXPECT_EQ(rowsOf("SELECT DISTINCT Cost FROM PurchaseOrderItem"), "1.2345");
    EXPECT_EQ(written(writeOrders(connection, {}, [](int) { return true; })).substr(0, 4), "0 0:");
}

TEST_F(OrderRun, GivesUpTheOrderInWhichAProcedureFails) {
    auto lines = ordered({{1, 1}, {2, 2}, {2, 3}, {3, 4}});
    run("ALTER PROCEDURE sp_InsertPOItem @POID smallint, @SKU varchar(100), @MatrixSKU varchar(100), @Qty smallint, @Cost money, "
        "@PartNo varchar(50) AS "
        "INSERT INTO PurchaseOrderItem (POID, SKU, MatrixSKU, Qty, Cost) VALUES (@POID, @SKU, @MatrixSKU, @Qty, @Cost) "
        "IF @SKU = '2' BEGIN RAISERROR('Closed', 16, 1) RETURN END SELECT @Qty AS Qty");
    EXPECT_THROW(writeOrders(connection, lines, [](int) { return true; }), db::DbError);
    EXPECT_EQ(written({}), "0 0: 1|1|0|1");
    // Nothing of the failed order holds the connection or the store.
    lines.resize(2);
    EXPECT_EQ(written(writeOrders(connection, lines, [](int) { return true; })), "2 2: 1|1|0|1;2|1|0|1;3|2|1|2");
}

TEST_F(OrderRun, StopsInTheMiddleOfAnOrderWithoutIt) {
    const auto result = writeOrders(connection, ordered({{1, 1}, {2, 2}, {2, 3}}), [](int done) { return done < 2; });
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(written(result), "1 1: 1|1|0|1");
}

TEST_F(OrderRun, TakesTheFirstRowOfEachItemAndCountsInSixteenBits) {
    const auto rows = [&](const db::Sql& select) { return connection->Execute(select); };
    std::vector<OrderLine> lines;
    addLines(lines, *rows("SELECT 'A' AS SKU, 'A' AS MatrixSKU, 3 AS Quantity, 4 AS Restock, 10 AS Reorder, 2 AS QtyOrdered "
                          "UNION ALL SELECT 'A', 'A', 1, 1, 1, 1 UNION ALL SELECT 'A', 'B', 0, 0, 5, 9"));
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].ReorderQty, 8);
    EXPECT_EQ(lines[0].Quantity, 3);
    EXPECT_EQ(lines[1].MatrixSKU, "B");
    EXPECT_EQ(lines[1].ReorderQty, -4);
    // Figures that no order holds are read like any other: the rows behind them must not be missing.
    addLines(lines, *rows("SELECT 'A' AS SKU, 'C' AS MatrixSKU, 40000 AS Quantity, 50000 AS Restock, 32767 AS Reorder, -1 AS QtyOrdered "
                          "UNION ALL SELECT 'A', 'D', 0, 0, 5, 0"));
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[2].ReorderQty, 32768);
    EXPECT_THROW(takeOffer(lines[0], *offersFor(*connection, lines[0], SupplierRule::LowestCost)), db::DbError);
}

TEST(Preview, SaysWhatWouldBeOrderedAndWhy) {
    const auto offer = [](int supplier, int cents, int priority) {
        return SupplierOffer{static_cast<std::int16_t>(supplier), Currency::fromUnits(cents * 100), static_cast<std::int16_t>(priority), 4,
                             ""};
    };
    const auto line = [&](int supplier, int quantity) {
        PreviewLine one;
        one.line.SupID = static_cast<std::int16_t>(supplier);
        one.line.ReorderQty = static_cast<std::int16_t>(quantity);
        one.line.Cost = Currency::fromInteger(2);
        one.offers = {offer(supplier, 200, 1)};
        return one;
    };
    OrderPreview preview;
    preview.setLines({line(2, 3), line(1, 0), line(2, 4), line(2, 1)});
    EXPECT_EQ(preview.summary(), "2 orders with 3 items for $16.00; 1 line asks for nothing, enough is on order");
    preview.setLines({line(1, 0), line(1, 3), line(2, 0)});
    EXPECT_EQ(preview.summary().substr(0, 32), "1 order with 1 item for $6.00; 2");
    PreviewLine orphan = line(0, 3);
    orphan.offers.clear();
    preview.setLines({orphan, line(1, 3)});
    EXPECT_EQ(preview.summary().substr(0, 40), "1 item has no supplier that takes part: ");

    constexpr auto byCost = SupplierRule::LowestCost;
    constexpr auto byPriority = SupplierRule::Priority;
    EXPECT_EQ(whyNot(offer(2, 250, 1), offer(1, 200, 2), byCost), "$0.50 dearer");
    EXPECT_EQ(whyNot(offer(2, 200, 3), offer(1, 200, 2), byCost), "same cost, priority 3 after 2");
    EXPECT_EQ(whyNot(offer(2, 150, 3), offer(1, 200, 2), byPriority), "priority 3 after 2");
    EXPECT_EQ(whyNot(offer(2, 250, 2), offer(1, 200, 2), byPriority), "same priority, $0.50 dearer");
    EXPECT_EQ(whyNot(offer(2, 200, 2), offer(1, 200, 2), byPriority), "same cost and priority, later number");
    EXPECT_EQ(whyTaken({offer(1, 200, 2), offer(2, 200, 2)}, byCost), "taken: of equals the earlier number");
    EXPECT_EQ(whyTaken({offer(1, 200, 2), offer(2, 250, 2)}, byPriority), "taken: priority 2, lowest cost");
}

} // namespace
} // namespace merchantry::purchasing
