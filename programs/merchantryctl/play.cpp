#include "programs/merchantryctl/commands.h"

#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"
#include "programs/storehost.h"
#include "ui/play/player.h"

#include <iostream>
#include <memory>

namespace merchantry::programs {

void addPlayCommand(CLI::App& program, int& exitCode) {
    struct Options {
        std::string store;
        std::vector<std::string> scripts;
        bool fresh = false;
        bool statements = false;
    };
    auto options = std::make_shared<Options>();
    CLI::App* play = program.add_subcommand("play", "Run screen scripts on a store, without a window");
    play->add_option("--store", options->store, "The store file")->required();
    play->add_flag("--fresh", options->fresh, "Each script on a copy of its own; the store stays as it is");
    play->add_flag("--statements", options->statements, "Show the statements that the screens send");
    play->add_option("SCRIPT", options->scripts, "Scripts, in this order")->required();
    play->callback([options, &exitCode] {
        // Says at once, and clearly, that there is none or that it cannot be used.
        db::refuseNewerSchema(*db::Store::open(options->store)->session());
        ui::play::PlayOptions plays;
        plays.scripts.assign(options->scripts.begin(), options->scripts.end());
        plays.statements = options->statements;
        exitCode = ui::play::runPlays(
            plays, [&](const std::filesystem::path&) { return std::make_unique<StoreHost>(options->store, options->fresh); }, std::cout);
    });
}

} // namespace merchantry::programs
