#include "app/db/embedded/engine.h"
#include "app/db/embedded/write_scope.h"

#include "app/db/tsql/define_table.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/literal.h"
#include "app/db/tsql/token.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::StatementKind;
using tsql::TableDef;

namespace {

const char* storageClass(const SqlType& type) {
    if (type.isText() || type.kind == TypeKind::UniqueIdentifier)
        return "TEXT COLLATE ts";
    if (type.isBinary() || (type.kind == TypeKind::Decimal && type.precision > 18))
        return "BLOB";
    return type.isFloat() ? "REAL" : "INTEGER";
}

std::string quotedList(const std::vector<std::string>& names) {
    std::vector<std::string> all;
    std::transform(names.begin(), names.end(), std::back_inserter(all), [](const std::string& name) { return tsql::quotedName(name); });
    return joined(all, ",");
}

bool sameColumns(std::vector<std::string> wanted, const std::vector<tsql::IndexColumn>& columns) {
    if (wanted.size() != columns.size())
        return false;
    return std::all_of(wanted.begin(), wanted.end(), [&](const std::string& name) {
        return std::any_of(columns.begin(), columns.end(),
                           [&](const tsql::IndexColumn& column) { return tsql::sameName(column.name, name); });
    });
}

tsql::ObjectName plainName(const std::string& name) {
    tsql::ObjectName object;
    object.parts.push_back(name);
    return object;
}

} // namespace

void Engine::runDefinition(const tsql::Statement& statement) {
    rowCount_ = 0;
    const auto isTemporary = [](const tsql::ObjectName& name) { return !name.empty() && name.last().front() == '#'; };
    bool temporary = false;
    switch (statement.kind) {
    case StatementKind::CreateTable:
        temporary = isTemporary(static_cast<const tsql::CreateTableStatement&>(statement).table);
        break;
    case StatementKind::CreateIndex:
        temporary = isTemporary(static_cast<const tsql::CreateIndexStatement&>(statement).table);
        break;
    case StatementKind::AlterTable:
        temporary = isTemporary(static_cast<const tsql::AlterTableStatement&>(statement).table);
        break;
    case StatementKind::Drop: {
        const auto& drop = static_cast<const tsql::DropStatement&>(statement);
        temporary = isTemporary(drop.onTable.empty() ? drop.names[0] : drop.onTable);
        break;
    }
    default:
        break;
    }
    WriteScope scope(*this, temporary);
    try {
        define(statement);
    } catch (...) {
        if (!temporary && schemaTouched_) { // what was read in between is not so
            fileVersion_ = -1;
            ++version_;
        }
        throw;
    }
    if (!temporary)
        schemaChanged();
    scope.finish();
}

// Counts the schema's number up and reads the catalogue as it is now.
void Engine::schemaChanged() {
    const std::int64_t next = scalar("PRAGMA user_version") + 1;
    connection_.run("PRAGMA user_version=" + std::to_string(next));
    fileVersion_ = next;
    schemaTouched_ = true;
    catalog_.load();
    modules_.clear();
    ++version_;
}

void Engine::define(const tsql::Statement& statement) {
    switch (statement.kind) {
    case StatementKind::CreateTable: {
        const auto& create = static_cast<const tsql::CreateTableStatement&>(statement);
        return createTable(create.table, create.body);
    }
    case StatementKind::AlterTable:
        return alterTable(static_cast<const tsql::AlterTableStatement&>(statement));
    case StatementKind::CreateIndex:
        return createIndex(static_cast<const tsql::CreateIndexStatement&>(statement));
    case StatementKind::CreateView:
        return createView(static_cast<const tsql::CreateViewStatement&>(statement));
    case StatementKind::CreateProcedure: {
        const auto& create = static_cast<const tsql::CreateProcedureStatement&>(statement);
        return createModule(create.name, create.alter, "P", create.text, 0, create.line);
    }
    case StatementKind::CreateFunction:
        return createFunction(static_cast<const tsql::CreateFunctionStatement&>(statement));
    case StatementKind::CreateTrigger:
        return createTrigger(static_cast<const tsql::CreateTriggerStatement&>(statement));
    case StatementKind::CreateType:
        return createType(static_cast<const tsql::CreateTypeStatement&>(statement));
    case StatementKind::Drop:
        return drop(static_cast<const tsql::DropStatement&>(statement));
    default:
        throw tsql::unsupported("this statement", statement.line);
    }
}

