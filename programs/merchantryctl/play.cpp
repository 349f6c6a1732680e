#include "programs/merchantryctl/commands.h"

#include "app/db/schema/schema.h"
#include "app/serverstore.h"
#include "programs/storehost.h"
#include "ui/play/player.h"

#include <iostream>
#include <memory>

namespace merchantry::programs {

int runPlay(const PlayOptions& options) {
    // Says at once, and clearly, that there is none or that it cannot be used.
    db::refuseNewerSchema(*app::openStore(options.store));
    ui::play::PlayOptions plays;
    plays.scripts.assign(options.scripts.begin(), options.scripts.end());
    plays.statements = options.statements;
    return ui::play::runPlays(
        plays, [&](const std::filesystem::path&) { return std::make_unique<StoreHost>(options.store, options.fresh); }, std::cout);
}

} // namespace merchantry::programs
