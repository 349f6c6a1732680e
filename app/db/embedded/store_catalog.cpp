#include "app/db/embedded/store_catalog.h"
#include "app/db/embedded/text_order.h"

#include "app/db/tsql/binder.h"
#include "app/db/tsql/define_table.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/parser.h"
#include "app/db/tsql/token.h"
#include "base/lettercase.h"

#include <algorithm>

namespace merchantry::db::embedded {
namespace {

using tsql::ObjectName;
using tsql::TableDef;

constexpr std::int64_t kFirstId = 1000;

std::string objectKey(const StoredObject& object) {
    // Indexes have names of their table only.
    const std::string prefix = object.kind == "IX" ? std::to_string(object.parent) + "/" : object.kind == "TY" ? "type/" : "";
    return prefix + lowerCase(object.name);
}

template <class T> std::shared_ptr<const T> firstStatement(const std::string& source) {
    auto batch = std::make_shared<tsql::Batch>(tsql::parseBatch(source));
    const auto* statement = static_cast<const T*>(batch->statements.at(0).get());
    return {batch, statement};
}

void bindTexts(sqlite3_stmt* statement, const StoredObject& object) {
    sqlite3_bind_int64(statement, 1, object.id);
    sqlite3_bind_text(statement, 2, object.name.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(statement, 3, object.kind.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_int64(statement, 4, object.parent);
    sqlite3_bind_text(statement, 5, object.source.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_int64(statement, 6, object.createdMs);
}

std::string columnText(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return text ? text : "";
}

} // namespace

void StoreCatalog::create(Connection& connection) {
    connection.run(
        "CREATE TABLE IF NOT EXISTS ts_object(id INTEGER PRIMARY KEY, name TEXT NOT NULL, kind TEXT NOT NULL, parent INTEGER NOT NULL, "
        "source TEXT NOT NULL, enabled INTEGER NOT NULL DEFAULT 1, created INTEGER NOT NULL) STRICT;"
        "CREATE TABLE IF NOT EXISTS ts_identity(id INTEGER PRIMARY KEY, last INTEGER NOT NULL) STRICT;");
    reorderTexts(connection.handle());
}

void StoreCatalog::load() {
    byName_.clear();
    byId_.clear();
    tables_.clear();
    views_.clear();
    functions_.clear();
    insteadEvents_.clear();
    hasReferences_ = -1;
    hasTriggers_ = false;
    const Statement3 select(connection_.handle(), "SELECT id, name, kind, parent, source, enabled, created FROM ts_object ORDER BY id");
    while (connection_.step(select.get())) {
        StoredObject object;
        object.id = sqlite3_column_int64(select.get(), 0);
        object.name = columnText(select.get(), 1);
        object.kind = columnText(select.get(), 2);
        object.parent = sqlite3_column_int64(select.get(), 3);
        object.source = columnText(select.get(), 4);
        object.enabled = sqlite3_column_int(select.get(), 5) != 0;
        object.createdMs = sqlite3_column_int64(select.get(), 6);
        hasTriggers_ = hasTriggers_ || object.kind == "TR";
        if (object.kind == "TR" && object.enabled) {
            const auto trigger = firstStatement<tsql::CreateTriggerStatement>(object.source);
            if (trigger->insteadOf)
                insteadEvents_[object.parent] |= (trigger->onInsert ? 1 : 0) | (trigger->onUpdate ? 2 : 0) | (trigger->onDelete ? 4 : 0);
        }
        byName_[objectKey(object)] = object;
        byId_[object.id] = std::move(object);
    }
}

bool StoreCatalog::hasInsteadTrigger(std::int64_t tableOrView, std::string_view event) {
    const auto found = insteadEvents_.find(tableOrView);
    return found != insteadEvents_.end() && (found->second & (event == "insert" ? 1 : event == "update" ? 2 : 4)) != 0;
}

// ---- names

bool StoreCatalog::isOwnDatabase(const ObjectName& name) {
    if (name.parts.size() < 3)
        return true;
    const std::string& database = name.parts[name.parts.size() - 3];
    return database.empty() || tsql::sameName(database, kDatabase) || tsql::sameName(database, "tempdb");
}

const StoredObject* StoreCatalog::find(std::string_view name) const {
    const auto found = byName_.find(lowerCase(name));
    return found == byName_.end() ? nullptr : &found->second;
}

const StoredObject* StoreCatalog::findById(std::int64_t id) const {
    const auto found = byId_.find(id);
    return found == byId_.end() ? nullptr : &found->second;
}

std::vector<const StoredObject*> StoreCatalog::all() const {
    std::vector<const StoredObject*> objects;
    for (const auto& [id, object] : byId_)
        objects.push_back(&object);
    return objects;
}

std::vector<const StoredObject*> StoreCatalog::childrenOf(std::int64_t parent, std::string_view kind) const {
    std::vector<const StoredObject*> objects;
    for (const auto& [id, object] : byId_) {
        if (object.parent == parent && object.kind == kind)
            objects.push_back(&object);
    }
    return objects;
}

std::shared_ptr<const TableDef> StoreCatalog::table(const ObjectName& name) {
    return isOwnDatabase(name) ? tableNamed(name.last()) : nullptr;
}

std::shared_ptr<const TableDef> StoreCatalog::tableNamed(const std::string& name) {
    const StoredObject* object = find(name);
    return object && object->kind == "U" ? tableOf(*object) : nullptr;
}

std::shared_ptr<const TableDef> StoreCatalog::tableById(std::int64_t id) {
    const StoredObject* object = findById(id);
    return object && object->kind == "U" ? tableOf(*object) : nullptr;
}

std::shared_ptr<const TableDef> StoreCatalog::tableOf(const StoredObject& object) {
    std::shared_ptr<const TableDef>& known = tables_[object.id];
    if (known)
        return known;
    const auto statement = firstStatement<tsql::CreateTableStatement>(object.source);
    const tsql::TypeLookup types = [this](const tsql::TypeName& type, bool& nullable) {
        static const std::vector<tsql::Variable> kNone;
        return tsql::Binder(tsql::BindContext{*this, kNone}).declaredType(type, &nullable);
    };
    auto table = std::make_shared<TableDef>(tsql::defineTable(statement->table, statement->body, object.id, types));
    table->name = object.name;
    table->storage = "main." + tsql::quotedName(object.name);
    for (const StoredObject* child : childrenOf(object.id, "IX")) {
        const auto index = firstStatement<tsql::CreateIndexStatement>(child->source);
        table->indexes.push_back({child->name, index->unique, index->clustered, index->columns});
    }
    typeComputed(*this, *table);
    known = table;
    return table;
}

void typeComputed(tsql::Catalog& catalog, TableDef& table) {
    static const std::vector<tsql::Variable> kNone;
    for (tsql::ColumnDef& column : table.columns) {
        if (!column.computed)
            continue;
        const tsql::Typed value = tsql::Binder(tsql::BindContext{catalog, kNone}).computed(table, *column.computed);
        column.type = value.type;
        column.nullable = true;
    }
}

std::shared_ptr<const tsql::ViewDef> StoreCatalog::view(const ObjectName& name) {
    return isOwnDatabase(name) ? viewNamed(name.last()) : nullptr;
}

std::shared_ptr<const tsql::ViewDef> StoreCatalog::viewNamed(const std::string& name) {
    const StoredObject* object = find(name);
    if (!object || object->kind != "V")
        return nullptr;
    std::shared_ptr<const tsql::ViewDef>& known = views_[object->id];
    if (!known) {
        auto view = std::make_shared<tsql::ViewDef>();
        view->id = object->id;
        view->name = object->name;
        view->statement = firstStatement<tsql::CreateViewStatement>(object->source);
        known = view;
    }
    return known;
}

std::shared_ptr<const tsql::FunctionDef> StoreCatalog::function(const ObjectName& name) {
    return isOwnDatabase(name) ? functionNamed(name.last()) : nullptr;
}

std::shared_ptr<const tsql::FunctionDef> StoreCatalog::functionNamed(const std::string& name) {
    const StoredObject* object = find(name);
    return object ? functionById(object->id) : nullptr;
}

std::shared_ptr<const tsql::FunctionDef> StoreCatalog::functionById(std::int64_t id) {
    const StoredObject* object = findById(id);
    if (!object || (object->kind != "FN" && object->kind != "IF"))
        return nullptr;
    std::shared_ptr<const tsql::FunctionDef>& known = functions_[id];
    if (known)
        return known;
    auto function = std::make_shared<tsql::FunctionDef>();
    function->id = id;
    function->name = object->name;
    function->statement = firstStatement<tsql::CreateFunctionStatement>(object->source);
    static const std::vector<tsql::Variable> kNone;
    const auto typeOf = [&](const tsql::TypeName& type) { return tsql::Binder(tsql::BindContext{*this, kNone}).declaredType(type); };
    for (const tsql::ParameterClause& parameter : function->statement->parameters) {
        std::shared_ptr<const tsql::Expr> value;
        if (parameter.defaultValue)
            value = {function->statement, parameter.defaultValue.get()};
        function->parameters.push_back({parameter.name, typeOf(parameter.type), value});
    }
    if (!function->statement->table)
        function->returns = typeOf(function->statement->returns);
    known = function;
    return known;
}

bool StoreCatalog::userType(std::string_view name, SqlType& type, bool& nullable) {
    const auto found = byName_.find("type/" + lowerCase(name));
    if (found == byName_.end())
        return false;
    const auto statement = firstStatement<tsql::CreateTypeStatement>(found->second.source);
    const std::optional<SqlType> base = tsql::builtInType(statement->base);
    if (!base)
        return false;
    type = *base;
    nullable = statement->nullable.value_or(true);
    return true;
}

std::vector<std::pair<std::shared_ptr<const TableDef>, tsql::ForeignKeyDef>> StoreCatalog::referencesTo(const std::string& table) {
    std::vector<std::pair<std::shared_ptr<const TableDef>, tsql::ForeignKeyDef>> references;
    for (const auto& [id, object] : byId_) {
        if (object.kind != "U")
            continue;
        const std::shared_ptr<const TableDef> other = tableOf(object);
        for (const tsql::ForeignKeyDef& key : other->foreignKeys) {
            if (tsql::sameName(key.table, table))
                references.emplace_back(other, key);
        }
    }
    return references;
}

bool StoreCatalog::hasReferences() {
    if (hasReferences_ >= 0)
        return hasReferences_ != 0;
    hasReferences_ = 0;
    for (const auto& [id, object] : byId_) {
        if (object.kind != "U")
            continue;
        const std::shared_ptr<const TableDef> table = tableOf(object);
        const bool follows = std::any_of(table->foreignKeys.begin(), table->foreignKeys.end(),
                                         [](const tsql::ForeignKeyDef& key) { return !key.onDelete.empty() || !key.onUpdate.empty(); });
        hasReferences_ = hasReferences_ != 0 || follows ? 1 : 0;
    }
    return hasReferences_ != 0;
}

// ---- changes

std::int64_t StoreCatalog::nextId() {
    const tsql::Cell last = connection_.single("SELECT max(id) FROM ts_object");
    return std::max(kFirstId, last.isNull() ? kFirstId : last.integer + 1);
}

void StoreCatalog::add(const StoredObject& object) {
    const Statement3 insert(connection_.handle(),
                            "INSERT INTO ts_object(id, name, kind, parent, source, created) VALUES (?1, ?2, ?3, ?4, ?5, ?6)");
    bindTexts(insert.get(), object);
    connection_.step(insert.get());
}

void StoreCatalog::setSource(std::int64_t id, const std::string& name, const std::string& source) {
    const Statement3 update(connection_.handle(), "UPDATE ts_object SET name = ?2, source = ?3 WHERE id = ?1");
    sqlite3_bind_int64(update.get(), 1, id);
    sqlite3_bind_text(update.get(), 2, name.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(update.get(), 3, source.c_str(), -1, SQLITE_TRANSIENT);
    connection_.step(update.get());
}

void StoreCatalog::setEnabled(std::int64_t id, bool enabled) {
    connection_.run("UPDATE ts_object SET enabled = " + std::to_string(enabled ? 1 : 0) + " WHERE id = " + std::to_string(id));
}

void StoreCatalog::remove(std::int64_t id) {
    connection_.run("DELETE FROM ts_object WHERE id = " + std::to_string(id) + " OR (parent = " + std::to_string(id) + " AND parent <> 0)");
    connection_.run("DELETE FROM ts_identity WHERE id = " + std::to_string(id));
}

} // namespace merchantry::db::embedded
