#pragma once

#include <cstdint>
#include <map>
#include <mutex>

namespace merchantry::db::embedded {

// What the sessions of one store file share inside this process.
struct SharedState {
    std::mutex mutex;
    // The last numbers given by identity columns, also those of statements that failed or were rolled back.
    std::map<std::int64_t, std::int64_t> lastIdentity;
};

} // namespace merchantry::db::embedded
