#include "app/db/tsql/catalog.h"

#include "app/db/tsql/token.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::tsql {
namespace {

std::string bracketed(std::string_view name) {
    return "[" + replaced(name, "]", "]]") + "]";
}

std::string bracketedList(const std::vector<std::string>& names) {
    std::vector<std::string> all;
    std::transform(names.begin(), names.end(), std::back_inserter(all), [](const std::string& name) { return bracketed(name); });
    return joined(all, ", ");
}

std::string indexColumnList(const std::vector<IndexColumn>& columns) {
    std::vector<std::string> all;
    for (const IndexColumn& column : columns)
        all.push_back(bracketed(column.name) + (column.descending ? " DESC" : ""));
    return joined(all, ", ");
}

std::string columnSource(const ColumnDef& column) {
    if (column.computed)
        return bracketed(column.name) + " AS " + column.computed->source;
    std::string text = bracketed(column.name) + " " + column.type.toText();
    if (column.identity)
        text += " IDENTITY(" + std::to_string(column.seed) + "," + std::to_string(column.increment) + ")";
    text += column.nullable ? " NULL" : " NOT NULL";
    if (column.defaultValue)
        text += " CONSTRAINT " + bracketed(column.defaultName) + " DEFAULT " + column.defaultValue->source;
    return text;
}

std::string foreignKeySource(const ForeignKeyDef& key) {
    std::string text = "CONSTRAINT " + bracketed(key.name) + " FOREIGN KEY (" + bracketedList(key.columns) + ") REFERENCES " +
                       bracketed(key.table) + " (" + bracketedList(key.refColumns) + ")";
    if (!key.onDelete.empty())
        text += " ON DELETE " + key.onDelete;
    if (!key.onUpdate.empty())
        text += " ON UPDATE " + key.onUpdate;
    return text;
}

} // namespace

int TableDef::find(std::string_view column) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (sameName(columns[i].name, column))
            return static_cast<int>(i);
    }
    return -1;
}

int TableDef::identityColumn() const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].identity)
            return static_cast<int>(i);
    }
    return -1;
}

const KeyDef* TableDef::primaryKey() const {
    const auto found = std::find_if(keys.begin(), keys.end(), [](const KeyDef& key) { return key.primary; });
    return found == keys.end() ? nullptr : &*found;
}

std::string quotedName(std::string_view name) {
    return "\"" + replaced(name, "\"", "\"\"") + "\"";
}

std::string quotedText(std::string_view text) {
    return "'" + replaced(text, "'", "''") + "'";
}

std::string tableSource(const TableDef& table) {
    std::vector<std::string> elements;
    for (const ColumnDef& column : table.columns)
        elements.push_back(columnSource(column));
    for (const KeyDef& key : table.keys) {
        elements.push_back("CONSTRAINT " + bracketed(key.name) + (key.primary ? " PRIMARY KEY " : " UNIQUE ") +
                           (key.clustered ? "CLUSTERED (" : "NONCLUSTERED (") + indexColumnList(key.columns) + ")");
    }
    for (const CheckDef& check : table.checks)
        elements.push_back("CONSTRAINT " + bracketed(check.name) + " CHECK (" + check.expr->source + ")");
    for (const ForeignKeyDef& key : table.foreignKeys)
        elements.push_back(foreignKeySource(key));
    return "CREATE TABLE " + bracketed(table.name) + " (" + joined(elements, ", ") + ")";
}

} // namespace merchantry::db::tsql
