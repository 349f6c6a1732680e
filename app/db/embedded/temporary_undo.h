#pragma once

#include "app/db/embedded/connection.h"
#include "app/db/embedded/rowset.h"
#include "app/db/embedded/table_builder.h"
#include "app/db/embedded/temporary_tables.h"

#include <memory>
#include <utility>
#include <vector>

namespace merchantry::db::embedded {

// What a rollback does to a session's temporary tables: those made in the transaction are gone with it, those dropped are there again, and
// table variables keep their rows.
class TemporaryUndo {
public:
    TemporaryUndo(Connection& connection, TemporaryTables& tables, TableBuilder& builder)
        : connection_(connection), tables_(tables), builder_(builder) {}

    // A temporary table is dropped in the transaction.
    void dropped(TemporaryTables::TablePtr table) { dropped_.push_back(std::move(table)); }
    // The transaction has ended.
    void forget() { dropped_.clear(); }

    // Before and after a rollback.
    using Rows = std::vector<std::pair<TemporaryTables::TablePtr, Rowset>>;
    Rows rowsOfVariables();
    void restore(const Rows& rowsOfVariables);

private:
    bool exists(const tsql::TableDef& table);
    void restoreTables();
    void fill(const tsql::TableDef& table, const Rowset& rows);

    Connection& connection_;
    TemporaryTables& tables_;
    TableBuilder& builder_;
    std::vector<TemporaryTables::TablePtr> dropped_;
};

} // namespace merchantry::db::embedded
