#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <string>

namespace merchantry::bench {

// A store file opened with SQLite's own interface, as a program would that knew nothing of the engine. Ends the program when a call fails.
class BareStore {
public:
    explicit BareStore(const std::filesystem::path& file);
    ~BareStore();
    BareStore(const BareStore&) = delete;
    BareStore& operator=(const BareStore&) = delete;

    // The caller finalizes it.
    sqlite3_stmt* prepare(const std::string& sql) const;

private:
    sqlite3* db_ = nullptr;
};

// Reads every cell of the row that the statement stands on, and gives something that depends on all of them.
long readRow(sqlite3_stmt* statement);

} // namespace merchantry::bench
