#include "app/db/embedded/table_changer.h"
#include "app/db/embedded/table_maker.h"

#include "app/db/messages.h"
#include "app/db/tsql/convert.h"
#include "app/db/tsql/define_table.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::Cell;
using tsql::TableDef;
using Action = tsql::AlterTableStatement::Action;

namespace {

const std::vector<tsql::Variable> kNoVariables;

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

// Whether a key, check, reference, default or computed column needs it.
bool isNeeded(const TableDef& table, const tsql::ColumnDef& column) {
    const auto inColumns = [&](const auto& one) { return usesColumn(one.columns, column.name); };
    return column.defaultValue || std::any_of(table.keys.begin(), table.keys.end(), inColumns) ||
           std::any_of(table.indexes.begin(), table.indexes.end(), inColumns) ||
           std::any_of(table.checks.begin(), table.checks.end(),
                       [&](const tsql::CheckDef& check) { return mentionsColumn(*check.expr, column.name); }) ||
           std::any_of(table.foreignKeys.begin(), table.foreignKeys.end(),
                       [&](const tsql::ForeignKeyDef& key) {
                           return std::any_of(key.columns.begin(), key.columns.end(),
                                              [&](const std::string& one) { return tsql::sameName(one, column.name); });
                       }) ||
           std::any_of(table.columns.begin(), table.columns.end(), [&](const tsql::ColumnDef& other) {
               return other.computed && !tsql::sameName(other.name, column.name) && mentionsColumn(*other.computed, column.name);
           });
}

DbError noSuchColumn(const char* clause, const std::string& column, const TableDef& table, int line) {
    return serverMessage(Message::UnknownColumnOfTable, {clause, column, table.name}, line);
}

DbError conflictWith(const char* what, const std::string& constraint) {
    return serverError(Message::ConstraintConflict,
                       std::string("The ALTER TABLE statement conflicted with the ") + what + " constraint \"" + constraint + "\".")
        .withSeverity(16, 0);
}

} // namespace

