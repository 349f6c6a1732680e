#include "app/db/embedded/definer.h"
#include "app/db/embedded/scopes.h"
#include "base/text.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "app/db/tsql/visit.h"
#include "base/lettercase.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::TableDef;

namespace {

bool isTemporaryName(const tsql::ObjectName& name) {
    return !name.empty() && name.last().front() == '#';
}

bool isOfTemporaryTable(const tsql::Statement& statement) {
    return tsql::visit(statement, tsql::Visitor{[](const tsql::CreateTableStatement& create) { return isTemporaryName(create.table); },
                                                [](const tsql::CreateIndexStatement& create) { return isTemporaryName(create.table); },
                                                [](const tsql::AlterTableStatement& alter) { return isTemporaryName(alter.table); },
                                                [](const tsql::DropStatement& drop) {
                                                    return isTemporaryName(drop.onTable.empty() ? drop.names[0] : drop.onTable);
                                                },
                                                [](const tsql::Statement&) { return false; }});
}

std::string bracketed(const std::string& name) {
    return "[" + replaced(name, "]", "]]") + "]";
}

// The statement that makes the same index again.
std::string indexSource(const tsql::CreateIndexStatement& statement, const TableDef& table) {
    std::vector<std::string> columns;
    for (const tsql::IndexColumn& column : statement.columns)
        columns.push_back(bracketed(column.name) + (column.descending ? " DESC" : ""));
    return std::string("CREATE ") + (statement.unique ? "UNIQUE " : "") + (statement.clustered ? "CLUSTERED " : "") + "INDEX " +
           bracketed(statement.name) + " ON " + bracketed(table.name) + " (" + joined(columns, ", ") + ")";
}

// Whether DROP with that word means objects of the kind.
bool drops(const std::string& what, const std::string& kind) {
    return (what == "VIEW" && kind == "V") || (what == "PROCEDURE" && kind == "P") ||
           (what == "FUNCTION" && (kind == "FN" || kind == "IF")) || (what == "TRIGGER" && kind == "TR") ||
           (what == "TYPE" && kind == "TY");
}

DbError cannotDrop(const std::string& what, const std::string& name, int line) {
    return serverMessage(Message::CannotDrop, {what, name}, line);
}

DbError taken(const std::string& name, int line) {
    return serverMessage(Message::ObjectExists, {name}, line);
}

} // namespace

void Definer::run(const tsql::Statement& statement) {
    parts_.batch.session.rowCount = 0;
    const bool temporary = isOfTemporaryTable(statement);
    WriteScope scope(transaction_, temporary);
    Undo read([&] {
        if (!temporary && parts_.schema.touched()) // what was read in between is not so
            parts_.schema.distrust();
    });
    define(statement);
    read.keep();
    if (!temporary)
        parts_.schema.countUp();
    scope.finish();
}

void Definer::define(const tsql::Statement& statement) {
    tsql::visit(statement, tsql::Visitor{[&](const tsql::CreateTableStatement& create) { tables_.create(create.table, create.body); },
                                         [&](const tsql::AlterTableStatement& alter) { changer_.alter(alter); },
                                         [&](const tsql::CreateIndexStatement& create) { createIndex(create); },
                                         [&](const tsql::CreateViewStatement& create) { createView(create); },
                                         [&](const tsql::CreateProcedureStatement& create) {
                                             createModule(create.name, create.alter, "P", create.text, 0, create.line);
                                         },
                                         [&](const tsql::CreateFunctionStatement& create) {
                                             createModule(create.name, create.alter, create.table ? "IF" : "FN", create.text, 0,
                                                          create.line);
                                         },
                                         [&](const tsql::CreateTriggerStatement& create) { createTrigger(create); },
                                         [&](const tsql::CreateTypeStatement& create) { createType(create); },
                                         [&](const tsql::DropStatement& dropped) { drop(dropped); },
                                         [](const tsql::Statement& other) { throw tsql::unsupported("this statement", other.line); }});
}

void Definer::store(const std::string& name, const char* kind, std::int64_t parent, const std::string& source) {
    parts_.store.add({parts_.store.nextId(), name, kind, parent, source, true, parts_.batch.session.now().ms()});
}

// ---- indexes

void Definer::createIndex(const tsql::CreateIndexStatement& statement) {
    const std::shared_ptr<const TableDef> table = parts_.catalog.requireTable(statement.table, Message::UnknownTable);
    const auto isTaken = [&](const auto& all) {
        return std::any_of(all.begin(), all.end(), [&](const auto& one) { return tsql::sameName(one.name, statement.name); });
    };
    if (isTaken(table->indexes) || isTaken(table->keys))
        throw serverMessage(Message::IndexExists, {statement.name, table->name}, statement.line);
    for (const tsql::IndexColumn& column : statement.columns) {
        if (table->find(column.name) < 0)
            throw serverMessage(Message::KeyOfUnknownColumn, {column.name}, statement.line);
    }
    TableDef changed = *table;
    changed.indexes.push_back({statement.name, statement.unique, statement.clustered, statement.columns});
    parts_.builder.addKey(changed, statement.name, statement.columns, statement.unique);
    if (table->isTemporary())
        return parts_.temporaries.replace(std::make_shared<const TableDef>(changed));
    store(statement.name, "IX", table->id, indexSource(statement, *table));
}

