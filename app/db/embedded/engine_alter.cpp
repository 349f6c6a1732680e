#include "app/db/embedded/engine.h"

#include "app/db/nativeerrors.h"
#include "app/db/tsql/convert.h"
#include "app/db/tsql/define_table.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/parser.h"
#include "app/db/tsql/token.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::TableDef;
using Action = tsql::AlterTableStatement::Action;

namespace {

bool usesColumn(const std::vector<tsql::IndexColumn>& columns, const std::string& name) {
    return std::any_of(columns.begin(), columns.end(), [&](const tsql::IndexColumn& column) { return tsql::sameName(column.name, name); });
}

bool mentionsColumn(const tsql::Expr& expr, const std::string& name) {
    if (expr.kind == tsql::ExprKind::Column && tsql::sameName(expr.name.last(), name))
        return true;
    if (expr.input && mentionsColumn(*expr.input, name))
        return true;
    return std::any_of(expr.args.begin(), expr.args.end(), [&](const tsql::ExprPtr& argument) { return mentionsColumn(*argument, name); });
}

DbError dependsOn(const std::string& column, int line) {
    return tsql::typeError(5074, "ALTER TABLE DROP COLUMN " + column + " failed because one or more objects access this column.", line);
}

} // namespace

void Engine::alterTable(const tsql::AlterTableStatement& statement) {
    const std::shared_ptr<const TableDef> table = catalog_.requireTable(statement.table, 4902);
    switch (statement.action) {
    case Action::Add:
        return alterAdd(statement, *table);
    case Action::AlterColumn:
        return alterColumn(statement, *table);
    case Action::DropColumns:
        return dropColumns(statement, *table);
    case Action::DropConstraints:
        return dropConstraints(statement, *table);
    case Action::Trigger:
        return enableTriggers(statement, *table);
    case Action::CheckConstraint:
        throw tsql::unsupported("ALTER TABLE ... CHECK CONSTRAINT", statement.line);
    }
}

void Engine::alterAdd(const tsql::AlterTableStatement& statement, TableDef table) {
    const TableDef before = table;
    tsql::addToTable(
        table, statement.body, [this](const tsql::TypeName& type, bool& nullable) { return catalog_.declaredType(type, &nullable); },
        false);
    typeComputed(catalog_, table);
    checkForeignKeys(table, statement.line);
    const bool temporary = table.isTemporary();
    const bool hasRows = connection_.single("SELECT EXISTS(SELECT 1 FROM " + table.storage + ")").integer != 0;
    for (std::size_t i = before.columns.size(); i < table.columns.size(); ++i) {
        const tsql::ColumnDef& column = table.columns[i];
        if (column.computed)
            continue;
        if (!column.nullable && !column.defaultValue && !column.identity && hasRows)
            throw tsql::typeError(
                4901,
                "ALTER TABLE only allows columns to be added that can contain nulls, or have a DEFAULT definition specified. Column '" +
                    column.name + "' cannot be added to non-empty table '" + table.name + "' because it does not satisfy these conditions.",
                statement.line);
        if (temporary && !column.nullable)
            throw tsql::unsupported("a column that must not be null added to a temporary table", statement.line);
        connection_.run("ALTER TABLE " + table.storage + " ADD COLUMN " + tsql::quotedName(column.name) + " " +
                        TableBuilder::storageClass(column.type));
        if (column.defaultValue && !column.nullable && hasRows) {
            static const std::vector<tsql::Variable> kNone;
            const tsql::ValuePlan value = tsql::Binder(tsql::BindContext{catalog_, kNone}).value(*column.defaultValue, column.type);
            SqlType type;
            const Cell cell =
                value.isLiteral ? value.literal : tsql::converted(evaluator_.once(*column.defaultValue, type), type, column.type);
            const Statement3 fill(connection_.handle(), "UPDATE " + table.storage + " SET " + tsql::quotedName(column.name) + "=?1");
            tsql::bindCell(fill.get(), 1, tsql::converted(cell, column.type, column.type, tsql::ConvertFor::Column));
            connection_.step(fill.get());
        }
        if (column.identity && hasRows) {
            const Statement3 fill(connection_.handle(), "UPDATE " + table.storage + " SET " + tsql::quotedName(column.name) + "=" +
                                                            std::to_string(column.seed) + "+(_rowid_-(SELECT min(_rowid_) FROM " +
                                                            table.storage + "))*" + std::to_string(column.increment));
            connection_.step(fill.get());
        }
    }
    if (temporary) {
        if (table.checks.size() != before.checks.size())
            throw tsql::unsupported("a CHECK added to a temporary table", statement.line);
        temporaries_.replace(std::make_shared<const TableDef>(table));
    } else {
        const std::vector<tsql::CheckDef> checks(table.checks.begin() + static_cast<std::ptrdiff_t>(before.checks.size()),
                                                 table.checks.end());
        const std::vector<tsql::ForeignKeyDef> keys(table.foreignKeys.begin() + static_cast<std::ptrdiff_t>(before.foreignKeys.size()),
                                                    table.foreignKeys.end());
        if (!statement.noCheck)
            verifyRows(table, checks, keys);
        rewriteTable(table);
    }
    for (std::size_t i = before.keys.size(); i < table.keys.size(); ++i) {
        try {
            builder_.buildKey(table, table.keys[i].name, table.keys[i].columns, true);
        } catch (const DbError& error) {
            if (error.native() != 2627)
                throw;
            throw serverError(1505,
                              "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name 'dbo." +
                                  table.name + "' and the index name '" + table.keys[i].name + "'.")
                .withSeverity(16, 1);
        }
    }
}

