#include "app/db/embedded/engine.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"
#include "app/db/tsql/types.h"
#include "base/text.h"

namespace merchantry::db::embedded {
namespace {

tsql::ObjectName nameOf(std::string_view text) {
    tsql::ObjectName name;
    for (std::string part : split(trimmed(text), ".")) {
        if (part.size() > 1 && ((part.front() == '[' && part.back() == ']') || (part.front() == '"' && part.back() == '"')))
            part = part.substr(1, part.size() - 2);
        name.parts.push_back(std::move(part));
    }
    return name;
}

} // namespace

const Cell& Engine::variable(int slot) {
    return batch_.frame->variables[static_cast<std::size_t>(slot)];
}

void Engine::setVariable(int slot, Cell cell) {
    batch_.assign(slot, std::move(cell));
}

std::int64_t Engine::nextIdentity(std::int64_t table) {
    return identities_.next(table);
}

void Engine::noteIdentity(std::int64_t table, std::int64_t given) {
    identities_.note(table, given);
}

Cell Engine::identityInfo(std::string_view table, int which) {
    return identities_.info(catalog_.table(nameOf(table)).get(), which);
}

// ---- the catalogue by functions

Cell Engine::objectId(std::string_view name, std::string_view kind) {
    const tsql::ObjectName object = nameOf(name);
    std::string wanted = upperCase(trimmed(kind));
    if (!object.last().empty() && object.last().front() == '#') {
        const std::shared_ptr<const tsql::TableDef> table = catalog_.table(object);
        return table && (wanted.empty() || wanted == "U") ? Cell::ofInteger(table->id) : Cell();
    }
    const StoredObject* found = store_.find(object.last());
    if (!found) {
        for (const StoredObject* one : store_.all()) { // constraints are objects too
            if (one->kind != "U")
                continue;
            const std::shared_ptr<const tsql::TableDef> table = store_.tableById(one->id);
            std::int64_t number = table->id * 1000;
            for (const tsql::KeyDef& key : table->keys) {
                ++number;
                if (tsql::sameName(key.name, object.last()) && (wanted.empty() || wanted == (key.primary ? "PK" : "UQ")))
                    return Cell::ofInteger(number);
            }
            number = table->id * 1000 + 100;
            for (const tsql::CheckDef& check : table->checks) {
                ++number;
                if (tsql::sameName(check.name, object.last()) && (wanted.empty() || wanted == "C"))
                    return Cell::ofInteger(number);
            }
            number = table->id * 1000 + 200;
            for (const tsql::ForeignKeyDef& key : table->foreignKeys) {
                ++number;
                if (tsql::sameName(key.name, object.last()) && (wanted.empty() || wanted == "F"))
                    return Cell::ofInteger(number);
            }
            number = table->id * 1000 + 300;
            for (const tsql::ColumnDef& column : table->columns) {
                ++number;
                if (tsql::sameName(column.defaultName, object.last()) && (wanted.empty() || wanted == "D"))
                    return Cell::ofInteger(number);
            }
        }
        return {};
    }
    if (found->kind == "IX" || found->kind == "TY" || (!wanted.empty() && wanted != found->kind))
        return {};
    return Cell::ofInteger(found->id);
}

Cell Engine::objectName(std::int64_t id) {
    const StoredObject* found = store_.findById(id);
    return found ? Cell::ofText(found->name) : Cell();
}

Cell Engine::columnInfo(std::int64_t table, std::string_view column, std::string_view property) {
    const std::shared_ptr<const tsql::TableDef> definition = catalog_.tableById(table);
    const int found = definition ? definition->find(column) : -1;
    if (found < 0)
        return {};
    const tsql::ColumnDef& one = definition->columns[static_cast<std::size_t>(found)];
    const auto flag = [](bool is) { return Cell::ofInteger(is ? 1 : 0); };
    if (tsql::sameName(property, "AllowsNull"))
        return flag(one.nullable);
    if (tsql::sameName(property, "IsIdentity"))
        return flag(one.identity);
    if (tsql::sameName(property, "IsComputed"))
        return flag(one.computed != nullptr);
    if (tsql::sameName(property, "ColumnId"))
        return Cell::ofInteger(found + 1);
    if (tsql::sameName(property, "Precision"))
        return Cell::ofInteger(one.type.kind == TypeKind::Decimal ? one.type.precision : tsql::asDecimal(one.type).precision);
    if (tsql::sameName(property, "Scale"))
        return Cell::ofInteger(one.type.kind == TypeKind::Decimal ? one.type.scale : 0);
    return {};
}

Cell Engine::columnName(std::int64_t table, std::int64_t number) {
    const std::shared_ptr<const tsql::TableDef> definition = catalog_.tableById(table);
    if (!definition || number < 1 || static_cast<std::size_t>(number) > definition->columns.size())
        return {};
    return Cell::ofText(definition->columns[static_cast<std::size_t>(number) - 1].name);
}

Cell Engine::columnLength(std::string_view table, std::string_view column) {
    const std::shared_ptr<const tsql::TableDef> definition = catalog_.table(nameOf(table));
    const int found = definition ? definition->find(column) : -1;
    return found < 0 ? Cell() : Cell::ofInteger(tsql::storedLength(definition->columns[static_cast<std::size_t>(found)].type));
}

Cell Engine::objectProperty(std::int64_t id, std::string_view property) {
    const StoredObject* object = store_.findById(id);
    if (!object)
        return {};
    const auto flag = [](bool is) { return Cell::ofInteger(is ? 1 : 0); };
    if (tsql::sameName(property, "IsTable") || tsql::sameName(property, "IsUserTable"))
        return flag(object->kind == "U");
    if (tsql::sameName(property, "IsView"))
        return flag(object->kind == "V");
    if (tsql::sameName(property, "IsProcedure"))
        return flag(object->kind == "P");
    if (tsql::sameName(property, "IsTrigger"))
        return flag(object->kind == "TR");
    if (tsql::sameName(property, "IsScalarFunction"))
        return flag(object->kind == "FN");
    if (tsql::sameName(property, "IsInlineFunction") || tsql::sameName(property, "IsTableFunction"))
        return flag(object->kind == "IF");
    if (tsql::sameName(property, "TableHasIdentity")) {
        const std::shared_ptr<const tsql::TableDef> table = store_.tableById(id);
        return table ? flag(table->identityColumn() >= 0) : Cell();
    }
    if (tsql::sameName(property, "TableHasPrimaryKey")) {
        const std::shared_ptr<const tsql::TableDef> table = store_.tableById(id);
        return table ? flag(table->primaryKey() != nullptr) : Cell();
    }
    return flag(false);
}

} // namespace merchantry::db::embedded
