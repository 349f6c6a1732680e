#include "app/db/embedded/table_builder.h"

#include "app/db/messages.h"
#include "app/db/tsql/binder.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/literal.h"
#include "app/db/tsql/token.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::TableDef;

namespace {

const std::vector<tsql::Variable> kNoVariables;

std::string quotedList(const std::vector<std::string>& names) {
    std::vector<std::string> all;
    std::transform(names.begin(), names.end(), std::back_inserter(all), [](const std::string& name) { return tsql::quotedName(name); });
    return joined(all, ",");
}

// Whether a row that loses its reference gets the column's default.
bool isSetToDefault(const TableDef& table, const tsql::ColumnDef& column) {
    return std::any_of(table.foreignKeys.begin(), table.foreignKeys.end(), [&](const tsql::ForeignKeyDef& key) {
        const bool sets = key.onDelete == "SET DEFAULT" || key.onUpdate == "SET DEFAULT";
        return sets && std::any_of(key.columns.begin(), key.columns.end(),
                                   [&](const std::string& one) { return tsql::sameName(one, column.name); });
    });
}

} // namespace

const char* TableBuilder::storageClass(const SqlType& type) {
    if (type.isText() || type.kind == TypeKind::UniqueIdentifier)
        return "TEXT COLLATE ts";
    if (type.isBinary() || (type.kind == TypeKind::Decimal && type.precision > 18))
        return "BLOB";
    return type.isFloat() ? "REAL" : "INTEGER";
}

std::string TableBuilder::columnSql(const TableDef& table, const tsql::ColumnDef& column) {
    const std::string text = tsql::quotedName(column.name) + " " + storageClass(column.type) + (column.nullable ? "" : " NOT NULL");
    if (!column.defaultValue || !isSetToDefault(table, column))
        return text;
    const tsql::ValuePlan value = tsql::Binder(tsql::BindContext{catalog_, kNoVariables}).value(*column.defaultValue, column.type);
    if (!value.isLiteral)
        throw tsql::unsupported("ON DELETE SET DEFAULT with a default that is no constant");
    return text + " DEFAULT (" + tsql::literalSql(value.literal) + ")";
}

std::string TableBuilder::referenceSql(const tsql::ForeignKeyDef& key) {
    std::string text = "CONSTRAINT " + tsql::quotedName(key.name) + " FOREIGN KEY (" + quotedList(key.columns) + ") REFERENCES " +
                       tsql::quotedName(key.table) + "(" + quotedList(key.refColumns) + ")";
    if (!key.onDelete.empty())
        text += " ON DELETE " + key.onDelete;
    if (!key.onUpdate.empty())
        text += " ON UPDATE " + key.onUpdate;
    return text;
}

std::string TableBuilder::tableSql(const TableDef& table) {
    std::vector<std::string> elements;
    for (const tsql::ColumnDef& column : table.columns) {
        if (!column.computed)
            elements.push_back(columnSql(table, column));
    }
    for (const tsql::CheckDef& check : table.checks) {
        if (check.enabled)
            elements.push_back("CONSTRAINT " + tsql::quotedName(check.name) + " CHECK (" +
                               tsql::Binder(tsql::BindContext{catalog_, kNoVariables}).check(table, *check.expr) + ")");
    }
    for (const tsql::ForeignKeyDef& key : table.foreignKeys) {
        if (key.enabled)
            elements.push_back(referenceSql(key));
    }
    return joined(elements, ",");
}

void TableBuilder::build(const TableDef& table) {
    connection_.run("CREATE TABLE " + table.storage + "(" + tableSql(table) + ") STRICT");
    for (const tsql::KeyDef& key : table.keys)
        buildKey(table, key.name, key.columns, true);
    for (const tsql::IndexDef& index : table.indexes)
        buildKey(table, index.name, index.columns, index.unique);
}

std::string TableBuilder::indexName(const TableDef& table, const std::string& name) {
    return std::string(table.isTemporary() ? "temp." : "main.") + tsql::quotedName("ix" + std::to_string(table.id) + "_" + name);
}

void TableBuilder::buildKey(const TableDef& table, const std::string& name, const std::vector<tsql::IndexColumn>& columns, bool unique) {
    std::string list;
    std::string nulls;
    std::string condition;
    for (const tsql::IndexColumn& column : columns) {
        const tsql::ColumnDef& definition = table.columns[static_cast<std::size_t>(table.find(column.name))];
        if (definition.computed) {
            if (unique)
                throw tsql::unsupported("a unique index of a computed column");
            return; // such an index changes no answer
        }
        const std::string quoted = tsql::quotedName(definition.name);
        list += (list.empty() ? "" : ",") + quoted + (column.descending ? " DESC" : "");
        const bool text = definition.type.isText() || definition.type.kind == TypeKind::UniqueIdentifier;
        nulls += (nulls.empty() ? "" : ",") + (quoted + " IS NULL,ifnull(" + quoted + ",0)" + (text ? " COLLATE ts" : ""));
        if (definition.nullable)
            condition += (condition.empty() ? "" : " OR ") + quoted + " IS NULL";
    }
    const std::string bare = table.storage.substr(table.storage.find('.') + 1);
    connection_.run(std::string("CREATE ") + (unique ? "UNIQUE " : "") + "INDEX " + indexName(table, name) + " ON " + bare + "(" + list +
                    ")");
    if (unique && !condition.empty())
        connection_.run("CREATE UNIQUE INDEX " + indexName(table, name + "$null") + " ON " + bare + "(" + nulls + ") WHERE " + condition);
}

void TableBuilder::addKey(const TableDef& table, const std::string& name, const std::vector<tsql::IndexColumn>& columns, bool unique) {
    try {
        buildKey(table, name, columns, unique);
    } catch (const DbError& error) {
        if (error.native() != 2627)
            throw;
        throw serverMessage(Message::DuplicateForIndex, {table.name, name}).withSeverity(16, 1);
    }
}

void TableBuilder::dropKey(const TableDef& table, const std::string& name) {
    connection_.run("DROP INDEX IF EXISTS " + indexName(table, name));
    connection_.run("DROP INDEX IF EXISTS " + indexName(table, name + "$null"));
}

} // namespace merchantry::db::embedded
