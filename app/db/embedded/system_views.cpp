#include "app/db/embedded/constraint_ids.h"
#include "app/db/embedded/session_catalog.h"

#include "app/db/tsql/types.h"

#include <functional>

namespace merchantry::db::embedded {

using tsql::Cell;

namespace {

const SqlType kName{TypeKind::NVarChar, 128, 0, 0};
const SqlType kInt{TypeKind::Int, 0, 0, 0};
const SqlType kSmall{TypeKind::SmallInt, 0, 0, 0};
const SqlType kTiny{TypeKind::TinyInt, 0, 0, 0};
const SqlType kBit{TypeKind::Bit, 0, 0, 0};
const SqlType kKind{TypeKind::Char, 2, 0, 0};
const SqlType kDate{TypeKind::DateTime, 0, 0, 0};
const SqlType kText{TypeKind::NVarChar, 4000, 0, 0};
const SqlType kWord{TypeKind::VarChar, 60, 0, 0};

Cell number(std::int64_t value) {
    return Cell::ofInteger(value);
}

Cell flag(bool value) {
    return Cell::ofInteger(value ? 1 : 0);
}

Cell text(const std::string& value) {
    return Cell::ofText(value);
}

Cell kind(std::string value) {
    value.resize(2, ' ');
    return Cell::ofText(std::move(value));
}

std::string describe(const std::string& kind) {
    if (kind == "U")
        return "USER_TABLE";
    if (kind == "V")
        return "VIEW";
    if (kind == "P")
        return "SQL_STORED_PROCEDURE";
    if (kind == "TR")
        return "SQL_TRIGGER";
    if (kind == "FN")
        return "SQL_SCALAR_FUNCTION";
    if (kind == "PK")
        return "PRIMARY_KEY_CONSTRAINT";
    if (kind == "UQ")
        return "UNIQUE_CONSTRAINT";
    if (kind == "F")
        return "FOREIGN_KEY_CONSTRAINT";
    if (kind == "C")
        return "CHECK_CONSTRAINT";
    if (kind == "D")
        return "DEFAULT_CONSTRAINT";
    return "SQL_INLINE_TABLE_VALUED_FUNCTION";
}

// An object or constraint as the views of objects show it.
struct Shown {
    std::int64_t id;
    std::string name;
    std::string kind;
    std::int64_t parent;
    std::int64_t createdMs;
    std::string definition;
};

void eachObject(StoreCatalog& catalog, const std::function<void(const Shown&)>& show) {
    for (const StoredObject* object : catalog.all()) {
        if (object->kind == "IX" || object->kind == "TY")
            continue;
        show({object->id, object->name, object->kind, object->parent, object->createdMs, object->source});
        if (object->kind == "U")
            eachConstraint(*catalog.tableById(object->id), [&](const Constraint& one) {
                show({one.id, one.name, one.kind, object->id, object->createdMs, one.definition});
            });
    }
}

Rowset objects(StoreCatalog& catalog, const std::string&) {
    Rowset rows;
    eachObject(catalog, [&](const Shown& one) {
        rows.push_back({text(one.name), number(one.id), number(1), number(one.parent), kind(one.kind), text(describe(one.kind)),
                        number(one.createdMs), number(one.createdMs), flag(false)});
    });
    return rows;
}

// What old scripts ask for as sysstat & 0xf.
int oldStatus(std::string_view kind) {
    static constexpr std::pair<std::string_view, int> kStates[] = {{"V", 2},  {"U", 3},  {"P", 4},  {"D", 6}, {"TR", 8},
                                                                   {"PK", 9}, {"UQ", 9}, {"C", 10}, {"F", 11}};
    const auto found = std::find_if(std::begin(kStates), std::end(kStates), [&](const auto& state) { return state.first == kind; });
    return found == std::end(kStates) ? 0 : found->second;
}

Rowset oldObjects(StoreCatalog& catalog, const std::string&) {
    Rowset rows;
    eachObject(catalog, [&](const Shown& one) {
        rows.push_back({text(one.name), number(one.id), kind(one.kind), number(1), number(one.parent), number(one.createdMs),
                        kind(one.kind), number(oldStatus(one.kind))});
    });
    return rows;
}

template <const char* kWanted> Rowset objectsOfKind(StoreCatalog& catalog, const std::string&) {
    Rowset rows;
    eachObject(catalog, [&](const Shown& one) {
        if (one.kind == kWanted)
            rows.push_back({text(one.name), number(one.id), number(1), number(one.parent), kind(one.kind), text(describe(one.kind)),
                            number(one.createdMs), number(one.createdMs), flag(false), text(one.definition)});
    });
    return rows;
}

Rowset keyConstraints(StoreCatalog& catalog, const std::string&) {
    Rowset rows;
    eachObject(catalog, [&](const Shown& one) {
        if (one.kind == "PK" || one.kind == "UQ")
            rows.push_back({text(one.name), number(one.id), number(1), number(one.parent), kind(one.kind), text(describe(one.kind)),
                            number(one.createdMs), number(one.createdMs), flag(false), text("")});
    });
    return rows;
}

Rowset triggers(StoreCatalog& catalog, const std::string&) {
    Rowset rows;
    for (const StoredObject* object : catalog.all()) {
        if (object->kind == "TR")
            rows.push_back({text(object->name), number(object->id), number(object->parent), kind("TR"), flag(!object->enabled),
                            number(object->createdMs)});
    }
    return rows;
}

std::string userTypeName(const SqlType& type) {
    return std::string(type.kindName());
}

int precisionOf(const SqlType& type) {
    if (type.isFloat())
        return type.kind == TypeKind::Float ? 53 : 24;
    return type.isText() || type.isBinary() ? 0 : type.isDate() ? 23 : tsql::asDecimal(type).precision;
}

int scaleOf(const SqlType& type) {
    return type.kind == TypeKind::Decimal || type.isMoney() ? tsql::asDecimal(type).scale : 0;
}

void eachTable(StoreCatalog& catalog, const std::function<void(const tsql::TableDef&)>& show) {
    for (const StoredObject* object : catalog.all()) {
        if (object->kind == "U")
            show(*catalog.tableById(object->id));
    }
}

Rowset columns(StoreCatalog& catalog, const std::string&) {
    Rowset rows;
    eachTable(catalog, [&](const tsql::TableDef& table) {
        std::int64_t place = 0;
        for (const tsql::ColumnDef& column : table.columns) {
            rows.push_back({number(table.id), text(column.name), number(++place), number(static_cast<int>(column.type.kind)),
                            number(tsql::storedLength(column.type)), number(precisionOf(column.type)), number(scaleOf(column.type)),
                            flag(column.nullable), flag(column.identity), flag(column.computed != nullptr)});
        }
    });
    return rows;
}

Rowset oldColumns(StoreCatalog& catalog, const std::string&) {
    Rowset rows;
    eachTable(catalog, [&](const tsql::TableDef& table) {
        std::int64_t place = 0;
        for (const tsql::ColumnDef& column : table.columns) {
            rows.push_back({text(column.name), number(table.id), number(static_cast<int>(column.type.kind)),
                            number(tsql::storedLength(column.type)), number(++place), flag(column.nullable),
                            flag(column.computed != nullptr)});
        }
    });
    return rows;
}

Rowset indexes(StoreCatalog& catalog, const std::string&) {
    Rowset rows;
    eachTable(catalog, [&](const tsql::TableDef& table) {
        std::int64_t place = 1;
        for (const tsql::KeyDef& key : table.keys) {
            const bool clustered = key.clustered || key.primary;
            rows.push_back({number(table.id), text(key.name), number(clustered ? 1 : ++place), number(clustered ? 1 : 2),
                            text(clustered ? "CLUSTERED" : "NONCLUSTERED"), flag(true), flag(key.primary), flag(!key.primary)});
        }
        for (const tsql::IndexDef& index : table.indexes)
            rows.push_back({number(table.id), text(index.name), number(index.clustered ? 1 : ++place), number(index.clustered ? 1 : 2),
                            text(index.clustered ? "CLUSTERED" : "NONCLUSTERED"), flag(index.unique), flag(false), flag(false)});
    });
    return rows;
}

Rowset oldIndexes(StoreCatalog& catalog, const std::string&) {
    Rowset rows;
    eachTable(catalog, [&](const tsql::TableDef& table) {
        std::int64_t place = 0;
        for (const tsql::KeyDef& key : table.keys)
            rows.push_back({number(table.id), text(key.name), number(++place)});
        for (const tsql::IndexDef& index : table.indexes)
            rows.push_back({number(table.id), text(index.name), number(++place)});
    });
    return rows;
}

Rowset foreignKeys(StoreCatalog& catalog, const std::string&) {
    Rowset rows;
    eachTable(catalog, [&](const tsql::TableDef& table) {
        auto key = table.foreignKeys.begin();
        eachConstraint(table, [&](const Constraint& one) {
            if (one.kind != std::string_view("F"))
                return;
            const StoredObject* other = catalog.find(key->table);
            rows.push_back(
                {text(key->name), number(one.id), number(table.id), number(other ? other->id : 0), kind("F"), flag(!key->enabled)});
            ++key;
        });
    });
    return rows;
}

Rowset databases(StoreCatalog&, const std::string& database) {
    return {{text("master"), number(1)}, {text(database), number(5)}};
}

Rowset schemas(StoreCatalog&, const std::string&) {
    return {{text("dbo"), number(1)}};
}

Rowset infoTables(StoreCatalog& catalog, const std::string& database) {
    Rowset rows;
    for (const StoredObject* object : catalog.all()) {
        if (object->kind == "U" || object->kind == "V")
            rows.push_back({text(database), text("dbo"), text(object->name), text(object->kind == "U" ? "BASE TABLE" : "VIEW")});
    }
    return rows;
}

Rowset infoColumns(StoreCatalog& catalog, const std::string& database) {
    Rowset rows;
    eachTable(catalog, [&](const tsql::TableDef& table) {
        std::int64_t place = 0;
        for (const tsql::ColumnDef& column : table.columns) {
            const SqlType& type = column.type;
            const bool sized = type.isText() || type.isBinary();
            const bool numeric = type.isWhole() || type.isMoney() || type.kind == TypeKind::Decimal || type.isFloat();
            rows.push_back({text(database), text("dbo"), text(table.name), text(column.name), number(++place),
                            column.defaultValue ? text("(" + column.defaultValue->source + ")") : Cell(),
                            text(column.nullable ? "YES" : "NO"), text(userTypeName(type)), sized ? number(type.length) : Cell(),
                            numeric && type.kind != TypeKind::Bit ? number(precisionOf(type)) : Cell(),
                            numeric && !type.isFloat() && type.kind != TypeKind::Bit ? number(scaleOf(type)) : Cell()});
        }
    });
    return rows;
}

Rowset infoRoutines(StoreCatalog& catalog, const std::string&) {
    Rowset rows;
    for (const StoredObject* object : catalog.all()) {
        if (object->kind == "P" || object->kind == "FN" || object->kind == "IF")
            rows.push_back({text(object->name), text(object->kind == "P" ? "PROCEDURE" : "FUNCTION"), text(object->source)});
    }
    return rows;
}

constexpr char kTables[] = "U";
constexpr char kViews[] = "V";
constexpr char kProcedures[] = "P";
constexpr char kChecks[] = "C";
constexpr char kDefaults[] = "D";

using Columns = std::vector<std::pair<const char*, SqlType>>;

Columns objectColumns(bool withDefinition) {
    Columns all = {{"name", kName},      {"object_id", kInt},    {"schema_id", kInt},    {"parent_object_id", kInt}, {"type", kKind},
                   {"type_desc", kName}, {"create_date", kDate}, {"modify_date", kDate}, {"is_ms_shipped", kBit}};
    if (withDefinition)
        all.emplace_back("definition", kText);
    return all;
}

} // namespace

const std::vector<SystemView>& systemViews() {
    static const std::vector<SystemView> kAll = {
        {"sys.objects", objectColumns(false), objects},
        {"sys.tables", objectColumns(true), objectsOfKind<kTables>},
        {"sys.views", objectColumns(true), objectsOfKind<kViews>},
        {"sys.procedures", objectColumns(true), objectsOfKind<kProcedures>},
        {"sys.check_constraints", objectColumns(true), objectsOfKind<kChecks>},
        {"sys.default_constraints", objectColumns(true), objectsOfKind<kDefaults>},
        {"sys.key_constraints", objectColumns(true), keyConstraints},
        {"sys.triggers",
         {{"name", kName}, {"object_id", kInt}, {"parent_id", kInt}, {"type", kKind}, {"is_disabled", kBit}, {"create_date", kDate}},
         triggers},
        {"sys.columns",
         {{"object_id", kInt},
          {"name", kName},
          {"column_id", kInt},
          {"user_type_id", kInt},
          {"max_length", kSmall},
          {"precision", kTiny},
          {"scale", kTiny},
          {"is_nullable", kBit},
          {"is_identity", kBit},
          {"is_computed", kBit}},
         columns},
        {"sys.indexes",
         {{"object_id", kInt},
          {"name", kName},
          {"index_id", kInt},
          {"type", kTiny},
          {"type_desc", kName},
          {"is_unique", kBit},
          {"is_primary_key", kBit},
          {"is_unique_constraint", kBit}},
         indexes},
        {"sys.foreign_keys",
         {{"name", kName},
          {"object_id", kInt},
          {"parent_object_id", kInt},
          {"referenced_object_id", kInt},
          {"type", kKind},
          {"is_disabled", kBit}},
         foreignKeys},
        {"sys.databases", {{"name", kName}, {"database_id", kInt}}, databases},
        {"sys.schemas", {{"name", kName}, {"schema_id", kInt}}, schemas},
        {"dbo.sysobjects",
         {{"name", kName},
          {"id", kInt},
          {"xtype", kKind},
          {"uid", kSmall},
          {"parent_obj", kInt},
          {"crdate", kDate},
          {"type", kKind},
          {"sysstat", kSmall}},
         oldObjects},
        {"dbo.syscolumns",
         {{"name", kName},
          {"id", kInt},
          {"xtype", kTiny},
          {"length", kSmall},
          {"colid", kSmall},
          {"isnullable", kInt},
          {"iscomputed", kInt}},
         oldColumns},
        {"dbo.sysindexes", {{"id", kInt}, {"name", kName}, {"indid", kSmall}}, oldIndexes},
        {"dbo.sysdatabases", {{"name", kName}, {"dbid", kSmall}}, databases},
        {"information_schema.tables",
         {{"TABLE_CATALOG", kName}, {"TABLE_SCHEMA", kName}, {"TABLE_NAME", kName}, {"TABLE_TYPE", kWord}},
         infoTables},
        {"information_schema.columns",
         {{"TABLE_CATALOG", kName},
          {"TABLE_SCHEMA", kName},
          {"TABLE_NAME", kName},
          {"COLUMN_NAME", kName},
          {"ORDINAL_POSITION", kInt},
          {"COLUMN_DEFAULT", kText},
          {"IS_NULLABLE", kWord},
          {"DATA_TYPE", kName},
          {"CHARACTER_MAXIMUM_LENGTH", kInt},
          {"NUMERIC_PRECISION", kTiny},
          {"NUMERIC_SCALE", kInt}},
         infoColumns},
        {"information_schema.routines", {{"ROUTINE_NAME", kName}, {"ROUTINE_TYPE", kWord}, {"ROUTINE_DEFINITION", kText}}, infoRoutines},
    };
    return kAll;
}

} // namespace merchantry::db::embedded
