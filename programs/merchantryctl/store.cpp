#include "programs/merchantryctl/commands.h"

#include "app/stockproof.h"
#include "app/storefile.h"
#include "base/numbers.h"
#include "base/platform/platform.h"
#include "exchange/backup/nightly.h"
#include "exchange/backup/restoring.h"
#include "programs/storehost.h"

#include <filesystem>
#include <iostream>
#include <string>

namespace merchantry::programs {

int createStore(const StoreOptions& options) {
    int shown = -1;
    storeMaker()(options.file, options.demo, [&](int percent) {
        if (percent / 10 != shown && options.demo)
            std::cerr << "\r" << percent << " %" << std::flush;
        shown = percent / 10;
    });
    if (options.demo)
        std::cerr << "\r";
    std::cout << "Made " << options.file << ". Its manager logs in as manager with the password manager.\n";
    return 0;
}

namespace {

// What the proof of stock found: faults of the ledger, and where the stock differs from it, which need not be a fault.
bool tellProof(const StoreOptions& options) {
    const app::Proof proof = app::proveStockFile(options.file, [](int) { return true; });
    for (const app::ProofFinding& finding : proof.ledger)
        std::cerr << finding.sentence() << "\n";
    std::cout << "Proof of stock: " << withThousands(proof.rows) << " movements of " << withThousands(proof.items) << " items, "
              << withThousands(static_cast<std::int64_t>(proof.ledger.size())) << " with a wrong row.\n";
    if (proof.stock.empty())
        return proof.ledger.empty();
    std::cout << "In " << withThousands(static_cast<std::int64_t>(proof.stock.size())) << (proof.stock.size() == 1 ? " item" : " items")
              << " the stock differs from the ledger" << (options.items ? ":\n" : "; --items lists them.\n");
    for (const app::ProofFinding& finding : proof.stock)
        if (options.items)
            std::cout << "  " << finding.sentence() << "\n";
    return proof.ledger.empty();
}

} // namespace

int checkStore(const StoreOptions& options) {
    const auto found = app::checkStoreFile(options.file);
    for (const std::string& line : found)
        std::cerr << line << "\n";
    const bool sound = found.empty() && tellProof(options);
    if (sound)
        std::cout << options.file << " is sound.\n";
    return sound ? 0 : 1;
}

int upgradeStore(const StoreOptions& options) {
    const auto copy = app::upgradeStoreFile(options.file);
    std::cout << (copy.empty() ? options.file + " is of this version already.\n"
                               : "Upgraded. The old store is kept as " + copy.string() + ".\n");
    return 0;
}

namespace {

// For the night: one line of what came of it, on standard output or, when it is not good, on standard error.
int backUpToFolder(const StoreOptions& options) {
    const auto outcome = exchange::backUpNightly({.store = std::filesystem::absolute(options.file),
                                                  .folder = std::filesystem::absolute(options.folder),
                                                  .keep = options.keep,
                                                  .prove = options.prove,
                                                  .now = platform::localTime()});
    (outcome.good ? std::cout : std::cerr) << outcome.sentence() << "\n";
    if (!outcome.complaint.empty())
        std::cerr << outcome.complaint << "\n";
    return outcome.good ? 0 : 1;
}

} // namespace

int backupStore(const StoreOptions& options) {
    if (!options.folder.empty())
        return backUpToFolder(options);
    if (options.other.empty())
        throw UsageError{"store backup wants the copy to make, or --to with a folder."};
    app::backupStoreFile(options.file, options.other);
    std::cout << "Copied " << options.file << " to " << options.other << ".\n";
    return 0;
}

int restoreStore(const StoreOptions& options) {
    const auto replaced = exchange::restoreFrom(options.other, options.file, platform::localTime());
    std::cout << "Restored " << options.file << " from " << options.other << ".";
    std::cout << (replaced.empty() ? "" : " The store that was there is kept as " + replaced.string() + ".") << "\n";
    return 0;
}

} // namespace merchantry::programs
