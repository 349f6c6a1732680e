#pragma once

#include "app/serverstore.h"

#include <cstdint>
#include <string>
#include <vector>

namespace merchantry::app {

struct StoreCopy {
    std::int64_t rows = 0;
    int tables = 0;
    // Tables of the source that belong to no store; they stay behind.
    std::vector<std::string> leftBehind;
};

// Copies a store of this version into a new one, between a file and a server in either direction, and compares counts and sums of every
// table at the end. Throws DbError or std::exception with a sentence; the source is only read, and nothing is left of the new store.
StoreCopy copyStoreTo(const std::string& from, const std::string& to, const StorePercent& progress);

// Counts and sums of a table, as one text: its rows, and of each column how many there are and what they add up to.
std::string sumsOf(db::Session& session, const std::string& table);

} // namespace merchantry::app
