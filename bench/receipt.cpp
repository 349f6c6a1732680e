// A receipt of 1,000 lines, posted as the receiving screen does, beside the same statements prepared once on SQLite: one durable
// transaction on either side.

#include "app/modMain.h"
#include "base/division.h"
#include "bench/barestore.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"
#include "purchasing/receiveline.h"

#include <cstring>
#include <ctime>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kItemsInStore = 20'000;
constexpr int kLines = 1000;
constexpr int kRuns = 21;
constexpr int kStride = 19; // between the items of the order
constexpr std::int64_t kCost = 25'000;
constexpr std::int64_t kShare = 1'200;

std::string codeOf(int line) {
    return ItemStore::sku(line * kStride);
}

// Two orders of the same 1,000 items: number 1 is received by the program, number 2 by bare statements.
void order(db::Session& session) {
    db::NoResult none;
    session.execute("INSERT INTO Suppliers (Supplier) VALUES ('Acme') INSERT INTO PurchaseOrder (SupID, PONumber) VALUES (1, 1), (1, 2)",
                    none);
    std::string batch;
    for (int line = 0; line < kLines; ++line)
        for (const char* poid : {"1", "2"})
            batch += "INSERT INTO PurchaseOrderItem (POID, SKU, MatrixSKU, Qty, Cost, PartNo) VALUES (" + std::string(poid) + ", '" +
                     codeOf(line) + "', '" + codeOf(line) + "A', 30000, 2.5, 'P-" + codeOf(line) + "') ";
    session.begin();
    session.execute(batch, none);
    session.commit();
}

// The clock as a store keeps it: local milliseconds since 1900.
std::int64_t localNow() {
    constexpr std::int64_t k1970 = 25'567LL * 86'400'000;
    std::timespec now{};
    std::timespec_get(&now, TIME_UTC);
    std::tm local{};
    localtime_r(&now.tv_sec, &local);
    return k1970 + (now.tv_sec + local.tm_gmtoff) * 1000 + now.tv_nsec / 1'000'000;
}

// One statement, prepared once: bound, stepped to its end, reset.
class Prepared {
public:
    Prepared(const BareStore& store, const char* sql) : statement_(store.prepare(sql)) {}
    ~Prepared() { sqlite3_finalize(statement_); }
    Prepared(const Prepared&) = delete;
    Prepared& operator=(const Prepared&) = delete;

    Prepared& operator<<(std::int64_t number) {
        sqlite3_bind_int64(statement_, ++bound_, number);
        return *this;
    }
    Prepared& operator<<(const std::string& text) {
        sqlite3_bind_text(statement_, ++bound_, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
        return *this;
    }
    // The first row's cells; 0 where there is none.
    std::array<std::int64_t, 2> run() {
        std::array<std::int64_t, 2> cells{};
        int code = sqlite3_step(statement_);
        for (int i = 0; code == SQLITE_ROW && i < std::min(2, sqlite3_column_count(statement_)); ++i)
            cells[static_cast<std::size_t>(i)] = sqlite3_column_int64(statement_, i);
        while (code == SQLITE_ROW)
            code = sqlite3_step(statement_);
        if (code != SQLITE_DONE)
            std::printf("DIFFERENT: %s\n", sqlite3_errmsg(sqlite3_db_handle(statement_)));
        sqlite3_reset(statement_);
        bound_ = 0;
        return cells;
    }

private:
    sqlite3_stmt* statement_;
    int bound_ = 0;
};

// What sp_ReceiveItem, the ledger's trigger and sp_ChangePOStatus execute, without their language.
class BareReceipt {
public:
    explicit BareReceipt(const BareStore& store)
        : begin_(store, "BEGIN IMMEDIATE"), commit_(store, "COMMIT"),
          order_(store, "SELECT o.POID FROM PurchaseOrder o INNER JOIN PurchaseOrderItem i ON i.POID = o.POID WHERE o.PONumber = ?1 AND "
                        "i.SKU = ?2 AND i.MatrixSKU = ?3"),
          newest_(store, "SELECT ifnull(max(ReceiptNumber), 0) + 1 FROM PurchaseOrderReceipt"),
          lastReceipt_(store, "SELECT max(ReceiptLineID) FROM PurchaseOrderReceipt"), keepReceipt_(store, kKeep), keepLedger_(store, kKeep),
          lastLedger_(store, "SELECT max(LedgerID) FROM InventoryLedger"),
          receipt_(
              store,
              "INSERT INTO PurchaseOrderReceipt (ReceiptLineID, ReceiptNumber, POID, SKU, MatrixSKU, Quantity, Cost, OtherCost, CostID, "
              "PostDate) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, NULL, ?9)"),
          received_(store,
                    "UPDATE PurchaseOrderItem SET QtyRecvd = QtyRecvd + ?4, PartNo = ?5 WHERE POID = ?1 AND SKU = ?2 AND MatrixSKU = ?3"),
          stock_(store, "UPDATE Stock SET Quantity = Quantity + ?3 WHERE SKU = ?1 AND MatrixSKU = ?2"),
          ledger_(
              store,
              "INSERT INTO InventoryLedger (LedgerID, SKU, MatrixSKU, Type, Qty, Cost_ea, Cost_wt, QtyAfter, PostDate, ReversesID, Kind) "
              "VALUES (?1, ?2, ?3, 'Receipt', ?4, ?5, NULL, NULL, ?6, NULL, 'Receipt')"),
          before_(
              store,
              "SELECT QtyAfter, Cost_wt FROM InventoryLedger WHERE SKU = ?1 AND MatrixSKU = ?2 AND LedgerID < ?3 AND QtyAfter IS NOT NULL "
              "ORDER BY LedgerID DESC LIMIT 1"),
          latest_(store, "SELECT max(PostDate) FROM InventoryLedger WHERE SKU = ?1 AND MatrixSKU = ?2 AND LedgerID < ?3"),
          after_(store, "UPDATE InventoryLedger SET QtyAfter = ?2, Cost_wt = ?3 WHERE LedgerID = ?1"),
          status_(store,
                  "UPDATE PurchaseOrder SET Status = CASE WHEN EXISTS (SELECT * FROM PurchaseOrderItem i WHERE i.POID = PurchaseOrder.POID "
                  "AND i.Qty > i.QtyRecvd + i.QtyCanceled) THEN 'P' ELSE 'C' END WHERE PONumber = ?1 AND Status <> 'C'") {}

