#include "demo/demostore.h"
#include "tests/scratchfolder.h"

#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"
#include "tools/registersim/liveregister.h"
#include "tools/registersim/query.h"

#include <gtest/gtest.h>

#include <thread>

using namespace merchantry;
using registersim::query;

namespace {

constexpr int kDays = 40;

// A demo store of a few weeks in a file that goes with it.
class DemoStore {
public:
    explicit DemoStore(const char* name, std::uint64_t seed = 20) : file_(folder_ / name) {
        remove();
        store_ = db::Store::create(file_);
        const auto session = store_->session();
        if (query(*session, "SELECT name FROM sysobjects WHERE name = 'Item'").empty())
            db::createSchema(*session);
        demo::DemoPlan plan{
            .dataFolder = "demo/data", .today = *Date::fromParts(2026, 11, 21, 15), .days = kDays, .salesPerDay = 20, .seed = seed};
        demo::fillDemoStore(*session, plan, [&](int percent) { progress.push_back(percent); });
    }
    ~DemoStore() {
        store_.reset();
        remove();
    }
    db::Store& store() { return *store_; }
    // The first cell of a select, as scripts show it.
    std::string cell(const std::string& select) { return query(*store_->session(), select).at(0).at(0).toScriptText(); }

    std::vector<int> progress;

private:
    void remove() {
        for (const char* ending : {"", "-wal", "-shm", "-lock"})
            std::filesystem::remove(file_.string() + ending);
    }
    ScratchFolder folder_;
    std::filesystem::path file_;
    std::shared_ptr<db::Store> store_;
};

const char* const kFaults[] = {
    // stock is what the ledger says
    "SELECT COUNT(*) FROM Stock s INNER JOIN (SELECT SKU, MatrixSKU, SUM(Qty) AS Moved FROM InventoryLedger GROUP BY SKU, MatrixSKU) l "
    "ON l.SKU = s.SKU AND l.MatrixSKU = s.MatrixSKU WHERE s.Quantity <> l.Moved",
    "SELECT COUNT(*) FROM InventoryLedger WHERE Cost_wt IS NULL OR Cost_wt <= 0 OR QtyAfter IS NULL",
    // receipts are paid, their taxes add up
    "SELECT COUNT(*) FROM [Transaction] t INNER JOIN (SELECT TransactionNumber, SUM(Amount) AS Paid FROM TransactionTender GROUP BY "
    "TransactionNumber) p "
    "ON p.TransactionNumber = t.TransactionNumber WHERE p.Paid <> t.Total",
    "SELECT COUNT(*) FROM [Transaction] t INNER JOIN (SELECT TransactionNumber, SUM(Amount) AS Tax FROM TransactionTax GROUP BY "
    "TransactionNumber) x "
    "ON x.TransactionNumber = t.TransactionNumber WHERE x.Tax <> t.TaxTotal",
    "SELECT COUNT(*) FROM [Transaction] WHERE Time >= '2026-11-21'",
    // customers owe what is open
    "SELECT COUNT(*) FROM Customer c INNER JOIN (SELECT CustomerID, SUM(OutstandingBalance) AS Due FROM CreditTransaction GROUP BY "
    "CustomerID) o "
    "ON o.CustomerID = c.ID WHERE o.Due <> c.Balance",
    // families have a parent, every item its stock and a retail price, serialised items a number a piece
    "SELECT COUNT(*) FROM Item i WHERE i.TypeID = 2 AND NOT EXISTS (SELECT * FROM Item p WHERE p.SKU = i.SKU AND p.MatrixSKU = i.SKU AND "
    "p.TypeID = 4)",
    "SELECT COUNT(*) FROM Item i WHERE i.SKU NOT LIKE '$%' AND NOT EXISTS (SELECT * FROM PriceMatrix p WHERE p.SKU = i.SKU AND p.MatrixSKU "
    "= i.MatrixSKU AND p.Tier = 1 "
    "AND p.Quantity = 1)",
    "SELECT COUNT(*) FROM Stock s INNER JOIN Item i ON i.SKU = s.SKU AND i.MatrixSKU = s.MatrixSKU WHERE i.SerialFlag = 1 AND s.Quantity "
    "<> "
    "(SELECT COUNT(*) FROM StockSerials n WHERE n.SKU = s.SKU AND n.MatrixSKU = s.MatrixSKU)",
    "SELECT COUNT(*) FROM PurchaseOrderItem WHERE QtyRecvd > Qty",
};

TEST(DemoStores, AreWholeShops) {
    DemoStore demo("merchantry-demo-test.store");
    EXPECT_TRUE(db::brokenInvariants(*demo.store().session()).empty());
    for (const char* fault : kFaults)
        EXPECT_EQ(demo.cell(fault), "0") << fault;
    EXPECT_EQ(demo.cell("SELECT COUNT(*) FROM Item WHERE SKU NOT LIKE '$%'"), "4324");
    EXPECT_EQ(demo.cell("SELECT COUNT(*) FROM Cashier WHERE ID = 5 AND Name = 'manager' AND Password = 'manager' AND ManagerFlag = 1"),
              "1");
    EXPECT_EQ(demo.cell("SELECT Name FROM Item WHERE SKU = '85123A'"), "White Hanging Heart T-Light Holder");
    EXPECT_EQ(demo.cell("SELECT CleanPhoneNumber FROM Customer WHERE AccountNumber = 'C10001'").size(), 10U);
    EXPECT_GT(std::stoi(demo.cell("SELECT COUNT(*) FROM [Transaction]")), 300);
    EXPECT_EQ(demo.progress.back(), 100);
    EXPECT_TRUE(std::is_sorted(demo.progress.begin(), demo.progress.end()));
}

TEST(DemoStores, AreTheSameForTheSameSeed) {
    DemoStore first("merchantry-demo-test-1.store");
    DemoStore second("merchantry-demo-test-2.store");
    DemoStore other("merchantry-demo-test-3.store", 21);
    const char* const sums[] = {"SELECT SUM(Total) FROM [Transaction]", "SELECT SUM(Quantity * FullPrice) FROM TransactionEntry",
                                "SELECT SUM(Qty * Cost_wt) FROM InventoryLedger", "SELECT MAX(Time) FROM [Transaction]"};
    for (const char* sum : sums)
        EXPECT_EQ(first.cell(sum), second.cell(sum)) << sum;
    EXPECT_NE(first.cell(sums[0]), other.cell(sums[0]));
}

TEST(LiveRegisters, PostSideBySideAndLoseNothing) {
    constexpr int kRegisters = 4;
    constexpr int kReceipts = 25;
    DemoStore demo("merchantry-live-test.store");
    const int before = std::stoi(demo.cell("SELECT COUNT(*) FROM [Transaction]"));
    std::vector<int> posted(kRegisters, 0);
    std::vector<std::thread> threads;
    for (int i = 0; i < kRegisters; ++i)
        threads.emplace_back([&, i] {
            registersim::LiveRegister till(demo.store().session(), i + 1, static_cast<std::uint64_t>(i));
            for (int n = 0; n < kReceipts; ++n)
                posted[static_cast<std::size_t>(i)] += till.postOne(*Date::fromParts(2026, 11, 21, 16)) ? 1 : 0;
        });
    for (std::thread& thread : threads)
        thread.join();
    int sum = 0;
    for (const int one : posted)
        sum += one;
    EXPECT_GT(sum, kRegisters * kReceipts / 2);
    EXPECT_EQ(std::stoi(demo.cell("SELECT COUNT(*) FROM [Transaction]")), before + sum);
    EXPECT_EQ(demo.cell(kFaults[0]), "0") << "stock and ledger moved together";
    EXPECT_TRUE(db::brokenInvariants(*demo.store().session()).empty());
}

} // namespace
