#include "app/db/embedded/engine.h"

#include "app/db/nativeerrors.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::TableDef;

// Indexes, views and modules, and how all of them go again.

void Engine::createIndex(const tsql::CreateIndexStatement& statement) {
    const std::shared_ptr<const TableDef> table = catalog_.requireTable(statement.table, 1088);
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
        builder_.buildKey(changed, statement.name, statement.columns, statement.unique);
    } catch (const DbError& error) {
        if (error.native() != 2627)
            throw;
        throw serverError(1505, "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name 'dbo." +
                                    table->name + "' and the index name '" + statement.name + "'.")
            .withSeverity(16, 1);
    }
    if (table->isTemporary()) {
        temporaries_.replace(std::make_shared<const TableDef>(changed));
        return;
    }
    std::vector<std::string> columns;
    for (const tsql::IndexColumn& column : statement.columns)
        columns.push_back("[" + replaced(column.name, "]", "]]") + "]" + (column.descending ? " DESC" : ""));
    const std::string source = std::string("CREATE ") + (statement.unique ? "UNIQUE " : "") + (statement.clustered ? "CLUSTERED " : "") +
                               "INDEX [" + replaced(statement.name, "]", "]]") + "] ON [" + replaced(table->name, "]", "]]") + "] (" +
                               joined(columns, ", ") + ")";
    store_.add({store_.nextId(), statement.name, "IX", table->id, source, true, session_.now().ms()});
}

void Engine::dropIndex(const tsql::DropStatement& statement) {
    const std::shared_ptr<const TableDef> table = catalog_.requireTable(statement.onTable, 3701);
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
    builder_.dropKey(*table, found->name);
    if (table->isTemporary()) {
        TableDef changed = *table;
        std::erase_if(changed.indexes, same);
        temporaries_.replace(std::make_shared<const TableDef>(changed));
        return;
    }
    for (const StoredObject* index : store_.childrenOf(table->id, "IX")) {
        if (tsql::sameName(index->name, name))
            return store_.remove(index->id);
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
    const StoredObject* known = store_.find(name.last());
    if (!alter) {
        if (known)
            throw tsql::nameError(2714, "There is already an object named '" + name.last() + "' in the database.", line);
        store_.add({store_.nextId(), name.last(), kind, parent, text, true, session_.now().ms()});
        return;
    }
    if (!known || known->kind != kind)
        throw tsql::nameError(208, "Invalid object name '" + name.toText() + "'.", line);
    store_.setSource(known->id, known->name, text);
}

void Engine::createFunction(const tsql::CreateFunctionStatement& statement) {
    createModule(statement.name, statement.alter, statement.table ? "IF" : "FN", statement.text, 0, statement.line);
}

void Engine::createTrigger(const tsql::CreateTriggerStatement& statement) {
    const StoredObject* table = store_.find(statement.table.last());
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
    const SqlType base = catalog_.declaredType(statement.base, &nullable);
    std::string source = "CREATE TYPE [" + statement.name.last() + "] FROM " + base.toText();
    if (statement.nullable)
        source += *statement.nullable ? " NULL" : " NOT NULL";
    store_.add({store_.nextId(), statement.name.last(), "TY", 0, source, true, session_.now().ms()});
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
        const StoredObject* object = store_.find(key);
        const std::string kind = object ? object->kind : "";
        const bool fits = (statement.what == "VIEW" && kind == "V") || (statement.what == "PROCEDURE" && kind == "P") ||
                          (statement.what == "FUNCTION" && (kind == "FN" || kind == "IF")) ||
                          (statement.what == "TRIGGER" && kind == "TR") || (statement.what == "TYPE" && kind == "TY");
        if (fits) {
            store_.remove(object->id);
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
        if (transaction_.isWriting())
            temporaryUndo_.dropped(table);
        temporaries_.pop(table->name);
        std::erase_if(batch_.frame->temporaries, [&](const std::string& one) { return tsql::sameName(one, table->name); });
        return;
    }
    for (const auto& [other, key] : store_.referencesTo(table->name)) {
        if (other->id != table->id)
            throw tsql::typeError(3726, "Could not drop object '" + table->name + "' because it is referenced by a FOREIGN KEY constraint.",
                                  name.line);
    }
    connection_.run("DROP TABLE " + table->storage);
    identities_.forget(table->id);
    store_.remove(table->id);
    // Several tables of one statement may refer to each other.
    schema_.readHalfDone();
}

} // namespace merchantry::db::embedded
