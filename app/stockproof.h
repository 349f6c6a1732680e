#pragma once

#include "app/db/session.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace merchantry::app {

// One figure that its item's movements do not lead to.
struct ProofFinding {
    enum class What { Balance, WeightedCost, Stock };
    What what = What::Balance;
    std::string sku;
    std::string matrixSku;
    std::int64_t ledgerId = 0; // the row; 0 for the stock itself
    std::string found;         // "nothing" where a figure is missing
    std::string expected;

    // "Balance", "Weighted cost", "Stock".
    std::string title() const;
    // In one sentence, the item and the row named.
    std::string sentence() const;
};

// What the proof of stock found. The ledger's findings are faults: each is the first wrong row of its item. A stock that differs from its
// ledger need not be one: some screens write the stock as they show it, and a sale between an adjustment's reading and writing is lost.
struct Proof {
    std::int64_t rows = 0;  // of the ledger
    std::int64_t items = 0; // that moved
    std::vector<ProofFinding> ledger;
    std::vector<ProofFinding> stock;
    bool stopped = false; // before the end; the findings are those so far
};

// Takes part of the work as done, in percent; false stops it.
using ProofProgress = std::function<bool(int percent)>;

// Rebuilds quantity and weighted cost of every item from its movements, in their order of posting and in exact arithmetic (see the trigger
// InventoryLedger_Insert), and compares. It reads only. Registers may post meanwhile: an item that looks wrong is looked at again then.
// Throws DbError.
Proof proveStock(db::Session& session, const ProofProgress& progress);

// The same for a store file. Throws DbError with a sentence when it is no store of this version.
Proof proveStockFile(const std::filesystem::path& file, const ProofProgress& progress);

} // namespace merchantry::app
