#include "app/db/embedded/key_mover.h"
#include "app/db/embedded/scopes.h"
#include "app/db/messages.h"

namespace merchantry::db::embedded {

std::int64_t KeyMover::move(const tsql::ChangePlan& change) {
    const tsql::TableDef& table = *change.table;
    for (const auto& [other, key] : store_.referencesTo(table.name)) {
        if (!key.onDelete.empty())
            throw Conflicts::named(serverError(Message::DuplicateKey, table.name), table, change.kind);
    }
    capture_.forget();
    const OpenReferencesScope open(connection_);
    const Rowset rows = evaluator_.rows(change.newRows);
    try {
        replace(table, rows);
    } catch (const DbError& error) {
        throw Conflicts::named(error, table, change.kind);
    }
    if (const std::optional<DbError> broken = conflicts_.brokenReference(change))
        throw DbError(*broken);
    return static_cast<std::int64_t>(rows.size());
}

// The first cell of a row is its rowid.
void KeyMover::replace(const tsql::TableDef& table, const Rowset& rows) {
    std::string names = "_rowid_";
    std::string places = "?1";
    int count = 1;
    for (const tsql::ColumnDef& column : table.columns) {
        if (column.computed)
            continue;
        names += "," + tsql::quotedName(column.name);
        places += ",?" + std::to_string(++count);
    }
    const Statement3 remove(connection_.handle(), "DELETE FROM " + table.storage + " WHERE _rowid_ = ?1");
    const Statement3 insert(connection_.handle(), "INSERT INTO " + table.storage + "(" + names + ") VALUES (" + places + ")");
    for (const std::vector<tsql::Cell>& row : rows) {
        const ResetGuard guard(remove.get());
        tsql::bindCell(remove.get(), 1, row[0]);
        connection_.step(remove.get());
    }
    for (const std::vector<tsql::Cell>& row : rows) {
        const ResetGuard guard(insert.get());
        for (std::size_t i = 0; i < row.size(); ++i)
            tsql::bindCell(insert.get(), static_cast<int>(i) + 1, row[i]);
        connection_.step(insert.get());
    }
}

} // namespace merchantry::db::embedded
