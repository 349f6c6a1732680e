// A chain's busy hour on one server: eight registers sell while two managers order, receive, change prices and post to accounts.

#include "app/db/ado/recordset.h"
#include "app/db/servererrors.h"
#include "app/db/work.h"
#include "app/stockproof.h"
#include "catalog/pricechange.h"
#include "purchasing/orderrun.h"
#include "tests/server/onaserver.h"
#include "tools/registersim/liveregister.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>

namespace merchantry {
namespace {

constexpr int kRegisters = 8;
constexpr double kSeconds = 4;

constexpr const char* kShop =
    "INSERT INTO Suppliers (Supplier) VALUES ('Acme') EXEC bsp_NewItem 'CUP', 'CUP' EXEC bsp_NewItem 'LAMP', 'LAMP' EXEC bsp_NewItem "
    "'MUG', 'MUG' UPDATE PriceMatrix SET Price = 10 UPDATE Stock SET Quantity = 20000 WHERE SKU IN ('CUP', 'LAMP', 'MUG') "
    "INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Kind, Qty, Cost_ea) SELECT SKU, MatrixSKU, 'Opening Stock', 'Opening', Quantity, 2 "
    "FROM Stock WHERE Quantity > 0 "
    "INSERT INTO Customer (FirstName, LastName, ChargeAccount) VALUES ('Ann', 'Ash', 1), ('Bob', 'Birch', 1) EXEC sp_AddBatch 1, 5";

class CrowdOnAServer : public db::OnAServer {
protected:
    static void SetUpTestSuite() { setUpStore(kShop); }
    // A connection as a screen has it.
    db::ConnectionPtr connect() {
        const db::server::Address address = host->address();
        auto connection = std::make_shared<db::Connection>(provider);
        connection->Open(address.connectionText());
        return connection;
    }
    // Orders two items and receives them, each time.
    void orderAndReceive() {
        const auto connection = connect();
        std::vector<purchasing::OrderLine> lines(2);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            lines[i].SKU = lines[i].MatrixSKU = i == 0 ? "LAMP" : "CUP";
            lines[i].ReorderQty = 3;
            lines[i].Cost = Currency::fromUnits(21'000);
            lines[i].SupID = 1;
        }
        while (!closed) {
            pressed([&] { ordered += purchasing::writeOrders(connection, lines, [](int) { return true; }).orders; });
            pressed([&] {
                db::Work work(connection->session());
                db::NoResult none;
                connection->session().execute("DECLARE @po smallint SELECT @po = MAX(PONumber) FROM PurchaseOrder WHERE Status = 'O' "
                                              "EXEC sp_ReceiveItem 1, @po, 'LAMP', 'LAMP', 3, 2.1, 0, 0, -1, '' "
                                              "EXEC sp_ReceiveItem 1, @po, 'CUP', 'CUP', 3, 2.1, 0, 0, -1, '' "
                                              "EXEC sp_ChangePOStatus @po, 'C'",
                                              none);
                work.commit();
            });
        }
    }
    void changePricesAndPost() {
        const auto connection = connect();
        while (!closed) {
            db::Recordset price;
            price.Open("SELECT SKU, MatrixSKU, Tier, Quantity, Price FROM PriceMatrix WHERE Tier = 1 ORDER BY SKU", connection);
            std::vector<catalog::PriceStep> steps;
            for (; !price.Eof(); price.MoveNext())
                steps.push_back({price["SKU"].text(), price["MatrixSKU"].text(), 1, price["Quantity"].Value().toNumber(),
                                 price["Price"].Value().toCurrency(), price["Price"].Value().toCurrency() + Currency::fromUnits(100)});
            pressed([&] { catalog::changePrices(connection, "up", steps, [](int) { return true; }); });
            ++changed;
            pressed([&] { connection->Execute("sp_PostAdjustment 1, 1, 1, 5, 12.34, 1, 'Other'"); });
            ++adjusted;
        }
    }
    // A screen that could not save because others were in the way stays, and its user presses again.
    static void pressed(const std::function<void()>& save) {
        while (true)
            try {
                return save();
            } catch (const db::TryAgain&) {
                std::this_thread::yield();
            }
    }
    // A manager at work in a thread of his own; what stopped him is told.
    static std::thread manager(std::function<void()> work) {
        return std::thread([work = std::move(work)] {
            try {
                work();
            } catch (const std::exception& error) {
                ADD_FAILURE() << error.what();
            }
        });
    }

    db::Provider provider;
    std::atomic<bool> closed = false;
    int ordered = 0;
    int changed = 0;
    int adjusted = 0;
};

TEST_F(CrowdOnAServer, OfEightRegistersAndTwoManagersKeepsTheBooksRight) {
    std::thread buyer = manager([this] { orderAndReceive(); });
    std::thread pricer = manager([this] { changePricesAndPost(); });
    const auto figures =
        registersim::runRegisters([&] { return host->session(); }, {.registers = kRegisters, .perSecond = 0, .seconds = kSeconds});
    closed = true;
    buyer.join();
    pricer.join();
    EXPECT_EQ(figures.failed, 0) << (figures.errors.empty() ? "" : figures.errors.front());
    ASSERT_GT(figures.posted, kRegisters);
    ASSERT_GT(std::min({ordered, changed, adjusted}), 0);

    EXPECT_EQ(rowsOf("SELECT COUNT(*), COUNT(DISTINCT TransactionNumber), COUNT(DISTINCT RegisterID) FROM [Transaction]"),
              std::to_string(figures.posted) + "|" + std::to_string(figures.posted) + "|" + std::to_string(kRegisters));
    EXPECT_EQ(rowsOf("SELECT COUNT(*), COUNT(DISTINCT PONumber), MAX(PONumber), COUNT(CASE Status WHEN 'C' THEN 1 END) FROM PurchaseOrder"),
              std::to_string(ordered) + "|" + std::to_string(ordered) + "|" + std::to_string(ordered) + "|" + std::to_string(ordered));
    EXPECT_EQ(rowsOf("SELECT COUNT(*), COUNT(DISTINCT TransactionNumber) FROM CreditTransaction WHERE CreditCode = 'Other'"),
              std::to_string(adjusted) + "|" + std::to_string(adjusted));
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM PriceChange"), std::to_string(changed));
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM [Transaction] t WHERE t.Total <> (SELECT SUM(p.Amount) FROM TransactionTender p WHERE "
                     "p.TransactionNumber = t.TransactionNumber)"),
              "0");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Customer c WHERE c.Balance <> (SELECT COALESCE(SUM(t.OutstandingBalance), 0) FROM "
                     "CreditTransaction t WHERE t.CustomerID = c.ID)"),
              "0");
    const app::Proof proof = app::proveStock(*session, [](int) { return true; });
    for (const auto& list : {proof.ledger, proof.stock})
        for (const app::ProofFinding& finding : list)
            ADD_FAILURE() << finding.sentence();
    for (const std::string& broken : db::brokenInvariants(*session))
        ADD_FAILURE() << broken;
}

} // namespace
} // namespace merchantry
