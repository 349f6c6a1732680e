#pragma once

#include "base/platform/files.h"

#include <filesystem>

namespace merchantry::db {

// Asks the suite's other programs on this machine to finish what they are at, close the store and leave it alone, for as long as the
// object stands: a register looks for it between two receipts. The asking stands beside the store as "shop.store.closing".
class AskedToClose {
public:
    // Throws DbError Storage when another program asks already, or the folder may not be written.
    explicit AskedToClose(const std::filesystem::path& store);

private:
    platform::Notice notice_;
};

// Whether somebody asks for that.
bool closingAsked(const std::filesystem::path& store);

} // namespace merchantry::db