// New constraints must hold for the rows that are there.
void Engine::verifyRows(const TableDef& table, const std::vector<tsql::CheckDef>& checks, const std::vector<tsql::ForeignKeyDef>& keys) {
    static const std::vector<tsql::Variable> kNone;
    for (const tsql::CheckDef& check : checks) {
        const std::string condition = tsql::Binder(tsql::BindContext{catalog_, kNone}).check(table, *check.expr);
        if (connection_.single("SELECT EXISTS(SELECT 1 FROM " + table.storage + " WHERE NOT (" + condition + "))").integer != 0)
            throw DbError(DbError::Category::Integrity, 547,
                          "The ALTER TABLE statement conflicted with the CHECK constraint \"" + check.name + "\".")
                .withSeverity(16, 0);
    }
    for (const tsql::ForeignKeyDef& key : keys) {
        std::string given;
        std::string matches;
        for (std::size_t i = 0; i < key.columns.size(); ++i) {
            given += (given.empty() ? "" : " AND ") + ("c." + tsql::quotedName(key.columns[i]) + " IS NOT NULL");
            matches +=
                (matches.empty() ? "" : " AND ") + ("p." + tsql::quotedName(key.refColumns[i]) + "=c." + tsql::quotedName(key.columns[i]));
        }
        if (connection_
                .single("SELECT EXISTS(SELECT 1 FROM " + table.storage + " AS c WHERE " + given + " AND NOT EXISTS(SELECT 1 FROM main." +
                        tsql::quotedName(key.table) + " AS p WHERE " + matches + "))")
                .integer != 0)
            throw DbError(DbError::Category::Integrity, 547,
                          "The ALTER TABLE statement conflicted with the FOREIGN KEY constraint \"" + key.name + "\".")
                .withSeverity(16, 0);
    }
}

