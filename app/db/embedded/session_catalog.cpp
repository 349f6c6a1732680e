#include "app/db/embedded/session_catalog.h"

#include "app/db/tsql/binder.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "base/lettercase.h"

namespace merchantry::db::embedded {

using tsql::ObjectName;
using tsql::TableDef;

bool SessionCatalog::isOwnDatabase(const ObjectName& name) const {
    return StoreCatalog::isOwnDatabase(name) || tsql::sameName(name.parts[name.parts.size() - 3], databaseName);
}

std::shared_ptr<const TableDef> SessionCatalog::table(const ObjectName& name) {
    const std::string& last = name.last();
    if (!last.empty() && (last[0] == '#' || last[0] == '@')) {
        sawTemporary = true;
        return temporaries_.find(last);
    }
    if (const std::shared_ptr<const TableDef> system = systemTable(name))
        return system;
    return isOwnDatabase(name) ? store_.tableNamed(last) : nullptr;
}

std::shared_ptr<const tsql::ViewDef> SessionCatalog::view(const ObjectName& name) {
    return isOwnDatabase(name) ? store_.viewNamed(name.last()) : nullptr;
}

std::shared_ptr<const tsql::FunctionDef> SessionCatalog::function(const ObjectName& name) {
    return isOwnDatabase(name) ? store_.functionNamed(name.last()) : nullptr;
}

bool SessionCatalog::hasInsteadTrigger(std::int64_t tableOrView, std::string_view event) {
    return tableOrView != inInstead && store_.hasInsteadTrigger(tableOrView, event);
}

std::shared_ptr<const TableDef> SessionCatalog::tableById(std::int64_t id) {
    return id >= 0 ? store_.tableById(id) : temporaries_.byId(id);
}

std::shared_ptr<const TableDef> SessionCatalog::requireTable(const ObjectName& name, Message missing) {
    const std::shared_ptr<const TableDef> found = table(name);
    if (found && !found->readOnly)
        return found;
    throw serverMessage(missing, {name.toText()}, name.line);
}

SqlType SessionCatalog::declaredType(const tsql::TypeName& name, bool* nullable) {
    static const std::vector<tsql::Variable> kNone;
    return tsql::Binder(tsql::BindContext{*this, kNone}).declaredType(name, nullable);
}

void SessionCatalog::reset() {
    identityInsertTable = 0;
    databaseName = kDatabase;
}

std::shared_ptr<const TableDef> SessionCatalog::systemTable(const ObjectName& name) {
    std::string schema = name.parts.size() > 1 ? lowerCase(name.parts[name.parts.size() - 2]) : "";
    const std::string last = lowerCase(name.last());
    if (schema.empty() || schema == "dbo")
        schema = last.rfind("sys", 0) == 0 ? "dbo" : "";
    if (schema.empty())
        return nullptr;
    const std::string full = schema + "." + last;
    const auto known = system_.find(full);
    if (known != system_.end())
        return known->second;
    for (const SystemView& view : systemViews()) {
        if (full != view.name)
            continue;
        auto table = std::make_shared<TableDef>();
        table->name = name.last();
        table->readOnly = true;
        table->storage = tsql::quotedName(full);
        for (const auto& [column, type] : view.columns) {
            tsql::ColumnDef definition;
            definition.name = column;
            definition.type = type;
            table->columns.push_back(std::move(definition));
        }
        rows_.define(full, *table);
        const auto make = view.rows;
        rows_.setMaker(full, [this, make] { return std::make_shared<const Rowset>(make(store_, databaseName)); });
        system_[full] = table;
        return table;
    }
    return nullptr;
}

} // namespace merchantry::db::embedded
