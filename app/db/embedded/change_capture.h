#pragma once

#include "app/db/embedded/connection.h"
#include "app/db/embedded/rowset.h"
#include "base/guard.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace merchantry::db::embedded {

using Tables = std::vector<std::shared_ptr<const tsql::TableDef>>;

// The rows of a table that a statement changed: as they are now, and as they were.
struct ChangedRows {
    std::shared_ptr<const tsql::TableDef> table;
    std::shared_ptr<Rowset> inserted = std::make_shared<Rowset>();
    std::shared_ptr<Rowset> deleted = std::make_shared<Rowset>();
};
using ChangedTables = std::map<std::string, ChangedRows>; // by the table's name in lower case

// Gathers the rows that change, for triggers and OUTPUT. SQLite tells of each row as long as someone wants to see it.
class ChangeCapture {
public:
    explicit ChangeCapture(Connection& connection) : connection_(connection) {}
    ChangeCapture(const ChangeCapture&) = delete;
    ChangeCapture& operator=(const ChangeCapture&) = delete;

    // The rows of those tables that change while that runs.
    ChangedTables during(const Tables& tables, const std::function<void()>& change);
    // What changed so far did not.
    void forget();

    // While this lives nothing is seen.
    using Seen = ChangedTables;
    [[nodiscard]] Restore<Seen> pause() { return Restore<Seen>(seen_, Seen()); }

private:
    static void hook(void* capture, sqlite3*, int operation, const char* schema, const char* name, sqlite3_int64, sqlite3_int64);
    void take(int operation, const std::string& name);
    ChangedRows* find(const std::string& name);
    template <class Get> std::vector<tsql::Cell> row(const tsql::TableDef& table, Get get);

    Connection& connection_;
    Seen seen_;
    bool hooked_ = false;
};

} // namespace merchantry::db::embedded
