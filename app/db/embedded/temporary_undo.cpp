#include "app/db/embedded/temporary_undo.h"

namespace merchantry::db::embedded {

bool TemporaryUndo::exists(const tsql::TableDef& table) {
    const Statement3 find(
        connection_.handle(),
        "SELECT 1 FROM sqlite_temp_schema WHERE type = 'table' AND 'temp.\"' || replace(name, '\"', '\"\"') || '\"' = ?1");
    sqlite3_bind_text(find.get(), 1, table.storage.c_str(), -1, SQLITE_TRANSIENT);
    return connection_.step(find.get());
}

TemporaryUndo::Rows TemporaryUndo::rowsOfVariables() {
    Rows rows;
    for (const TemporaryTables::TablePtr& table : tables_.all()) {
        if (table->name.front() != '@')
            continue;
        const Statement3 select(connection_.handle(), "SELECT * FROM " + table->storage);
        rows.emplace_back(table, rowsOf(connection_, select.get()));
    }
    return rows;
}

void TemporaryUndo::restore(const Rows& rowsOfVariables) {
    restoreTables();
    for (const auto& [table, rows] : rowsOfVariables) {
        connection_.run("DROP TABLE IF EXISTS " + table->storage);
        builder_.build(*table);
        fill(*table, rows);
    }
}

void TemporaryUndo::restoreTables() {
    for (const TemporaryTables::TablePtr& table : tables_.all()) {
        if (table->name.front() != '@' && !exists(*table))
            tables_.pop(table->name);
    }
    for (const TemporaryTables::TablePtr& table : dropped_) {
        if (exists(*table))
            tables_.push(table);
    }
}

void TemporaryUndo::fill(const tsql::TableDef& table, const Rowset& rows) {
    for (const std::vector<tsql::Cell>& row : rows) {
        std::string places;
        for (std::size_t i = 0; i < row.size(); ++i)
            places += (i > 0 ? ",?" : "?") + std::to_string(i + 1);
        const Statement3 insert(connection_.handle(), "INSERT INTO " + table.storage + " VALUES (" + places + ")");
        for (std::size_t i = 0; i < row.size(); ++i)
            tsql::bindCell(insert.get(), static_cast<int>(i) + 1, row[i]);
        connection_.step(insert.get());
    }
}

} // namespace merchantry::db::embedded
