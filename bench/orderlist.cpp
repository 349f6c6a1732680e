// The list of 50,000 orders with five lines each, from the call to the painted window, beside its select alone, stepped and copied on
// SQLite.

#include "bench/barestore.h"
#include "bench/benchdesk.h"
#include "bench/ratio.h"
#include "purchasing/frmPurchaseOrders.h"
#include "ui/qt/formwindow.h"

#include <limits>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kOrders = 50'000;
constexpr int kLinesEach = 5;
constexpr int kSuppliers = 200;
constexpr int kGoods = 1000;
constexpr int kRuns = 11;
constexpr int kRowsAtOnce = 500;
// Keys are 16-bit numbers: so many orders begin below zero.
constexpr int kLastKey = std::numeric_limits<std::int16_t>::max();
constexpr int kFirstKey = kLastKey - kOrders + 1;

// What the list reads for "All Open PO".
constexpr const char* kList =
    "SELECT o.PONumber, s.Supplier, o.PODate, (SELECT SUM(Qty * Cost) FROM PurchaseOrderItem WHERE POID = o.POID), "
    "(SELECT SUM((Qty - QtyRecvd - QtyCanceled) * Cost) FROM PurchaseOrderItem WHERE POID = o.POID), "
    "CASE o.Status WHEN 'O' THEN 'Open' WHEN 'P' THEN 'Partial' ELSE 'Closed' END, o.POID "
    "FROM PurchaseOrder o INNER JOIN Suppliers s ON s.SupID = o.SupID "
    "WHERE o.PONumber IS NOT NULL AND o.Status IN ('O', 'P') ORDER BY o.PONumber DESC";

void furnish(db::Session& session) {
    db::NoResult none;
    session.begin();
    for (int i = 1; i <= kSuppliers; ++i)
        session.execute("INSERT INTO Suppliers (Supplier) VALUES ('Supplier number " + std::to_string(i) + "')", none);
    session.execute("SET IDENTITY_INSERT PurchaseOrder ON", none);
    for (int first = kFirstKey; first <= kLastKey; first += kRowsAtOnce) {
        std::string orders = "INSERT INTO PurchaseOrder (POID, PONumber, SupID, Status) VALUES ";
        std::string lines = "INSERT INTO PurchaseOrderItem (POID, SKU, MatrixSKU, Qty, Cost, QtyRecvd) VALUES ";
        for (int key = first; key < first + kRowsAtOnce; ++key) {
            const std::string number = std::to_string(key);
            const int place = key - kFirstKey;
            orders += (key > first ? ", (" : "(") + number + ", " + number + ", " + std::to_string(1 + place % kSuppliers) +
                      (place % 3 == 0 ? ", 'P')" : ", 'O')");
            for (int i = 0; i < kLinesEach; ++i) {
                const std::string sku = ItemStore::sku((place * kLinesEach + i) % kGoods);
                lines += (key > first || i > 0 ? ", (" : "(") + number + ", '" + sku + "', '" + sku + "A', 12, 4.25, " +
                         (place % 3 == 0 ? "5)" : "0)");
            }
        }
        session.execute(orders, none);
        session.execute(lines, none);
    }
    session.execute("SET IDENTITY_INSERT PurchaseOrder OFF", none);
    session.commit();
}

int copied(const BareStore& store) {
    sqlite3_stmt* const statement = store.prepare(kList);
    std::vector<std::string> cells;
    int rows = 0;
    for (; sqlite3_step(statement) == SQLITE_ROW; ++rows)
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
            cells.emplace_back(text == nullptr ? "" : text);
        }
    sqlite3_finalize(statement);
    return rows;
}

} // namespace

int main(int argc, char** argv) {
    const ItemStore items(kGoods);
    furnish(*items.session());
    BenchDesk<> bench(argc, argv, items);
    auto& desk = bench.desk;
    PaintWatch& watch = bench.watch;
    const BareStore store(items.file());
    std::vector<double> shown;
    std::vector<double> bare;
    for (int i = 0; i < kRuns; ++i) {
        int rows = 0;
        bare.push_back(msOf([&] { rows = copied(store); }));
        shown.push_back(msOf([&] { showPainted<purchasing::frmPurchaseOrders>(desk, watch); }));
        auto& list = desk.form<purchasing::frmPurchaseOrders>();
        if (const int listed = dynamic_cast<ui::Grid&>(*list.find("grdPO")).dataRows(); listed != rows || rows != kOrders)
            std::printf("DIFFERENT: %d rows shown, %d read\n", listed, rows);
        desk.enter([&] { list.unload(); });
        QCoreApplication::processEvents();
    }
    print("frmPurchaseOrders on 50,000 orders until painted", median(shown), median(bare));
    return 0;
}