// Puts the definition in the place of the one that the file has; the rows stay where they are. Requires: they fit.
void Engine::rewriteTable(const TableDef& table) {
    store_.setSource(table.id, table.name, tsql::tableSource(table));
    schema_.touch();
    const std::int64_t version = connection_.single("PRAGMA schema_version").integer;
    connection_.run("PRAGMA writable_schema=ON");
    {
        const Statement3 update(connection_.handle(), "UPDATE main.sqlite_schema SET sql=?1 WHERE type='table' AND name=?2 COLLATE NOCASE");
        const std::string sql = "CREATE TABLE " + tsql::quotedName(table.name) + "(" + builder_.tableSql(table) + ") STRICT";
        sqlite3_bind_text(update.get(), 1, sql.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(update.get(), 2, table.name.c_str(), -1, SQLITE_TRANSIENT);
        connection_.step(update.get());
    }
    connection_.run("PRAGMA schema_version=" + std::to_string(version + 1));
    connection_.run("PRAGMA writable_schema=RESET");
}

void Engine::alterColumn(const tsql::AlterTableStatement& statement, TableDef table) {
    const tsql::ColumnClause& clause = statement.body.columns[0];
    const int found = table.find(clause.name);
    if (found < 0)
        throw tsql::nameError(
            4924, "ALTER TABLE ALTER COLUMN failed because column '" + clause.name + "' does not exist in table '" + table.name + "'.",
            statement.line);
    if (table.isTemporary())
        throw tsql::unsupported("ALTER COLUMN of a temporary table", statement.line);
    tsql::ColumnDef& column = table.columns[static_cast<std::size_t>(found)];
    if (column.computed || clause.computed)
        throw tsql::typeError(4928, "Cannot alter column '" + column.name + "' because it is computed.", statement.line);
    const SqlType from = column.type;
    bool nullable = true;
    column.type = catalog_.declaredType(clause.type, &nullable);
    column.nullable = clause.nullable.value_or(nullable);
    const std::string quoted = tsql::quotedName(column.name);
    if (!column.nullable &&
        connection_.single("SELECT EXISTS(SELECT 1 FROM " + table.storage + " WHERE " + quoted + " IS NULL)").integer != 0)
        throw DbError(DbError::Category::Integrity, 515,
                      "Cannot insert the value NULL into column '" + column.name + "', table 'dbo." + table.name +
                          "'; column does not allow nulls. UPDATE fails.")
            .withSeverity(16, 2);
    if (from == column.type)
        return rewriteTable(table);
    const bool used =
        std::any_of(table.keys.begin(), table.keys.end(), [&](const tsql::KeyDef& key) { return usesColumn(key.columns, column.name); });
    const bool sameKind = from.isText() && column.type.isText();
    if (used && !sameKind)
        throw tsql::typeError(5074, "The object is dependent on column '" + column.name + "'.", statement.line);
    // The cells change their form in a column that has none, and the old one goes.
    const std::string codes = std::to_string(tsql::typeCode(from)) + "," + std::to_string(tsql::typeCode(column.type));
    const Statement3 read(connection_.handle(), "SELECT _rowid_, ts_st(" + quoted + "," + codes + ") FROM " + table.storage + " WHERE " +
                                                    quoted + " IS NOT NULL");
    std::vector<std::pair<std::int64_t, Cell>> cells;
    while (connection_.step(read.get()))
        cells.emplace_back(sqlite3_column_int64(read.get(), 0), tsql::columnCell(read.get(), 1));
    sqlite3_reset(read.get());
    if (!sameKind)
        connection_.run("UPDATE " + table.storage + " SET " + quoted + "=" + (column.nullable ? "NULL" : quoted));
    rewriteTable(table);
    const Statement3 write(connection_.handle(), "UPDATE " + table.storage + " SET " + quoted + "=?2 WHERE _rowid_=?1");
    for (const auto& [row, cell] : cells) {
        const ResetGuard guard(write.get());
        sqlite3_bind_int64(write.get(), 1, row);
        tsql::bindCell(write.get(), 2, cell);
        connection_.step(write.get());
    }
}

void Engine::dropColumns(const tsql::AlterTableStatement& statement, TableDef table) {
    for (const std::string& name : statement.names) {
        const int found = table.find(name);
        if (found < 0)
            throw tsql::nameError(
                4924, "ALTER TABLE DROP COLUMN failed because column '" + name + "' does not exist in table '" + table.name + "'.",
                statement.line);
        const tsql::ColumnDef column = table.columns[static_cast<std::size_t>(found)];
        if (column.defaultValue)
            throw dependsOn(name, statement.line);
        for (const tsql::KeyDef& key : table.keys) {
            if (usesColumn(key.columns, name))
                throw dependsOn(name, statement.line);
        }
        for (const tsql::IndexDef& index : table.indexes) {
            if (usesColumn(index.columns, name))
                throw dependsOn(name, statement.line);
        }
        for (const tsql::CheckDef& check : table.checks) {
            if (mentionsColumn(*check.expr, name))
                throw dependsOn(name, statement.line);
        }
        for (const tsql::ForeignKeyDef& key : table.foreignKeys) {
            if (std::any_of(key.columns.begin(), key.columns.end(), [&](const std::string& one) { return tsql::sameName(one, name); }))
                throw dependsOn(name, statement.line);
        }
        for (const tsql::ColumnDef& other : table.columns) {
            if (other.computed && mentionsColumn(*other.computed, name) && !tsql::sameName(other.name, name))
                throw dependsOn(name, statement.line);
        }
        if (!column.computed)
            connection_.run("ALTER TABLE " + table.storage + " DROP COLUMN " + tsql::quotedName(column.name));
        table.columns.erase(table.columns.begin() + found);
    }
    if (table.isTemporary()) {
        temporaries_.replace(std::make_shared<const TableDef>(table));
        return;
    }
    rewriteTable(table);
}

void Engine::dropConstraints(const tsql::AlterTableStatement& statement, TableDef table) {
    if (table.isTemporary())
        throw tsql::unsupported("DROP CONSTRAINT of a temporary table", statement.line);
    for (const std::string& name : statement.names) {
        const auto same = [&](const auto& one) { return tsql::sameName(one.name, name); };
        std::size_t dropped = std::erase_if(table.checks, same) + std::erase_if(table.foreignKeys, same);
        for (tsql::ColumnDef& column : table.columns) {
            if (!column.defaultValue || !tsql::sameName(column.defaultName, name))
                continue;
            column.defaultValue.reset();
            column.defaultName.clear();
            ++dropped;
        }
        const auto key = std::find_if(table.keys.begin(), table.keys.end(), same);
        if (key != table.keys.end()) {
            for (const auto& [other, reference] : store_.referencesTo(table.name)) {
                const bool refers = std::all_of(reference.refColumns.begin(), reference.refColumns.end(),
                                                [&](const std::string& one) { return usesColumn(key->columns, one); });
                if (refers && reference.refColumns.size() == key->columns.size())
                    throw tsql::typeError(3725,
                                          "The constraint '" + name + "' is being referenced by table '" + other->name +
                                              "', foreign key constraint '" + reference.name + "'.",
                                          statement.line);
            }
            builder_.dropKey(table, key->name);
            table.keys.erase(key);
            ++dropped;
        }
        if (dropped == 0)
            throw tsql::nameError(3728, "'" + name + "' is not a constraint.", statement.line);
    }
    rewriteTable(table);
}

void Engine::enableTriggers(const tsql::AlterTableStatement& statement, const TableDef& table) {
    for (const std::string& name : statement.names) {
        bool found = tsql::sameName(name, "ALL");
        for (const StoredObject* trigger : store_.childrenOf(table.id, "TR")) {
            if (!tsql::sameName(name, "ALL") && !tsql::sameName(trigger->name, name))
                continue;
            store_.setEnabled(trigger->id, statement.enable);
            found = true;
        }
        if (!found)
            throw tsql::nameError(4920, "ALTER TABLE failed because trigger '" + name + "' on table '" + table.name + "' does not exist.",
                                  statement.line);
    }
}

} // namespace merchantry::db::embedded
