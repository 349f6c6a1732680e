#include "app/db/embedded/conflicts.h"
#include "app/db/embedded/scopes.h"
#include "base/text.h"

#include "app/db/messages.h"
#include "app/db/tsql/token.h"

#include <algorithm>

namespace merchantry::db::embedded {
namespace {

using Kind = Conflicts::Kind;

constexpr int kDuplicateSeverity = 14;

// "The INSERT statement conflicted with the FOREIGN KEY constraint ..."
DbError conflictOf(Kind kind, const std::string& what, const std::string& constraint, const std::string& table, const std::string& column) {
    static constexpr const char* kWords[] = {"INSERT", "UPDATE", "DELETE"};
    const std::string where = column.empty() ? "" : ", column '" + column + "'";
    return serverMessage(Message::ConstraintConflict, {kWords[static_cast<int>(kind)], what, constraint, kDatabase, table, where})
        .withSeverity(16, 0);
}

// A conflict with a check as SQLite tells it: its name stands between quotes. Another one is left as it is.
DbError checkConflict(const DbError& error, const tsql::TableDef& table, Kind kind) {
    const std::vector<std::string> parts = split(error.what(), "\"");
    if (parts.size() < 2)
        return error;
    const auto found =
        std::find_if(table.checks.begin(), table.checks.end(), [&](const tsql::CheckDef& check) { return check.name == parts[1]; });
    return found == table.checks.end() ? error : conflictOf(kind, "CHECK", found->name, table.name, "");
}

// Whether SQLite's "t.a, t.b" or "index 'name'" means that key.
bool means(const std::string& what, const tsql::TableDef& table, const std::string& name, const std::vector<tsql::IndexColumn>& columns) {
    if (what.rfind("index '", 0) == 0)
        return what.find("_" + name + "'") != std::string::npos || what.find("_" + name + "$null'") != std::string::npos;
    std::vector<std::string> parts;
    for (const tsql::IndexColumn& column : columns)
        parts.push_back(table.name + "." + column.name);
    return tsql::sameName(joined(parts, ", "), what);
}

std::string onlyOne(const std::vector<std::string>& columns) {
    return columns.size() == 1 ? columns[0] : std::string();
}

} // namespace

DbError Conflicts::named(const DbError& error, const tsql::TableDef& table, Kind kind) {
    if (error.category() != DbError::Category::Integrity)
        return error;
    if (error.native() == 547)
        return checkConflict(error, table, kind);
    if (error.native() != 2627)
        return error;
    const std::string what = error.what();
    for (const tsql::KeyDef& key : table.keys) {
        if (means(what, table, key.name, key.columns))
            return serverMessage(Message::DuplicateKey, {key.primary ? "PRIMARY KEY" : "UNIQUE KEY", key.name, table.name})
                .withSeverity(kDuplicateSeverity, 1);
    }
    for (const tsql::IndexDef& index : table.indexes) {
        if (index.unique && means(what, table, index.name, index.columns))
            return serverMessage(Message::DuplicateIndexRow, {table.name, index.name}).withSeverity(kDuplicateSeverity, 1);
    }
    return serverError(Message::DuplicateKey, "Cannot insert duplicate key in object 'dbo." + table.name + "'.")
        .withSeverity(kDuplicateSeverity, 1);
}

DbError Conflicts::of(StatementPlan& plan, const DbError& error) {
    const tsql::ChangePlan& change = *plan.change;
    const DbError known = named(error, *change.table, change.kind);
    const bool isReference =
        error.category() == DbError::Category::Integrity && error.native() == 547 && std::string(known.what()) == error.what();
    if (!isReference)
        return known;
    const TrialScope trial(connection_, batch_, identities_, capture_);
    try {
        Statement3 spare;
        sqlite3_stmt* statement = evaluator_.prepared(plan, 0, change.sql, spare);
        const ResetGuard guard(statement);
        connection_.step(statement);
        return brokenReference(change).value_or(known);
    } catch (const DbError&) {
        return known;
    }
}

const tsql::ForeignKeyDef* Conflicts::brokenIn(const tsql::TableDef& table) {
    const Statement3 check(connection_.handle(), "PRAGMA foreign_key_check(" + tsql::quotedName(table.name) + ")");
    if (!connection_.step(check.get()))
        return nullptr;
    std::vector<const tsql::ForeignKeyDef*> keys; // SQLite counts them from the last one
    for (const tsql::ForeignKeyDef& key : table.foreignKeys)
        if (key.enabled)
            keys.insert(keys.begin(), &key);
    const int number = sqlite3_column_int(check.get(), 3);
    return number >= 0 && static_cast<std::size_t>(number) < keys.size() ? keys[static_cast<std::size_t>(number)] : nullptr;
}

std::optional<DbError> Conflicts::brokenReference(const tsql::ChangePlan& change) {
    if (change.kind != Kind::Delete) {
        if (const tsql::ForeignKeyDef* key = brokenIn(*change.table))
            return conflictOf(change.kind, tsql::sameName(key->table, change.table->name) ? "FOREIGN KEY SAME TABLE" : "FOREIGN KEY",
                              key->name, key->table, onlyOne(key->refColumns));
    }
    for (const auto& [other, key] : store_.referencesTo(change.table->name)) {
        if (const tsql::ForeignKeyDef* broken = brokenIn(*other))
            return conflictOf(change.kind, other->id == change.table->id ? "SAME TABLE REFERENCE" : "REFERENCE", broken->name, other->name,
                              onlyOne(broken->columns));
    }
    return std::nullopt;
}

} // namespace merchantry::db::embedded