    void post(std::int64_t PONumber, const std::vector<purchasing::ReceiveLine>& lines) {
        begin_.run();
        const std::int64_t now = localNow();
        std::int64_t number = -1;
        std::int64_t receiptId = lastReceipt_.run()[0];
        std::int64_t ledgerId = lastLedger_.run()[0];
        for (const purchasing::ReceiveLine& line : lines) {
            const std::int64_t poid = (order_ << PONumber << line.SKU << line.MatrixSKU).run()[0];
            if (number == -1)
                number = newest_.run()[0];
            (receipt_ << ++receiptId << number << poid << line.SKU << line.MatrixSKU << line.RecvQty << line.Cost.units()
                      << line.OtherCostShare.units() << now)
                .run();
            (received_ << poid << line.SKU << line.MatrixSKU << line.RecvQty << line.PartNo).run();
            (stock_ << line.SKU << line.MatrixSKU << line.RecvQty).run();
            const std::int64_t each =
                dividedAwayFromZero(static_cast<__int128>(line.Cost.units()) * line.RecvQty + line.OtherCostShare.units(), line.RecvQty);
            (ledger_ << ++ledgerId << line.SKU << line.MatrixSKU << line.RecvQty << each << now).run();
            const auto [onHand, average] = (before_ << line.SKU << line.MatrixSKU << ledgerId).run();
            if ((latest_ << line.SKU << line.MatrixSKU << ledgerId).run()[0] >= now)
                fromTheFuture_ = true; // a date that the ledger's trigger would move
            const std::int64_t weighted = dividedAwayFromZero(
                static_cast<__int128>(onHand) * average + static_cast<__int128>(line.RecvQty) * each, onHand + line.RecvQty);
            (after_ << ledgerId << onHand + line.RecvQty << weighted).run();
        }
        (status_ << PONumber).run();
        (keepReceipt_ << std::string("PurchaseOrderReceipt") << receiptId).run();
        (keepLedger_ << std::string("InventoryLedger") << ledgerId).run();
        commit_.run();
        if (fromTheFuture_)
            std::printf("DIFFERENT: a movement of the future\n");
    }

private:
    static constexpr const char* kKeep =
        "INSERT INTO ts_identity(id, last) SELECT id, ?2 FROM ts_object WHERE name = ?1 ON CONFLICT(id) DO UPDATE SET "
        "last = excluded.last";
    Prepared begin_, commit_, order_, newest_, lastReceipt_, keepReceipt_, keepLedger_, lastLedger_, receipt_, received_, stock_, ledger_,
        before_, latest_, after_, status_;
    bool fromTheFuture_ = false;
};

std::vector<purchasing::ReceiveLine> received() {
    std::vector<purchasing::ReceiveLine> lines(kLines);
    for (int i = 0; i < kLines; ++i) {
        purchasing::ReceiveLine& line = lines[static_cast<std::size_t>(i)];
        line.SKU = codeOf(i);
        line.MatrixSKU = line.SKU + "A";
        line.PartNo = "P-" + line.SKU;
        line.Qty = line.OpenQty = 30'000;
        line.RecvQty = static_cast<std::int16_t>(1 + i % 9);
        line.Cost = Currency::fromUnits(kCost);
        line.OtherCostShare = Currency::fromUnits(kShare);
    }
    return lines;
}

// Both sides received the same of either order, and the ledger follows.
void requireSame(db::Session& session) {
    class OneCell : public db::ResultSink {
    public:
        void beginSet(const std::vector<db::Column>&) override {}
        void row(const db::RowView& row) override { value = row.number(0); }
        std::int64_t value = -1;
    } different;
    session.execute(
        "SELECT COUNT(*) FROM PurchaseOrderItem a INNER JOIN PurchaseOrderItem b ON b.POID = 2 AND b.SKU = a.SKU AND b.MatrixSKU = "
        "a.MatrixSKU WHERE a.POID = 1 AND a.QtyRecvd <> b.QtyRecvd",
        different);
    if (different.value != 0)
        std::printf("DIFFERENT: %ld lines\n", static_cast<long>(different.value));
}

} // namespace

int main() {
    const ItemStore items(kItemsInStore);
    items.addMovements(3);
    order(*items.session());
    app::modMain().provider = std::make_unique<db::Provider>();
    app::modMain().Conn = std::make_shared<db::Connection>(*app::modMain().provider);
    app::modMain().Conn->Open("Data Source=" + items.file().string());
    {
        const BareStore store(items.file());
        for (const char* pragma : {"PRAGMA synchronous=FULL", "PRAGMA foreign_keys=ON"})
            Prepared(store, pragma).run();
        BareReceipt bare(store);
        const auto lines = received();
        ratio(
            "a receipt of 1,000 lines", kRuns, [&] { purchasing::postReceipt(1, lines, {}, ""); }, [&] { bare.post(2, lines); });
    }
    requireSame(*items.session());
    app::resetModMain();
    return 0;
}
