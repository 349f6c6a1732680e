#include "programs/merchantryctl/commands.h"

#include "app/db/schema/schema.h"
#include "app/serverstore.h"
#include "app/stockproof.h"
#include "app/storecopy.h"
#include "app/storefile.h"
#include "base/counted.h"
#include "base/guard.h"
#include "base/numbers.h"
#include "base/platform/platform.h"
#include "exchange/backup/nightly.h"
#include "exchange/backup/restoring.h"
#include "programs/storehost.h"

#include <filesystem>
#include <iostream>
#include <random>
#include <string>

namespace merchantry::programs {

namespace {

// Ten steps of progress on standard error, in one line.
class Progress {
public:
    ~Progress() {
        if (shown_ >= 0)
            std::cerr << "\r";
    }
    void operator()(int percent) {
        if (percent / 10 != shown_)
            std::cerr << "\r" << percent << " %" << std::flush;
        shown_ = percent / 10;
    }

private:
    int shown_ = -1;
};

void needOnePlace(const StoreOptions& options) {
    if (options.file.empty() == options.server.empty())
        throw UsageError{"FILE: a store file is wanted, or --server"};
}

std::string placeOf(const StoreOptions& options) {
    return options.server.empty() ? options.file : options.server;
}

// The demo goods are made in a file and go up as they are.
void createDemoOnServer(const StoreOptions& options) {
    const auto file = std::filesystem::temp_directory_path() / ("merchantry-demo-" + std::to_string(std::random_device()()) + ".store");
    const AtEnd gone([&] {
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
    });
    {
        Progress progress;
        storeMaker()(file, true, [&](int percent) { progress(percent / 2); });
    }
    Progress progress;
    app::copyStoreTo(file.string(), options.server, [&](int percent) { progress(50 + percent / 2); });
}

} // namespace

int createStore(const StoreOptions& options) {
    needOnePlace(options);
    if (!options.server.empty() && options.demo) {
        createDemoOnServer(options);
    } else if (!options.server.empty()) {
        Progress progress;
        app::createServerStore(options.server, [&](int percent) { progress(percent); });
    } else {
        Progress progress;
        storeMaker()(options.file, options.demo, [&](int percent) {
            if (options.demo)
                progress(percent);
        });
    }
    std::cout << "Made " << app::shownPlace(placeOf(options)) << ". Its manager logs in as manager with the password manager.\n";
    return 0;
}

int copyStore(const StoreOptions& options) {
    app::StoreCopy done;
    {
        Progress progress;
        done = app::copyStoreTo(options.file, options.other, [&](int percent) { progress(percent); });
    }
    for (const std::string& table : done.leftBehind)
        std::cerr << "The table " << table << " is no part of a store and was not copied.\n";
    std::cout << "Copied " << withThousands(done.rows) << " rows of " << done.tables << " tables to " << app::shownPlace(options.other)
              << "; counts and sums are equal.\n";
    return 0;
}

namespace {

// What the proof of stock found: faults of the ledger, and where the stock differs from it, which need not be a fault.
bool tellProof(const StoreOptions& options) {
    const auto session = app::openStore(placeOf(options));
    db::checkSchemaVersion(*session);
    const app::Proof proof = app::proveStock(*session, [](int) { return true; });
    for (const app::ProofFinding& finding : proof.ledger)
        std::cerr << finding.sentence() << "\n";
    std::cout << "Proof of stock: " << withThousands(proof.rows) << " movements of " << withThousands(proof.items) << " items, "
              << withThousands(static_cast<std::int64_t>(proof.ledger.size())) << " with a wrong row.\n";
    if (proof.stock.empty())
        return proof.ledger.empty();
    std::cout << "In " << counted(static_cast<std::int64_t>(proof.stock.size()), "item") << " the stock differs from the ledger"
              << (options.items ? ":\n" : "; --items lists them.\n");
    for (const app::ProofFinding& finding : proof.stock)
        if (options.items)
            std::cout << "  " << finding.sentence() << "\n";
    return proof.ledger.empty();
}

} // namespace

int checkStore(const StoreOptions& options) {
    needOnePlace(options);
    const auto found = options.server.empty() ? app::checkStoreFile(options.file) : app::checkServerStore(options.server);
    for (const std::string& line : found)
        std::cerr << line << "\n";
    // What differs in a store on a server may be its server's own way; the figures are looked at all the same.
    const bool proved = (found.empty() || !options.server.empty()) && tellProof(options);
    const bool sound = found.empty() && proved;
    if (const std::string renewal = found.empty() ? app::renewalInWords(placeOf(options)) : ""; !renewal.empty())
        std::cout << renewal << "\n";
    if (sound)
        std::cout << app::shownPlace(placeOf(options)) << " is sound.\n";
    return sound ? 0 : 1;
}

namespace {

// A store of this version may still have views, procedures, triggers and first rows as another program of this version had them.
int renewOf(const std::string& place) {
    const std::size_t renewed = app::renewStore(place);
    std::cout << app::shownPlace(place) << " is of this version already"
              << (renewed == 0 ? "." : "; " + std::to_string(renewed) + " of its procedures and first rows were renewed.") << "\n";
    return 0;
}

} // namespace

int upgradeStore(const StoreOptions& options) {
    needOnePlace(options);
    if (!options.server.empty()) {
        if (!app::upgradeServerStore(options.server))
            return renewOf(options.server);
        std::cout << "Upgraded " << app::shownPlace(options.server) << ".\n";
        return 0;
    }
    const auto copy = app::upgradeStoreFile(options.file);
    if (copy.empty())
        return renewOf(options.file);
    std::cout << "Upgraded. The old store is kept as " << copy.string() << ".\n";
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
