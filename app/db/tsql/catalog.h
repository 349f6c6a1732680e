#pragma once

#include "app/db/sqltype.h"
#include "app/db/tsql/ast.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::db::tsql {

struct ColumnDef {
    std::string name;
    SqlType type;
    bool nullable = true;
    bool identity = false;
    std::int64_t seed = 1;
    std::int64_t increment = 1;
    std::shared_ptr<const Expr> computed; // its source text is computed->source
    std::shared_ptr<const Expr> defaultValue;
    std::string defaultName;
};

struct CheckDef {
    std::string name;
    std::shared_ptr<const Expr> expr;
    bool enabled = true;
};

// A primary key or unique constraint.
struct KeyDef {
    std::string name;
    bool primary = false;
    bool clustered = false;
    std::vector<IndexColumn> columns;
};

struct ForeignKeyDef {
    std::string name;
    std::vector<std::string> columns;
    std::string table;
    std::vector<std::string> refColumns;
    std::string onDelete; // "", "CASCADE", "SET NULL", "SET DEFAULT"
    std::string onUpdate;
    bool enabled = true;
};

struct IndexDef {
    std::string name;
    bool unique = false;
    bool clustered = false;
    std::vector<IndexColumn> columns;
};

// A table as statements see it. Also a temporary table, a table variable, a catalogue view and the inserted and deleted rows of a trigger.
struct TableDef {
    std::int64_t id = 0;
    std::string name;
    std::string storage; // its name in SQLite, quoted and with its schema
    bool readOnly = false;
    std::vector<ColumnDef> columns;
    std::vector<CheckDef> checks;
    std::vector<KeyDef> keys;
    std::vector<ForeignKeyDef> foreignKeys;
    std::vector<IndexDef> indexes;

    // -1 when there is none.
    int find(std::string_view column) const;
    int identityColumn() const;
    bool isTemporary() const { return !name.empty() && (name[0] == '#' || name[0] == '@'); }
    const KeyDef* primaryKey() const;
};

struct ViewDef {
    std::int64_t id = 0;
    std::string name;
    std::shared_ptr<const CreateViewStatement> statement;
};

struct FunctionDef {
    struct Parameter {
        std::string name;
        SqlType type;
        std::shared_ptr<const Expr> defaultValue;
    };
    std::int64_t id = 0;
    std::string name;
    std::vector<Parameter> parameters;
    SqlType returns;
    std::shared_ptr<const CreateFunctionStatement> statement;
};

// What the binder may ask of a store. Every answer is empty when there is no such thing.
class Catalog {
public:
    virtual ~Catalog() = default;
    virtual std::shared_ptr<const TableDef> table(const ObjectName& name) = 0;
    virtual std::shared_ptr<const ViewDef> view(const ObjectName& name) = 0;
    virtual std::shared_ptr<const FunctionDef> function(const ObjectName& name) = 0;
    // A type made by sp_addtype or CREATE TYPE; nullable says how its columns are when they do not say it themselves.
    virtual bool userType(std::string_view name, SqlType& type, bool& nullable) = 0;
    // Whether INSERT may name the identity column.
    virtual bool identityInsert(const TableDef& table) = 0;
    // The events for which the table has a trigger that stands for the statement; from "insert", "update", "delete".
    virtual bool hasInsteadTrigger(std::int64_t tableOrView, std::string_view event) = 0;
};

// A name as SQLite reads it: "na""me".
std::string quotedName(std::string_view name);
// A text literal of SQLite.
std::string quotedText(std::string_view text);

// The T-SQL text from which the same table can be made again, and the definition that such a tree stands for.
std::string tableSource(const TableDef& table);

} // namespace merchantry::db::tsql
