// Order runs while eight registers sell: nobody hears of a lock, every receipt and every order is whole, and what the reorder logic takes
// for ordered is what is open.

#include "app/stockproof.h"
#include "purchasing/orderrun.h"
#include "tests/reliability/shopregisters.h"

#include <gtest/gtest.h>

#include <map>

using namespace merchantry;
using namespace merchantry::purchasing;

namespace {

constexpr int kRegisters = 8;

// The steps of the screen, without it.
OrdersWritten orderRun(const db::ConnectionPtr& connection) {
    std::vector<OrderLine> lines;
    addLines(lines, *connection->Execute("sp_GetAllReorderItems"));
    connection->Execute("sp_POBreakGround");
    connection->Execute("sp_InsertAllSuppliers");
    for (OrderLine& line : lines)
        takeOffer(line, *offersFor(*connection, line, SupplierRule::LowestCost));
    groupBySupplier(lines);
    return writeOrders(connection, lines, [](int) { return true; });
}

TEST(OrderRuns, BesideEightRegistersLoseNothingAndHearOfNoLock) {
    const ShopFolder folder;
    const auto file = folder.shop("busy.store");
    const auto number = [&](const std::string& select) { return std::stoi(cell(file, select)); };
    const std::string newLines =
        "SELECT COUNT(*) FROM PurchaseOrderItem i INNER JOIN PurchaseOrder o ON o.POID = i.POID WHERE o.PONumber > ";
    const int receipts = number("SELECT COUNT(*) FROM [Transaction]");
    const int lastNumber = number("SELECT ISNULL(MAX(PONumber), 0) FROM PurchaseOrder");
    std::vector<pid_t> registers;
    for (int i = 1; i <= kRegisters; ++i)
        registers.push_back(startRegister(file, i, receiptsWanted()));
    db::Provider provider;
    const auto connection = std::make_shared<db::Connection>(provider);
    connection->Open("Data Source=" + file.string());
    OrdersWritten all;
    for (const pid_t one : registers)
        for (int status = 0; waitpid(one, &status, WNOHANG) == 0;)
            EXPECT_EQ(saidBy([&] {
                          const OrdersWritten run = orderRun(connection);
                          all.orders += run.orders;
                          all.lines += run.lines;
                      }),
                      "");
    EXPECT_EQ(number("SELECT COUNT(*) FROM [Transaction]"), receipts + kRegisters * receiptsWanted());
    const app::Proof proof = app::proveStockFile(file, [](int) { return true; });
    for (const auto* findings : {&proof.ledger, &proof.stock})
        for (const app::ProofFinding& finding : *findings)
            ADD_FAILURE() << finding.sentence();

    // Numbers follow one another, and no order is without lines or number.
    ASSERT_GT(all.orders, 0);
    EXPECT_EQ(number("SELECT COUNT(DISTINCT PONumber) FROM PurchaseOrder WHERE PONumber > " + std::to_string(lastNumber)), all.orders);
    EXPECT_EQ(number("SELECT MAX(PONumber) FROM PurchaseOrder"), lastNumber + all.orders);
    EXPECT_EQ(number(newLines + std::to_string(lastNumber)), all.lines);
    EXPECT_EQ(number("SELECT COUNT(*) FROM PurchaseOrder WHERE PONumber IS NULL OR POID NOT IN (SELECT POID FROM PurchaseOrderItem)"), 0);

    // What is ordered counts at the next run: once nothing is sold any more, the second one finds nothing to order.
    orderRun(connection);
    EXPECT_EQ(orderRun(connection).lines, 0);
    const auto session = db::Store::open(file)->session();
    std::map<std::string, double> open;
    for (const auto& row : registersim::query(
             *session, "SELECT i.SKU + '|' + i.MatrixSKU, SUM(i.Qty - i.QtyRecvd - i.QtyCanceled) FROM PurchaseOrderItem i INNER JOIN "
                       "PurchaseOrder o ON o.POID = i.POID WHERE o.Status <> 'C' GROUP BY i.SKU, i.MatrixSKU"))
        open[row[0].toText()] = row[1].toNumber();
    const auto candidates = connection->Execute("sp_GetAllReorderItems");
    ASSERT_GT(candidates->RecordCount(), 10);
    for (db::Recordset& item = *candidates; !item.Eof(); item.MoveNext()) {
        const std::string key = item["SKU"].text() + "|" + item["MatrixSKU"].text();
        EXPECT_EQ(item["QtyOrdered"].Value().toNumber(), open[key]) << key;
    }
}

} // namespace