void Engine::requireFreeName(const std::string& name, int line) {
    if (catalog_.find(name))
        throw tsql::nameError(2714, "There is already an object named '" + name + "' in the database.", line);
}

std::shared_ptr<const TableDef> Engine::requireTable(const tsql::ObjectName& name, int number) {
    const std::shared_ptr<const TableDef> table = catalog_.table(name);
    if (table && !table->readOnly)
        return table;
    throw tsql::nameError(
        number, "Cannot find the object \"" + name.toText() + "\" because it does not exist or you do not have permissions.", name.line);
}

// ---- tables

void Engine::createTable(const tsql::ObjectName& name, const tsql::TableBody& body) {
    const bool temporary = name.last().front() == '#';
    if (temporary ? catalog_.table(name) != nullptr && ownsTemporary(name.last()) : catalog_.find(name.last()) != nullptr)
        throw tsql::nameError(2714, "There is already an object named '" + name.last() + "' in the database.", name.line);
    const std::int64_t id = temporary ? -(++temporaryNumber_) : catalog_.nextId();
    TableDef table =
        tsql::defineTable(name, body, id, [this](const tsql::TypeName& type, bool& nullable) { return typeOf(type, nullable); });
    createTableOf(std::move(table), temporary);
}

// A module's temporary table may have the name of one of its caller's.
bool Engine::ownsTemporary(const std::string& name) const {
    const bool top = !frame_->caller;
    const auto& own = frame_->temporaries;
    return top || std::any_of(own.begin(), own.end(), [&](const std::string& one) { return tsql::sameName(one, name); });
}

void Engine::createTableOf(TableDef table, bool temporary) {
    if (table.id == 0)
        table.id = temporary ? -(++temporaryNumber_) : catalog_.nextId();
    if (temporary) {
        table.foreignKeys.clear();
        table.storage = "temp." + tsql::quotedName(table.name + "_" + std::to_string(-table.id));
        catalog_.typeComputed(table);
        buildTable(table);
        const auto made = std::make_shared<const TableDef>(table);
        catalog_.pushTemporary(made);
        ++temporaryVersion_;
        if (frame_->caller || table.name.front() == '@')
            frame_->temporaries.push_back(table.name);
        return;
    }
    table.storage = "main." + tsql::quotedName(table.name);
    checkForeignKeys(table, 0);
    catalog_.typeComputed(table);
    {
        const std::lock_guard lock(shared_->mutex);
        shared_->lastIdentity.erase(table.id);
    }
    connection_.run("DELETE FROM ts_identity WHERE id = " + std::to_string(table.id));
    catalog_.add({table.id, table.name, "U", 0, tsql::tableSource(table), true, nowMs()});
    buildTable(table);
    schemaTouched_ = true;
    if (!catalog_.find(table.name)) { // SELECT INTO goes on with it at once
        catalog_.load();
        ++version_;
    }
}

std::int64_t Engine::nowMs() const {
    return (clock_ ? clock_->now() : systemClock_.now()).ms();
}

std::string Engine::tableSql(const TableDef& table) {
    std::vector<std::string> elements;
    static const std::vector<tsql::Variable> kNone;
    for (const tsql::ColumnDef& column : table.columns) {
        if (column.computed)
            continue;
        std::string text = tsql::quotedName(column.name) + " " + storageClass(column.type) + (column.nullable ? "" : " NOT NULL");
        const bool needsDefault =
            column.defaultValue && std::any_of(table.foreignKeys.begin(), table.foreignKeys.end(), [&](const tsql::ForeignKeyDef& key) {
                const bool sets = key.onDelete == "SET DEFAULT" || key.onUpdate == "SET DEFAULT";
                return sets && std::any_of(key.columns.begin(), key.columns.end(),
                                           [&](const std::string& one) { return tsql::sameName(one, column.name); });
            });
        if (needsDefault) {
            const tsql::ValuePlan value = tsql::Binder(tsql::BindContext{catalog_, kNone}).value(*column.defaultValue, column.type);
            if (!value.isLiteral)
                throw tsql::unsupported("ON DELETE SET DEFAULT with a default that is no constant");
            text += " DEFAULT (" + tsql::literalSql(value.literal) + ")";
        }
        elements.push_back(std::move(text));
    }
    for (const tsql::CheckDef& check : table.checks) {
        if (check.enabled)
            elements.push_back("CONSTRAINT " + tsql::quotedName(check.name) + " CHECK (" +
                               tsql::Binder(tsql::BindContext{catalog_, kNone}).check(table, *check.expr) + ")");
    }
    for (const tsql::ForeignKeyDef& key : table.foreignKeys) {
        if (!key.enabled)
            continue;
        std::string text = "CONSTRAINT " + tsql::quotedName(key.name) + " FOREIGN KEY (" + quotedList(key.columns) + ") REFERENCES " +
                           tsql::quotedName(key.table) + "(" + quotedList(key.refColumns) + ")";
        if (!key.onDelete.empty())
            text += " ON DELETE " + key.onDelete;
        if (!key.onUpdate.empty())
            text += " ON UPDATE " + key.onUpdate;
        elements.push_back(std::move(text));
    }
    return joined(elements, ",");
}

