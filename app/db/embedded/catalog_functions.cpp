#include "app/db/embedded/catalog_functions.h"
#include "app/db/embedded/constraint_ids.h"
#include "base/text.h"

#include "app/db/tsql/token.h"
#include "app/db/tsql/types.h"
#include "base/lettercase.h"

#include <algorithm>

namespace merchantry::db::embedded {

using tsql::Cell;

namespace {

Cell flag(bool is) {
    return Cell::ofInteger(is ? 1 : 0);
}

// What a property gives, by name and without regard to case.
template <class... Asked> struct Property {
    std::string_view name;
    Cell (*value)(Asked...);
};

template <class... Asked, std::size_t kCount>
const Property<Asked...>* find(const Property<Asked...> (&properties)[kCount], std::string_view name) {
    const auto found = std::find_if(std::begin(properties), std::end(properties),
                                    [&](const Property<Asked...>& one) { return tsql::sameName(one.name, name); });
    return found == std::end(properties) ? nullptr : found;
}

template <const char* kKind> Cell isKind(const StoredObject& object, const tsql::TableDef*) {
    return flag(object.kind == kKind);
}

constexpr char kTable[] = "U";
constexpr char kView[] = "V";
constexpr char kProcedure[] = "P";
constexpr char kTrigger[] = "TR";
constexpr char kScalarFunction[] = "FN";
constexpr char kTableFunction[] = "IF";

using ObjectProperty = Property<const StoredObject&, const tsql::TableDef*>;
constexpr ObjectProperty kObjectProperties[] = {
    {"IsTable", isKind<kTable>},
    {"IsUserTable", isKind<kTable>},
    {"IsView", isKind<kView>},
    {"IsProcedure", isKind<kProcedure>},
    {"IsTrigger", isKind<kTrigger>},
    {"IsScalarFunction", isKind<kScalarFunction>},
    {"IsInlineFunction", isKind<kTableFunction>},
    {"IsTableFunction", isKind<kTableFunction>},
    {"TableHasIdentity",
     [](const StoredObject&, const tsql::TableDef* table) { return table ? flag(table->identityColumn() >= 0) : Cell(); }},
    {"TableHasPrimaryKey",
     [](const StoredObject&, const tsql::TableDef* table) { return table ? flag(table->primaryKey() != nullptr) : Cell(); }},
};

using ColumnProperty = Property<const tsql::ColumnDef&, int>;
constexpr ColumnProperty kColumnProperties[] = {
    {"AllowsNull", [](const tsql::ColumnDef& column, int) { return flag(column.nullable); }},
    {"IsIdentity", [](const tsql::ColumnDef& column, int) { return flag(column.identity); }},
    {"IsComputed", [](const tsql::ColumnDef& column, int) { return flag(column.computed != nullptr); }},
    {"ColumnId", [](const tsql::ColumnDef&, int place) { return Cell::ofInteger(place + 1); }},
    {"Precision", [](const tsql::ColumnDef& column, int) { return Cell::ofInteger(tsql::asDecimal(column.type).precision); }},
    {"Scale",
     [](const tsql::ColumnDef& column, int) { return Cell::ofInteger(column.type.kind == TypeKind::Decimal ? column.type.scale : 0); }},
};

} // namespace

tsql::ObjectName objectNameOf(std::string_view text) {
    tsql::ObjectName name;
    for (std::string part : split(trimmed(text), ".")) {
        if (part.size() > 1 && ((part.front() == '[' && part.back() == ']') || (part.front() == '"' && part.back() == '"')))
            part = part.substr(1, part.size() - 2);
        name.parts.push_back(std::move(part));
    }
    return name;
}

std::shared_ptr<const tsql::TableDef> CatalogFunctions::table(std::string_view name) {
    return catalog_.table(objectNameOf(name));
}

// ---- objects

Cell CatalogFunctions::objectId(std::string_view name, std::string_view kind) {
    const tsql::ObjectName object = objectNameOf(name);
    const std::string wanted = upperCase(trimmed(kind));
    if (!object.last().empty() && object.last().front() == '#') {
        const std::shared_ptr<const tsql::TableDef> found = catalog_.table(object);
        return found && (wanted.empty() || wanted == "U") ? Cell::ofInteger(found->id) : Cell();
    }
    const StoredObject* found = store_.find(object.last());
    if (!found)
        return constraintId(object.last(), wanted);
    if (found->kind == "IX" || found->kind == "TY" || (!wanted.empty() && wanted != found->kind))
        return {};
    return Cell::ofInteger(found->id);
}

Cell CatalogFunctions::constraintId(std::string_view name, std::string_view kind) {
    Cell id;
    for (const StoredObject* object : store_.all()) {
        if (object->kind != "U")
            continue;
        eachConstraint(*store_.tableById(object->id), [&](const Constraint& one) {
            if (id.isNull() && tsql::sameName(one.name, name) && (kind.empty() || kind == one.kind))
                id = Cell::ofInteger(one.id);
        });
        if (!id.isNull())
            break;
    }
    return id;
}

Cell CatalogFunctions::objectName(std::int64_t id) {
    const StoredObject* found = store_.findById(id);
    return found ? Cell::ofText(found->name) : Cell();
}

Cell CatalogFunctions::objectProperty(std::int64_t id, std::string_view property) {
    const StoredObject* object = store_.findById(id);
    if (!object)
        return {};
    const ObjectProperty* known = find(kObjectProperties, property);
    return known ? known->value(*object, store_.tableById(id).get()) : flag(false);
}

// ---- columns

Cell CatalogFunctions::columnInfo(std::int64_t table, std::string_view column, std::string_view property) {
    const std::shared_ptr<const tsql::TableDef> definition = catalog_.tableById(table);
    const int place = definition ? definition->find(column) : -1;
    const ColumnProperty* known = find(kColumnProperties, property);
    return place < 0 || !known ? Cell() : known->value(definition->columns[static_cast<std::size_t>(place)], place);
}

Cell CatalogFunctions::columnName(std::int64_t table, std::int64_t number) {
    const std::shared_ptr<const tsql::TableDef> definition = catalog_.tableById(table);
    if (!definition || number < 1 || static_cast<std::size_t>(number) > definition->columns.size())
        return {};
    return Cell::ofText(definition->columns[static_cast<std::size_t>(number) - 1].name);
}

Cell CatalogFunctions::columnLength(std::string_view table, std::string_view column) {
    const std::shared_ptr<const tsql::TableDef> definition = this->table(table);
    const int found = definition ? definition->find(column) : -1;
    return found < 0 ? Cell() : Cell::ofInteger(tsql::storedLength(definition->columns[static_cast<std::size_t>(found)].type));
}

} // namespace merchantry::db::embedded
