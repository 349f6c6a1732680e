// Two managers receive one order at the same time while registers sell: each posting is whole, and everything that came is in the stock.

#include "app/modMain.h"
#include "app/stockproof.h"
#include "purchasing/receiveline.h"
#include "tests/reliability/shopregisters.h"

#include <gtest/gtest.h>

using namespace merchantry;
using namespace merchantry::purchasing;

namespace {

constexpr int kRegisters = 4;
constexpr int kReceipts = 12; // of each manager

void openShop(const std::filesystem::path& file) {
    app::modMain().provider = std::make_unique<db::Provider>();
    app::modMain().Conn = std::make_shared<db::Connection>(*app::modMain().provider);
    app::modMain().Conn->Open("Data Source=" + file.string());
}

// The steps of the receiving screen, without it: a piece of every open line, with freight.
void receiveSome(std::int32_t PONumber, Currency freight) {
    std::vector<ReceiveLine> lines;
    for (const OpenLine& open : openLines(PONumber)) {
        ReceiveLine line;
        static_cast<OpenLine&>(line) = open;
        line.RecvQty = 1;
        lines.push_back(line);
    }
    if (lines.empty())
        return; // the screen says that nothing is received
    spreadOver(lines, subtotalOf(lines), freight);
    postReceipt(PONumber, lines, freight, "Freight");
}

// A manager in a process of its own: exit code 0 when every receipt was posted.
pid_t startManager(const std::filesystem::path& file, std::int32_t PONumber) {
    const pid_t child = fork();
    if (child != 0)
        return child;
    const std::string failed = saidBy([&] {
        openShop(file);
        for (int posted = 0; posted < kReceipts; ++posted)
            receiveSome(PONumber, Currency::fromText("7.77"));
        app::resetModMain();
    });
    if (!failed.empty() && write(STDERR_FILENO, failed.data(), failed.size()) < 0)
        _exit(2);
    _exit(failed.empty() ? 0 : 1);
}

TEST(Receipts, OfTwoManagersBesideRegistersAreWhole) {
    const ShopFolder folder;
    const auto file = folder.shop("busy.store");
    const auto number = [&](const std::string& select) { return std::stoi(cell(file, select)); };
    registersim::query(
        *db::Store::open(file)->session(),
        "INSERT INTO PurchaseOrder (SupID, PONumber) VALUES (1, 9000) INSERT INTO PurchaseOrderItem (POID, SKU, MatrixSKU, Qty, Cost) "
        "SELECT TOP 20 (SELECT POID FROM PurchaseOrder WHERE PONumber = 9000), SKU, MatrixSKU, 20, 3.3333 FROM Stock ORDER BY SKU");
    const int receiptsBefore = number("SELECT ISNULL(MAX(ReceiptNumber), 0) FROM PurchaseOrderReceipt");
    std::vector<pid_t> all{startManager(file, 9000), startManager(file, 9000)};
    for (int i = 1; i <= kRegisters; ++i)
        all.push_back(startRegister(file, i, receiptsWanted()));
    for (const pid_t one : all) {
        int status = 0;
        waitpid(one, &status, 0);
        EXPECT_EQ(status, 0);
    }

    // 24 receipts of a piece each: the last ones bring more than the 20 that were ordered, or find nothing open any more.
    const std::string ofTheOrder = " FROM PurchaseOrderReceipt r INNER JOIN PurchaseOrder o ON o.POID = r.POID WHERE o.PONumber = 9000";
    EXPECT_EQ(cell(file, "SELECT Status FROM PurchaseOrder WHERE PONumber = 9000"), "C");
    EXPECT_EQ(number("SELECT COUNT(*) FROM PurchaseOrderItem i INNER JOIN PurchaseOrder o ON o.POID = i.POID WHERE o.PONumber = 9000 AND "
                     "(QtyRecvd < "
                     "Qty OR QtyRecvd <> (SELECT SUM(r.Quantity) FROM PurchaseOrderReceipt r WHERE r.POID = i.POID AND r.SKU = i.SKU AND "
                     "r.MatrixSKU = "
                     "i.MatrixSKU))"),
              0);
    EXPECT_EQ(number("SELECT COUNT(DISTINCT r.ReceiptNumber)" + ofTheOrder),
              number("SELECT MAX(r.ReceiptNumber)" + ofTheOrder) - receiptsBefore);
    EXPECT_EQ(
        number(
            "SELECT COUNT(*) FROM PurchaseOrderCost c WHERE Description = 'Freight' AND EXISTS (SELECT * FROM PurchaseOrderReceipt r WHERE "
            "r.CostID = c.CostID) AND Amount <> (SELECT SUM(r.OtherCost) FROM PurchaseOrderReceipt r WHERE r.CostID = c.CostID)"),
        0);
    const app::Proof proof = app::proveStockFile(file, [](int) { return true; });
    for (const auto* findings : {&proof.ledger, &proof.stock})
        for (const app::ProofFinding& finding : *findings)
            ADD_FAILURE() << finding.sentence();
    EXPECT_EQ(app::checkStoreFile(file), std::vector<std::string>{});
}

} // namespace
