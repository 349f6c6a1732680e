#include "app/db/embedded/table_maker.h"

#include "app/db/tsql/define_table.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::TableDef;

namespace {

bool isIn(const std::vector<std::string>& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(), [&](const std::string& one) { return tsql::sameName(one, name); });
}

tsql::ObjectName plainName(const std::string& name) {
    tsql::ObjectName object;
    object.parts.push_back(name);
    return object;
}

bool sameColumns(const std::vector<std::string>& wanted, const std::vector<tsql::IndexColumn>& columns) {
    if (wanted.size() != columns.size())
        return false;
    return std::all_of(wanted.begin(), wanted.end(), [&](const std::string& name) {
        return std::any_of(columns.begin(), columns.end(),
                           [&](const tsql::IndexColumn& column) { return tsql::sameName(column.name, name); });
    });
}

bool isKey(const TableDef& table, const std::vector<std::string>& columns) {
    return std::any_of(table.keys.begin(), table.keys.end(), [&](const tsql::KeyDef& key) { return sameColumns(columns, key.columns); }) ||
           std::any_of(table.indexes.begin(), table.indexes.end(),
                       [&](const tsql::IndexDef& index) { return index.unique && sameColumns(columns, index.columns); });
}

// A reference without columns means the primary key.
void referToPrimaryKey(tsql::ForeignKeyDef& key, const TableDef& other, int line) {
    const tsql::KeyDef* primary = other.primaryKey();
    if (!primary)
        throw serverMessage(Message::ForeignTableWithoutKey, {key.name, key.table}, line);
    for (const tsql::IndexColumn& column : primary->columns)
        key.refColumns.push_back(column.name);
}

void requireColumns(const tsql::ForeignKeyDef& key, const TableDef& other, int line) {
    for (const std::string& column : key.refColumns) {
        if (other.find(column) < 0)
            throw serverMessage(Message::ForeignColumnMissing, {key.name, column, key.table}, line);
    }
    if (!isKey(other, key.refColumns) || key.refColumns.size() != key.columns.size())
        throw serverMessage(Message::NoMatchingKey, {key.table, key.name}, line);
}

} // namespace

void resolveReferences(tsql::Catalog& catalog, TableDef& table, int line) {
    for (tsql::ForeignKeyDef& key : table.foreignKeys) {
        const bool own = tsql::sameName(key.table, table.name);
        const std::shared_ptr<const TableDef> other = own ? std::make_shared<const TableDef>(table) : catalog.table(plainName(key.table));
        if (!other)
            throw serverMessage(Message::ForeignTableMissing, {key.name, key.table}, line);
        key.table = other->name;
        if (key.refColumns.empty())
            referToPrimaryKey(key, *other, line);
        requireColumns(key, *other, line);
    }
}

// ---- CREATE

// A module's temporary table may have the name of one of its caller's.
bool TableMaker::ownsTemporary(const std::string& name) const {
    return !parts_.batch.frame->caller || isIn(parts_.batch.frame->temporaries, name);
}

TableDef TableMaker::defined(const tsql::ObjectName& name, const tsql::TableBody& body, std::int64_t id) {
    return tsql::defineTable(name, body, id,
                             [this](const tsql::TypeName& type, bool& nullable) { return parts_.catalog.declaredType(type, &nullable); });
}

void TableMaker::create(const tsql::ObjectName& name, const tsql::TableBody& body) {
    const std::string& last = name.last();
    const bool temporary = last.front() == '#';
    if (temporary ? parts_.catalog.table(name) != nullptr && ownsTemporary(last) : parts_.store.find(last) != nullptr)
        throw serverMessage(Message::ObjectExists, {last}, name.line);
    make(defined(name, body, temporary ? parts_.temporaries.nextId() : parts_.store.nextId()), temporary);
}

void TableMaker::declare(const tsql::DeclareTableStatement& statement) {
    const std::vector<std::string>& own = parts_.batch.frame->temporaries;
    if (std::find(own.begin(), own.end(), statement.name) != own.end())
        return;
    tsql::ObjectName name = plainName(statement.name);
    name.line = statement.line;
    TableDef table = defined(name, statement.body, parts_.temporaries.nextId());
    transaction_.endRead();
    make(std::move(table), true);
}

void TableMaker::make(TableDef table, bool temporary) {
    if (table.id == 0)
        table.id = temporary ? parts_.temporaries.nextId() : parts_.store.nextId();
    if (temporary)
        makeTemporary(std::move(table));
    else
        makeStored(std::move(table));
}

void TableMaker::makeTemporary(TableDef table) {
    table.foreignKeys.clear();
    table.storage = "temp." + tsql::quotedName(table.name + "_" + std::to_string(-table.id));
    typeComputed(parts_.catalog, table);
    parts_.builder.build(table);
    const auto made = std::make_shared<const TableDef>(std::move(table));
    parts_.temporaries.push(made);
    if (parts_.batch.frame->caller || made->name.front() == '@')
        parts_.batch.frame->temporaries.push_back(made->name);
}

void TableMaker::makeStored(TableDef table) {
    table.storage = "main." + tsql::quotedName(table.name);
    resolveReferences(parts_.catalog, table, 0);
    typeComputed(parts_.catalog, table);
    identities_.startOver(table.id);
    parts_.store.add({table.id, table.name, "U", 0, tsql::tableSource(table), true, parts_.batch.session.now().ms()});
    parts_.builder.build(table);
    parts_.schema.touch();
    if (!parts_.store.find(table.name)) // SELECT INTO goes on with it at once
        parts_.schema.readHalfDone();
}

// ---- DROP

void TableMaker::drop(const tsql::ObjectName& name, bool ifExists) {
    const std::shared_ptr<const TableDef> table = parts_.catalog.table(name);
    if (!table || table->readOnly) {
        if (ifExists)
            return;
        throw serverMessage(Message::CannotDrop, {"table", name.toText()}, name.line);
    }
    if (table->isTemporary())
        return dropTemporary(table);
    for (const auto& [other, key] : parts_.store.referencesTo(table->name)) {
        if (other->id != table->id)
            throw serverMessage(Message::TableReferenced, {table->name}, name.line);
    }
    parts_.connection.run("DROP TABLE " + table->storage);
    identities_.forget(table->id);
    parts_.store.remove(table->id);
    parts_.schema.readHalfDone(); // several tables of one statement may refer to each other
}

void TableMaker::dropTemporary(const std::shared_ptr<const TableDef>& table) {
    parts_.connection.run("DROP TABLE " + table->storage);
    if (transaction_.isWriting())
        undo_.dropped(table);
    parts_.temporaries.pop(table->name);
    std::erase_if(parts_.batch.frame->temporaries, [&](const std::string& one) { return tsql::sameName(one, table->name); });
}

void TableMaker::dropTablesOf(Frame& frame) {
    for (auto name = frame.temporaries.rbegin(); name != frame.temporaries.rend(); ++name) {
        if (const std::shared_ptr<const TableDef> table = parts_.temporaries.find(*name)) {
            sqlite3_exec(parts_.connection.handle(), ("DROP TABLE IF EXISTS " + table->storage).c_str(), nullptr, nullptr, nullptr);
            parts_.temporaries.pop(*name);
        }
    }
    frame.temporaries.clear();
}

} // namespace merchantry::db::embedded
