// The proof of stock over 1,000,000 movements of 100,000 items, beside a bare scan of the same cells in the same order.

#include "app/stockproof.h"
#include "bench/barestore.h"
#include "bench/itemstore.h"
#include "bench/ratio.h"

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 5;
constexpr int kMovesEach = 10;

} // namespace

int main() {
    const ItemStore items;
    items.addMovements(kMovesEach);
    const auto session = items.session();
    const BareStore bare(items.file());
    sqlite3_stmt* const scan =
        bare.prepare("SELECT SKU, MatrixSKU, LedgerID, Qty, Cost_ea, Cost_wt, QtyAfter, ReversesID FROM InventoryLedger ORDER BY LedgerID");
    std::int64_t proved = 0;
    std::int64_t scanned = 0;
    long sum = 0;
    ratio(
        "proof of stock over 1,000,000 movements", kRuns,
        [&] {
            const app::Proof proof = app::proveStock(*session, [](int) { return true; });
            proved = proof.ledger.empty() && proof.stock.empty() ? proof.rows : -1;
        },
        [&] {
            for (scanned = 0; sqlite3_step(scan) == SQLITE_ROW; ++scanned)
                sum += readRow(scan);
            sqlite3_reset(scan);
        });
    sqlite3_finalize(scan);
    if (proved != scanned || sum == 0)
        std::printf("DIFFERENT: %lld proved, %lld scanned\n", static_cast<long long>(proved), static_cast<long long>(scanned));
    return 0;
}
