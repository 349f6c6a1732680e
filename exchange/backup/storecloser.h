#pragma once

#include "app/db/embedded/closing.h"

#include <filesystem>
#include <memory>
#include <string>

namespace merchantry::ui {
class Desk;
}

namespace merchantry::exchange {

// Closes what the suite's other programs on this machine hold open of a store that is to be replaced: asks them, see AskedToClose, and
// waits for them under their names. They are asked to stay away as long as the object stands.
class StoreCloser {
public:
    // Empty: of a store that nobody has to let go.
    StoreCloser(ui::Desk& desk, std::filesystem::path store) : desk_(desk), store_(std::move(store)) {}
    // Returns when nobody holds the store any more; false when the user would not wait for them.
    bool CloseOthers();

private:
    ui::Desk& desk_;
    std::filesystem::path store_;
    std::unique_ptr<db::AskedToClose> asked_;
};

} // namespace merchantry::exchange