void TableChanger::alter(const tsql::AlterTableStatement& statement) {
    const std::shared_ptr<const TableDef> table = parts_.catalog.requireTable(statement.table, Message::AlterUnknownTable);
    switch (statement.action) {
    case Action::Add:
        return add(statement, *table);
    case Action::AlterColumn:
        return changeColumn(statement, *table);
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

bool TableChanger::any(const std::string& rows) {
    return parts_.connection.single("SELECT EXISTS(SELECT 1 FROM " + rows + ")").integer != 0;
}

void TableChanger::rewrite(const TableDef& table) {
    parts_.store.setSource(table.id, table.name, tsql::tableSource(table));
    parts_.schema.touch();
    const std::int64_t version = parts_.connection.single("PRAGMA schema_version").integer;
    parts_.connection.run("PRAGMA writable_schema=ON");
    {
        const Statement3 update(parts_.connection.handle(),
                                "UPDATE main.sqlite_schema SET sql=?1 WHERE type='table' AND name=?2 COLLATE NOCASE");
        const std::string sql = "CREATE TABLE " + tsql::quotedName(table.name) + "(" + parts_.builder.tableSql(table) + ") STRICT";
        sqlite3_bind_text(update.get(), 1, sql.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(update.get(), 2, table.name.c_str(), -1, SQLITE_TRANSIENT);
        parts_.connection.step(update.get());
    }
    parts_.connection.run("PRAGMA schema_version=" + std::to_string(version + 1));
    parts_.connection.run("PRAGMA writable_schema=RESET");
}

// ---- ADD

void TableChanger::add(const tsql::AlterTableStatement& statement, TableDef table) {
    const std::size_t columns = table.columns.size();
    const std::size_t checks = table.checks.size();
    const std::size_t references = table.foreignKeys.size();
    const std::size_t keys = table.keys.size();
    tsql::addToTable(
        table, statement.body, [this](const tsql::TypeName& type, bool& nullable) { return parts_.catalog.declaredType(type, &nullable); },
        false);
    typeComputed(parts_.catalog, table);
    resolveReferences(parts_.catalog, table, statement.line);
    const bool hasRows = any(table.storage);
    for (std::size_t i = columns; i < table.columns.size(); ++i) {
        if (!table.columns[i].computed)
            addColumn(table, table.columns[i], hasRows, statement.line);
    }
    if (table.isTemporary()) {
        if (table.checks.size() != checks)
            throw tsql::unsupported("a CHECK added to a temporary table", statement.line);
        parts_.temporaries.replace(std::make_shared<const TableDef>(table));
    } else {
        if (!statement.noCheck) {
            verifyChecks(table, checks);
            verifyReferences(table, references);
        }
        rewrite(table);
    }
    addKeys(table, keys);
}

void TableChanger::addColumn(const TableDef& table, const tsql::ColumnDef& column, bool hasRows, int line) {
    if (!column.nullable && !column.defaultValue && !column.identity && hasRows)
        throw serverMessage(Message::AddedColumnNeedsDefault, {column.name, table.name}, line);
    if (table.isTemporary() && !column.nullable)
        throw tsql::unsupported("a column that must not be null added to a temporary table", line);
    parts_.connection.run("ALTER TABLE " + table.storage + " ADD COLUMN " + tsql::quotedName(column.name) + " " +
                          TableBuilder::storageClass(column.type));
    if (hasRows && column.defaultValue && !column.nullable)
        fillWithDefault(table, column);
    if (hasRows && column.identity)
        fillWithNumbers(table, column);
}

void TableChanger::fillWithDefault(const TableDef& table, const tsql::ColumnDef& column) {
    const tsql::ValuePlan value = tsql::Binder(tsql::BindContext{parts_.catalog, kNoVariables}).value(*column.defaultValue, column.type);
    SqlType type;
    const Cell cell = value.isLiteral ? value.literal : tsql::converted(evaluator_.once(*column.defaultValue, type), type, column.type);
    const Statement3 fill(parts_.connection.handle(), "UPDATE " + table.storage + " SET " + tsql::quotedName(column.name) + "=?1");
    tsql::bindCell(fill.get(), 1, tsql::converted(cell, column.type, column.type, tsql::ConvertFor::Column));
    parts_.connection.step(fill.get());
}

void TableChanger::fillWithNumbers(const TableDef& table, const tsql::ColumnDef& column) {
    const Statement3 fill(parts_.connection.handle(), "UPDATE " + table.storage + " SET " + tsql::quotedName(column.name) + "=" +
                                                          std::to_string(column.seed) + "+(_rowid_-(SELECT min(_rowid_) FROM " +
                                                          table.storage + "))*" + std::to_string(column.increment));
    parts_.connection.step(fill.get());
}

void TableChanger::addKeys(const TableDef& table, std::size_t first) {
    for (std::size_t i = first; i < table.keys.size(); ++i)
        parts_.builder.addKey(table, table.keys[i].name, table.keys[i].columns, true);
}

// New constraints must hold for the rows that are there.
void TableChanger::verifyChecks(const TableDef& table, std::size_t first) {
    for (std::size_t i = first; i < table.checks.size(); ++i) {
        const std::string condition = tsql::Binder(tsql::BindContext{parts_.catalog, kNoVariables}).check(table, *table.checks[i].expr);
        if (any(table.storage + " WHERE NOT (" + condition + ")"))
            throw conflictWith("CHECK", table.checks[i].name);
    }
}

void TableChanger::verifyReferences(const TableDef& table, std::size_t first) {
    for (std::size_t i = first; i < table.foreignKeys.size(); ++i) {
        const tsql::ForeignKeyDef& key = table.foreignKeys[i];
        std::string given;
        std::string matches;
        for (std::size_t c = 0; c < key.columns.size(); ++c) {
            const std::string column = "c." + tsql::quotedName(key.columns[c]);
            given += (given.empty() ? "" : " AND ") + column + " IS NOT NULL";
            matches += (matches.empty() ? "" : " AND ") + ("p." + tsql::quotedName(key.refColumns[c]) + "=" + column);
        }
        if (any(table.storage + " AS c WHERE " + given + " AND NOT EXISTS(SELECT 1 FROM main." + tsql::quotedName(key.table) +
                " AS p WHERE " + matches + ")"))
            throw conflictWith("FOREIGN KEY", key.name);
    }
}

// ---- ALTER COLUMN

void TableChanger::changeColumn(const tsql::AlterTableStatement& statement, TableDef table) {
    const tsql::ColumnClause& clause = statement.body.columns[0];
    const int found = table.find(clause.name);
    if (found < 0)
        throw noSuchColumn("ALTER COLUMN", clause.name, table, statement.line);
    if (table.isTemporary())
        throw tsql::unsupported("ALTER COLUMN of a temporary table", statement.line);
    tsql::ColumnDef& column = table.columns[static_cast<std::size_t>(found)];
    if (column.computed || clause.computed)
        throw serverMessage(Message::CannotAlterComputed, {column.name}, statement.line);
    const SqlType from = column.type;
    bool nullable = true;
    column.type = parts_.catalog.declaredType(clause.type, &nullable);
    column.nullable = clause.nullable.value_or(nullable);
    if (!column.nullable && any(table.storage + " WHERE " + tsql::quotedName(column.name) + " IS NULL"))
        throw serverMessage(Message::NullNotAllowed, {column.name, table.name, "UPDATE"}).withSeverity(16, 2);
    if (from == column.type)
        return rewrite(table);
    const bool used =
        std::any_of(table.keys.begin(), table.keys.end(), [&](const tsql::KeyDef& key) { return usesColumn(key.columns, column.name); });
    if (used && !(from.isText() && column.type.isText()))
        throw serverMessage(Message::ColumnDependedOn, {column.name}, statement.line);
    convertCells(table, column, from);
}

// The cells change their form in a column that has none, and the old one goes.
void TableChanger::convertCells(const TableDef& table, const tsql::ColumnDef& column, const SqlType& from) {
    Connection& connection = parts_.connection;
    const std::string quoted = tsql::quotedName(column.name);
    const std::string codes = std::to_string(tsql::typeCode(from)) + "," + std::to_string(tsql::typeCode(column.type));
    Rowset cells;
    {
        const Statement3 read(connection.handle(), "SELECT _rowid_, ts_st(" + quoted + "," + codes + ") FROM " + table.storage + " WHERE " +
                                                       quoted + " IS NOT NULL");
        cells = rowsOf(connection, read.get());
    }
    if (!from.isText() || !column.type.isText())
        connection.run("UPDATE " + table.storage + " SET " + quoted + "=" + (column.nullable ? "NULL" : quoted));
    rewrite(table);
    const Statement3 write(connection.handle(), "UPDATE " + table.storage + " SET " + quoted + "=?2 WHERE _rowid_=?1");
    for (const std::vector<Cell>& cell : cells) {
        const ResetGuard guard(write.get());
        tsql::bindCell(write.get(), 1, cell[0]);
        tsql::bindCell(write.get(), 2, cell[1]);
        connection.step(write.get());
    }
}

// ---- DROP

void TableChanger::dropColumns(const tsql::AlterTableStatement& statement, TableDef table) {
    for (const std::string& name : statement.names) {
        const int found = table.find(name);
        if (found < 0)
            throw noSuchColumn("DROP COLUMN", name, table, statement.line);
        const tsql::ColumnDef& column = table.columns[static_cast<std::size_t>(found)];
        if (isNeeded(table, column))
            throw serverError(Message::ColumnDependedOn,
                              "ALTER TABLE DROP COLUMN " + name + " failed because one or more objects access this column.",
                              statement.line);
        if (!column.computed)
            parts_.connection.run("ALTER TABLE " + table.storage + " DROP COLUMN " + tsql::quotedName(column.name));
        table.columns.erase(table.columns.begin() + found);
    }
    if (table.isTemporary())
        return parts_.temporaries.replace(std::make_shared<const TableDef>(table));
    rewrite(table);
}

void TableChanger::dropConstraints(const tsql::AlterTableStatement& statement, TableDef table) {
    if (table.isTemporary())
        throw tsql::unsupported("DROP CONSTRAINT of a temporary table", statement.line);
    for (const std::string& name : statement.names) {
        const auto same = [&](const auto& one) { return tsql::sameName(one.name, name); };
        bool dropped = std::erase_if(table.checks, same) + std::erase_if(table.foreignKeys, same) > 0;
        for (tsql::ColumnDef& column : table.columns) {
            if (!column.defaultValue || !tsql::sameName(column.defaultName, name))
                continue;
            column.defaultValue.reset();
            column.defaultName.clear();
            dropped = true;
        }
        if (!dropKey(table, name, statement.line) && !dropped)
            throw serverMessage(Message::NoConstraint, {name}, statement.line);
    }
    rewrite(table);
}

bool TableChanger::dropKey(TableDef& table, const std::string& name, int line) {
    const auto key =
        std::find_if(table.keys.begin(), table.keys.end(), [&](const tsql::KeyDef& one) { return tsql::sameName(one.name, name); });
    if (key == table.keys.end())
        return false;
    for (const auto& [other, reference] : parts_.store.referencesTo(table.name)) {
        const bool refers = std::all_of(reference.refColumns.begin(), reference.refColumns.end(),
                                        [&](const std::string& one) { return usesColumn(key->columns, one); });
        if (refers && reference.refColumns.size() == key->columns.size())
            throw serverMessage(Message::ConstraintReferenced, {name, other->name, reference.name}, line);
    }
    parts_.builder.dropKey(table, key->name);
    table.keys.erase(key);
    return true;
}

// ---- triggers

void TableChanger::enableTriggers(const tsql::AlterTableStatement& statement, const TableDef& table) {
    for (const std::string& name : statement.names) {
        const bool all = tsql::sameName(name, "ALL");
        bool found = all;
        for (const StoredObject* trigger : parts_.store.childrenOf(table.id, "TR")) {
            if (!all && !tsql::sameName(trigger->name, name))
                continue;
            parts_.store.setEnabled(trigger->id, statement.enable);
            found = true;
        }
        if (!found)
            throw serverMessage(Message::UnknownTriggerOfTable, {name, table.name}, statement.line);
    }
}

} // namespace merchantry::db::embedded
