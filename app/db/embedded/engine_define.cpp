#include "app/db/embedded/engine.h"
#include "app/db/embedded/scopes.h"

#include "app/db/tsql/define_table.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::StatementKind;
using tsql::TableDef;

namespace {

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
    session_.rowCount = 0;
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
    WriteScope scope(transaction_, temporary);
    Undo read([&] {
        if (!temporary && schema_.touched()) { // what was read in between is not so
            schema_.distrust();
        }
    });
    define(statement);
    read.keep();
    if (!temporary)
        schema_.countUp();
    scope.finish();
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
    if (store_.find(name))
        throw tsql::nameError(2714, "There is already an object named '" + name + "' in the database.", line);
}

// ---- tables

void Engine::createTable(const tsql::ObjectName& name, const tsql::TableBody& body) {
    const bool temporary = name.last().front() == '#';
    if (temporary ? catalog_.table(name) != nullptr && ownsTemporary(name.last()) : store_.find(name.last()) != nullptr)
        throw tsql::nameError(2714, "There is already an object named '" + name.last() + "' in the database.", name.line);
    const std::int64_t id = temporary ? temporaries_.nextId() : store_.nextId();
    TableDef table = tsql::defineTable(
        name, body, id, [this](const tsql::TypeName& type, bool& nullable) { return catalog_.declaredType(type, &nullable); });
    createTableOf(std::move(table), temporary);
}

// A module's temporary table may have the name of one of its caller's.
bool Engine::ownsTemporary(const std::string& name) const {
    const bool top = !batch_.frame->caller;
    const auto& own = batch_.frame->temporaries;
    return top || std::any_of(own.begin(), own.end(), [&](const std::string& one) { return tsql::sameName(one, name); });
}

void Engine::createTableOf(TableDef table, bool temporary) {
    if (table.id == 0)
        table.id = temporary ? temporaries_.nextId() : store_.nextId();
    if (temporary) {
        table.foreignKeys.clear();
        table.storage = "temp." + tsql::quotedName(table.name + "_" + std::to_string(-table.id));
        typeComputed(catalog_, table);
        builder_.build(table);
        const auto made = std::make_shared<const TableDef>(table);
        temporaries_.push(made);
        if (batch_.frame->caller || table.name.front() == '@')
            batch_.frame->temporaries.push_back(table.name);
        return;
    }
    table.storage = "main." + tsql::quotedName(table.name);
    checkForeignKeys(table, 0);
    typeComputed(catalog_, table);
    identities_.startOver(table.id);
    store_.add({table.id, table.name, "U", 0, tsql::tableSource(table), true, session_.now().ms()});
    builder_.build(table);
    schema_.touch();
    if (!store_.find(table.name)) // SELECT INTO goes on with it at once
        schema_.readHalfDone();
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
    const auto& own = batch_.frame->temporaries;
    if (std::find(own.begin(), own.end(), statement.name) != own.end()) // in a loop the table of the last round stays
        return;
    TableDef table = tsql::defineTable(name, statement.body, temporaries_.nextId(), [this](const tsql::TypeName& type, bool& nullable) {
        return catalog_.declaredType(type, &nullable);
    });
    transaction_.endRead();
    createTableOf(std::move(table), true);
}

} // namespace merchantry::db::embedded
