#include "programs/merchantryctl/commands.h"

#include "app/stockproof.h"
#include "app/storefile.h"
#include "base/numbers.h"
#include "programs/storehost.h"

#include <iostream>
#include <memory>
#include <string>

namespace merchantry::programs {
namespace {

struct Options {
    std::string file;
    std::string other;
    bool demo = false;
    bool empty = false;
    bool items = false;
};

int create(const Options& options) {
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

// What the proof of stock found: faults of the ledger, and where the stock differs from it, which need not be a fault.
bool tellProof(const Options& options) {
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

int check(const Options& options) {
    const auto found = app::checkStoreFile(options.file);
    for (const std::string& line : found)
        std::cerr << line << "\n";
    const bool sound = found.empty() && tellProof(options);
    if (sound)
        std::cout << options.file << " is sound.\n";
    return sound ? 0 : 1;
}

int upgrade(const Options& options) {
    const auto copy = app::upgradeStoreFile(options.file);
    std::cout << (copy.empty() ? options.file + " is of this version already.\n"
                               : "Upgraded. The old store is kept as " + copy.string() + ".\n");
    return 0;
}

int backup(const Options& options) {
    app::backupStoreFile(options.file, options.other);
    std::cout << "Copied " << options.file << " to " << options.other << ".\n";
    return 0;
}

int restore(const Options& options) {
    app::restoreStoreFile(options.other, options.file);
    std::cout << "Restored " << options.file << " from " << options.other << ".\n";
    return 0;
}

} // namespace

void addStoreCommand(CLI::App& program, int& exitCode) {
    auto options = std::make_shared<Options>();
    CLI::App* store = program.add_subcommand("store", "Make, check, upgrade, back up and restore store files");
    store->require_subcommand(1);
    const auto action = [&](const char* name, const char* what, int (*run)(const Options&)) {
        CLI::App* command = store->add_subcommand(name, what);
        command->callback([options, run, &exitCode] { exitCode = run(*options); });
        return command;
    };
    const auto file = [&](CLI::App* command) { command->add_option("FILE", options->file, "The store file")->required(); };

    CLI::App* made = action("create", "Make a new store", create);
    made->add_flag("--demo", options->demo, "With demo goods and two years of sales");
    made->add_flag("--empty", options->empty, "With nothing but the rows that every store starts with (the default)");
    file(made);
    CLI::App* checked = action("check", "Look for damage and broken rules, and prove the stock by its ledger", check);
    checked->add_flag("--items", options->items, "List every item whose stock differs from its ledger");
    file(checked);
    file(action("upgrade", "Bring a store to this program's version, keeping a copy", upgrade));
    CLI::App* copied = action("backup", "Copy a store that may be in use", backup);
    file(copied);
    copied->add_option("TARGET", options->other, "The copy to make")->required();
    CLI::App* restored = action("restore", "Overwrite a store with a backup", restore);
    file(restored);
    restored->add_option("BACKUP", options->other, "The backup to take")->required();
}

} // namespace merchantry::programs
