#pragma once

#include "app/db/tsql/catalog.h"
#include "app/db/tsql/cell.h"

#include <sqlite3.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace merchantry::db::embedded {

// Rows in memory.
using Rowset = std::vector<std::vector<tsql::Cell>>;

class Connection;
// The rows that a prepared statement has left.
Rowset rowsOf(Connection& connection, sqlite3_stmt* statement);

// Rows in memory that statements read like tables: the inserted and deleted rows of a trigger, the catalogue views. Each name is
// a virtual table of the connection that exists by itself. A transaction leaves them alone.
class RowsetRegistry {
public:
    // Requires: the registry outlives the connection.
    void attach(sqlite3* db);

    // Makes the table of that name unless it is there; its columns are those of the shape.
    void define(const std::string& name, const tsql::TableDef& shape);
    // What a reader of the name sees from now on. Requires: defined.
    void set(const std::string& name, std::shared_ptr<const Rowset> rows);
    std::shared_ptr<const Rowset> get(const std::string& name) const;
    // Rows that are made when a reader asks.
    void setMaker(const std::string& name, std::function<std::shared_ptr<const Rowset>()> maker);

    // For the module.
    struct Entry {
        std::string declaration;
        std::shared_ptr<const Rowset> rows;
        std::function<std::shared_ptr<const Rowset>()> maker;
    };
    const Entry* find(const std::string& name) const;

private:
    sqlite3* db_ = nullptr;
    std::map<std::string, Entry> entries_;
};

} // namespace merchantry::db::embedded