void Definer::dropIndex(const tsql::DropStatement& statement) {
    const std::string& name = statement.names[0].last();
    const std::shared_ptr<const TableDef> table = parts_.catalog.table(statement.onTable);
    if (!table || table->readOnly)
        throw cannotDrop("index", statement.onTable.last() + "." + name, statement.line);
    const auto same = [&](const auto& one) { return tsql::sameName(one.name, name); };
    if (std::any_of(table->keys.begin(), table->keys.end(), same))
        throw serverMessage(Message::IndexOfConstraint, {name}, statement.line);
    const auto found = std::find_if(table->indexes.begin(), table->indexes.end(), same);
    if (found == table->indexes.end()) {
        if (statement.ifExists)
            return;
        throw cannotDrop("index", table->name + "." + name, statement.line);
    }
    parts_.builder.dropKey(*table, found->name);
    if (table->isTemporary()) {
        TableDef changed = *table;
        std::erase_if(changed.indexes, same);
        return parts_.temporaries.replace(std::make_shared<const TableDef>(changed));
    }
    for (const StoredObject* index : parts_.store.childrenOf(table->id, "IX")) {
        if (tsql::sameName(index->name, name))
            return parts_.store.remove(index->id);
    }
}

// ---- views, modules and types

void Definer::createView(const tsql::CreateViewStatement& statement) {
    tsql::ViewDef view;
    view.name = statement.name.last();
    view.statement = {std::shared_ptr<const tsql::CreateViewStatement>(), &statement};
    static const std::vector<tsql::Variable> kNone;
    if (!statement.alter && parts_.store.find(view.name))
        throw taken(view.name, statement.line);
    try {
        tsql::Binder(tsql::BindContext{parts_.catalog, kNone}).viewColumns(view);
    } catch (const DbError& error) {
        if (error.native() != 8155)
            throw;
        throw serverMessage(Message::ViewColumnNameless, {}, statement.line);
    }
    createModule(statement.name, statement.alter, "V", statement.text, 0, statement.line);
}

void Definer::createModule(const tsql::ObjectName& name, bool alter, const char* kind, const std::string& text, std::int64_t parent,
                           int line) {
    const StoredObject* known = parts_.store.find(name.last());
    if (!alter) {
        if (known)
            throw taken(name.last(), line);
        return store(name.last(), kind, parent, text);
    }
    if (!known || known->kind != kind)
        throw serverMessage(Message::InvalidObject, {name.toText()}, line);
    parts_.store.setSource(known->id, known->name, text);
}

void Definer::createTrigger(const tsql::CreateTriggerStatement& statement) {
    const StoredObject* table = parts_.store.find(statement.table.last());
    if (!table || (table->kind != "U" && table->kind != "V") || (table->kind == "V" && !statement.insteadOf))
        throw serverMessage(Message::TriggerTargetMissing, {statement.table.toText()}, statement.line);
    const auto isTaken = [&](bool wanted, const char* event) { return wanted && parts_.catalog.hasInsteadTrigger(table->id, event); };
    if (statement.insteadOf && !statement.alter &&
        (isTaken(statement.onInsert, "insert") || isTaken(statement.onUpdate, "update") || isTaken(statement.onDelete, "delete")))
        throw serverMessage(Message::InsteadTriggerExists, {statement.name.last(), table->name}, statement.line);
    createModule(statement.name, statement.alter, "TR", statement.text, table->id, statement.line);
}

void Definer::createType(const tsql::CreateTypeStatement& statement) {
    const std::string& name = statement.name.last();
    SqlType type;
    bool nullable = true;
    if (parts_.catalog.userType(name, type, nullable))
        throw serverMessage(Message::TypeExists, {name}, statement.line);
    std::string source = "CREATE TYPE [" + name + "] FROM " + parts_.catalog.declaredType(statement.base).toText();
    if (statement.nullable)
        source += *statement.nullable ? " NULL" : " NOT NULL";
    store(name, "TY", 0, source);
}

// ---- DROP

void Definer::drop(const tsql::DropStatement& statement) {
    if (statement.what == "INDEX")
        return dropIndex(statement);
    for (const tsql::ObjectName& name : statement.names) {
        if (statement.what == "TABLE")
            tables_.drop(name, statement.ifExists);
        else
            dropObject(statement, name);
    }
}

void Definer::dropObject(const tsql::DropStatement& statement, const tsql::ObjectName& name) {
    const StoredObject* object = parts_.store.find(statement.what == "TYPE" ? "type/" + name.last() : name.last());
    if (object && drops(statement.what, object->kind))
        parts_.store.remove(object->id);
    else if (!statement.ifExists)
        throw cannotDrop(lowerCase(statement.what), name.toText(), statement.line);
}

} // namespace merchantry::db::embedded