void Engine::buildTable(const TableDef& table) {
    connection_.run("CREATE TABLE " + table.storage + "(" + tableSql(table) + ") STRICT");
    buildIndexes(table);
}

void Engine::buildIndexes(const TableDef& table) {
    for (const tsql::KeyDef& key : table.keys)
        buildKey(table, key.name, key.columns, true);
    for (const tsql::IndexDef& index : table.indexes)
        buildKey(table, index.name, index.columns, index.unique);
}

std::string Engine::indexName(const TableDef& table, const std::string& name) const {
    return std::string(table.isTemporary() ? "temp." : "main.") + tsql::quotedName("ix" + std::to_string(table.id) + "_" + name);
}

// An index of SQLite. Where a unique one has columns that may be null a second one keeps the nulls unique as well.
void Engine::buildKey(const TableDef& table, const std::string& name, const std::vector<tsql::IndexColumn>& columns, bool unique) {
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

void Engine::checkForeignKeys(TableDef& table, int line) {
    for (tsql::ForeignKeyDef& key : table.foreignKeys) {
        const bool own = tsql::sameName(key.table, table.name);
        const std::shared_ptr<const TableDef> other = own ? std::make_shared<const TableDef>(table) : catalog_.table(plainName(key.table));
        if (!other)
            throw tsql::nameError(1767, "Foreign key '" + key.name + "' references invalid table '" + key.table + "'.", line);
        key.table = other->name;
        if (key.refColumns.empty()) {
            const tsql::KeyDef* primary = other->primaryKey();
            if (!primary)
                throw tsql::typeError(1773,
                                      "Foreign key '" + key.name + "' has implicit reference to object '" + key.table +
                                          "' which does not have a primary key defined on it.",
                                      line);
            for (const tsql::IndexColumn& column : primary->columns)
                key.refColumns.push_back(column.name);
        }
        for (const std::string& column : key.refColumns) {
            if (other->find(column) < 0)
                throw tsql::nameError(1770,
                                      "Foreign key '" + key.name + "' references invalid column '" + column + "' in referenced table '" +
                                          key.table + "'.",
                                      line);
        }
        const bool isKey = std::any_of(other->keys.begin(), other->keys.end(),
                                       [&](const tsql::KeyDef& one) { return sameColumns(key.refColumns, one.columns); }) ||
                           std::any_of(other->indexes.begin(), other->indexes.end(),
                                       [&](const tsql::IndexDef& one) { return one.unique && sameColumns(key.refColumns, one.columns); });
        if (!isKey || key.refColumns.size() != key.columns.size())
            throw tsql::typeError(1776,
                                  "There are no primary or candidate keys in the referenced table '" + key.table +
                                      "' that match the referencing column list in the foreign key '" + key.name + "'.",
                                  line);
    }
}

void Engine::runDeclareTable(const tsql::DeclareTableStatement& statement) {
    tsql::ObjectName name = plainName(statement.name);
    name.line = statement.line;
    const auto& own = frame_->temporaries;
    if (std::find(own.begin(), own.end(), statement.name) != own.end()) // in a loop the table of the last round stays
        return;
    TableDef table = tsql::defineTable(name, statement.body, -(++temporaryNumber_),
                                       [this](const tsql::TypeName& type, bool& nullable) { return typeOf(type, nullable); });
    endRead();
    createTableOf(std::move(table), true);
}

// ---- indexes

void Engine::createIndex(const tsql::CreateIndexStatement& statement) {
    const std::shared_ptr<const TableDef> table = requireTable(statement.table, 1088);
    const auto taken = [&](const auto& all) {
        return std::any_of(all.begin(), all.end(), [&](const auto& one) { return tsql::sameName(one.name, statement.name); });
    };
    if (taken(table->indexes) || taken(table->keys))
        throw tsql::nameError(1913,
                              "The operation failed because an index or statistics with name '" + statement.name +
                                  "' already exists on table '" + table->name + "'.",
                              statement.line);
    for (const tsql::IndexColumn& column : statement.columns) {
        if (table->find(column.name) < 0)
            throw tsql::nameError(1911, "Column name '" + column.name + "' does not exist in the target table or view.", statement.line);
    }
    TableDef changed = *table;
    changed.indexes.push_back({statement.name, statement.unique, statement.clustered, statement.columns});
    try {
        buildKey(changed, statement.name, statement.columns, statement.unique);
    } catch (const DbError& error) {
        if (error.native() != 2627)
            throw;
        throw DbError(DbError::Category::Integrity, 1505,
                      "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name 'dbo." +
                          table->name + "' and the index name '" + statement.name + "'.")
            .withSeverity(16, 1);
    }
    if (table->isTemporary()) {
        catalog_.replaceTemporary(std::make_shared<const TableDef>(changed));
        ++temporaryVersion_;
        return;
    }
    std::vector<std::string> columns;
    for (const tsql::IndexColumn& column : statement.columns)
        columns.push_back("[" + replaced(column.name, "]", "]]") + "]" + (column.descending ? " DESC" : ""));
    const std::string source = std::string("CREATE ") + (statement.unique ? "UNIQUE " : "") + (statement.clustered ? "CLUSTERED " : "") +
                               "INDEX [" + replaced(statement.name, "]", "]]") + "] ON [" + replaced(table->name, "]", "]]") + "] (" +
                               joined(columns, ", ") + ")";
    catalog_.add({catalog_.nextId(), statement.name, "IX", table->id, source, true, nowMs()});
}

void Engine::dropIndex(const tsql::DropStatement& statement) {
    const std::shared_ptr<const TableDef> table = requireTable(statement.onTable, 3701);
    const std::string& name = statement.names[0].last();
    const auto same = [&](const auto& one) { return tsql::sameName(one.name, name); };
    if (std::any_of(table->keys.begin(), table->keys.end(), same))
        throw tsql::typeError(3723,
                              "An explicit DROP INDEX is not allowed on index '" + name + "'. It is being used for constraint enforcement.",
                              statement.line);
    const auto found = std::find_if(table->indexes.begin(), table->indexes.end(), same);
    if (found == table->indexes.end()) {
        if (statement.ifExists)
            return;
        throw tsql::nameError(
            3701, "Cannot drop the index '" + table->name + "." + name + "', because it does not exist or you do not have permission.",
            statement.line);
    }
    connection_.run("DROP INDEX IF EXISTS " + indexName(*table, found->name));
    connection_.run("DROP INDEX IF EXISTS " + indexName(*table, found->name + "$null"));
    if (table->isTemporary()) {
        TableDef changed = *table;
        std::erase_if(changed.indexes, same);
        catalog_.replaceTemporary(std::make_shared<const TableDef>(changed));
        ++temporaryVersion_;
        return;
    }
    for (const StoredObject* index : catalog_.childrenOf(table->id, "IX")) {
        if (tsql::sameName(index->name, name))
            return catalog_.remove(index->id);
    }
}

// ---- views and modules

void Engine::createView(const tsql::CreateViewStatement& statement) {
    tsql::ViewDef view;
    view.name = statement.name.last();
    view.statement = {std::shared_ptr<const tsql::CreateViewStatement>(), &statement};
    static const std::vector<tsql::Variable> kNone;
    if (!statement.alter)
        requireFreeName(view.name, statement.line);
    try {
        tsql::Binder(tsql::BindContext{catalog_, kNone}).viewColumns(view);
    } catch (const DbError& error) {
        if (error.native() == 8155)
            throw tsql::syntaxError(4511, "Create View or Function failed because no column name was specified for a column.",
                                    statement.line);
        throw;
    }
    createModule(statement.name, statement.alter, "V", statement.text, 0, statement.line);
}

void Engine::createModule(const tsql::ObjectName& name, bool alter, const char* kind, const std::string& text, std::int64_t parent,
                          int line) {
    const StoredObject* known = catalog_.find(name.last());
    if (!alter) {
        if (known)
            throw tsql::nameError(2714, "There is already an object named '" + name.last() + "' in the database.", line);
        catalog_.add({catalog_.nextId(), name.last(), kind, parent, text, true, nowMs()});
        return;
    }
    if (!known || known->kind != kind)
        throw tsql::nameError(208, "Invalid object name '" + name.toText() + "'.", line);
    catalog_.setSource(known->id, known->name, text);
}

void Engine::createFunction(const tsql::CreateFunctionStatement& statement) {
    createModule(statement.name, statement.alter, statement.table ? "IF" : "FN", statement.text, 0, statement.line);
}

void Engine::createTrigger(const tsql::CreateTriggerStatement& statement) {
    const StoredObject* table = catalog_.find(statement.table.last());
    if (!table || (table->kind != "U" && table->kind != "V") || (table->kind == "V" && !statement.insteadOf))
        throw tsql::nameError(8197, "The object '" + statement.table.toText() + "' does not exist or is invalid for this operation.",
                              statement.line);
    if (statement.insteadOf && !statement.alter) {
        const bool taken = (statement.onInsert && catalog_.hasInsteadTrigger(table->id, "insert")) ||
                           (statement.onUpdate && catalog_.hasInsteadTrigger(table->id, "update")) ||
                           (statement.onDelete && catalog_.hasInsteadTrigger(table->id, "delete"));
        if (taken)
            throw tsql::typeError(2111,
                                  "Cannot create trigger '" + statement.name.last() + "' on '" + table->name +
                                      "' because an INSTEAD OF trigger already exists on this object.",
                                  statement.line);
    }
    createModule(statement.name, statement.alter, "TR", statement.text, table->id, statement.line);
}

void Engine::createType(const tsql::CreateTypeStatement& statement) {
    SqlType type;
    bool nullable = true;
    if (catalog_.userType(statement.name.last(), type, nullable))
        throw tsql::nameError(219, "The type '" + statement.name.last() + "' already exists, or you do not have permission to create it.",
                              statement.line);
    const SqlType base = typeOf(statement.base, nullable);
    std::string source = "CREATE TYPE [" + statement.name.last() + "] FROM " + base.toText();
    if (statement.nullable)
        source += *statement.nullable ? " NULL" : " NOT NULL";
    catalog_.add({catalog_.nextId(), statement.name.last(), "TY", 0, source, true, nowMs()});
}

// ---- DROP

void Engine::drop(const tsql::DropStatement& statement) {
    if (statement.what == "INDEX")
        return dropIndex(statement);
    for (const tsql::ObjectName& name : statement.names) {
        if (statement.what == "TABLE") {
            dropTable(name, statement.ifExists);
            continue;
        }
        const std::string key = statement.what == "TYPE" ? "type/" + name.last() : name.last();
        const StoredObject* object = catalog_.find(key);
        const std::string kind = object ? object->kind : "";
        const bool fits = (statement.what == "VIEW" && kind == "V") || (statement.what == "PROCEDURE" && kind == "P") ||
                          (statement.what == "FUNCTION" && (kind == "FN" || kind == "IF")) ||
                          (statement.what == "TRIGGER" && kind == "TR") || (statement.what == "TYPE" && kind == "TY");
        if (fits) {
            catalog_.remove(object->id);
            continue;
        }
        if (statement.ifExists)
            continue;
        std::string what = lowerCase(statement.what);
        throw tsql::nameError(
            3701, "Cannot drop the " + what + " '" + name.toText() + "', because it does not exist or you do not have permission.",
            statement.line);
    }
}

void Engine::dropTable(const tsql::ObjectName& name, bool ifExists) {
    const std::shared_ptr<const TableDef> table = catalog_.table(name);
    if (!table || table->readOnly) {
        if (ifExists)
            return;
        throw tsql::nameError(
            3701, "Cannot drop the table '" + name.toText() + "', because it does not exist or you do not have permission.", name.line);
    }
    if (table->isTemporary()) {
        connection_.run("DROP TABLE " + table->storage);
        if (inWrite_)
            droppedTemporaries_.push_back(table);
        catalog_.popTemporary(table->name);
        std::erase_if(frame_->temporaries, [&](const std::string& one) { return tsql::sameName(one, table->name); });
        ++temporaryVersion_;
        return;
    }
    for (const auto& [other, key] : catalog_.referencesTo(table->name)) {
        if (other->id != table->id)
            throw tsql::typeError(3726, "Could not drop object '" + table->name + "' because it is referenced by a FOREIGN KEY constraint.",
                                  name.line);
    }
    connection_.run("DROP TABLE " + table->storage);
    catalog_.remove(table->id);
    // Several tables of one statement may refer to each other.
    catalog_.load();
    schemaTouched_ = true;
    ++version_;
}

} // namespace merchantry::db::embedded
