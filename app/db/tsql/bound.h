#pragma once

#include "app/db/tsql/ast.h"
#include "app/db/tsql/catalog.h"
#include "app/db/tsql/convert.h"
#include "app/db/tsql/types.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::db::tsql {

// What binding gives: values with their types, the sources and scopes that names mean, queries whose parts are known.

// A bound expression: SQL for SQLite that gives cells of the type.
struct Typed {
    std::string sql;
    SqlType type;
    bool nullable = true;
    std::optional<Cell> literal;
    bool isPlace = false; // it is only a variable or value of the session
    bool isColumn = false;
    std::shared_ptr<const TableDef> table; // of a plain column
    int column = -1;
    std::string collation; // explicit
    std::string chain;     // the function or operator whose call it is, when more operands can be put behind
};

struct Scope;

// Which column of which source a name means.
struct ColumnPlace {
    const Scope* scope = nullptr;
    std::size_t source = 0;
    std::size_t column = 0;
    bool operator==(const ColumnPlace&) const = default;
};

// What a bound value was written as: two are the same when they name one column, or their expressions are alike. Holds only while its
// scope does.
struct Origin {
    const Expr* expr = nullptr;       // null for what no expression of its own stands for
    std::optional<ColumnPlace> place; // of a plain column
};

struct BoundColumn {
    Typed value;
    std::string name;
    Origin origin;
};

// An expression of GROUP BY.
struct Group {
    Typed value;
    Origin origin;
};

// What may stand in a clause.
struct Clause {
    const char* name; // for 8120, 8121, 8127
    bool aggregates = false;
    bool windows = false;
};
inline constexpr Clause kFromClause{"FROM"};
inline constexpr Clause kWhereClause{"WHERE"};
inline constexpr Clause kGroupByClause{"GROUP BY"};
inline constexpr Clause kSelectClause{"SELECT", true, true};
inline constexpr Clause kHavingClause{"HAVING", true, false};
inline constexpr Clause kOrderByClause{"ORDER BY", true, true};

// A row of a base table that stands behind a row of a source, by its rowid.
struct BaseRow {
    std::shared_ptr<const TableDef> table;
    std::string sql;
};

struct Source {
    std::string exposed; // the name by which columns are qualified
    ObjectName name;     // a table's own, when it has no alias
    std::string sqlAlias;
    std::vector<BoundColumn> columns;
    std::shared_ptr<const TableDef> table; // the columns are those of the table, and made when they are asked for
    std::vector<BaseRow> bases;
    std::int64_t viewId = 0;
    bool isTable = false; // itself: a row of it is a row of the table
    bool grouped = false; // a view that shows no single rows
};

// The sources that a query's names can mean, and the queries around it.
struct Scope {
    Scope* outer = nullptr;
    std::vector<Source> sources;
    bool grouped = false;
    std::vector<Group> groups;
    int insideAggregate = 0;
    bool alone = false;                  // a column needs no table before it
    const Clause* clause = &kFromClause; // where the binder is
};

struct BoundQuery {
    std::vector<BoundColumn> columns;
    // one select
    bool distinct = false;
    std::string tail; // FROM to HAVING
    // or two with an operator
    SetOperator op = SetOperator::None;
    std::unique_ptr<BoundQuery> left;
    std::unique_ptr<BoundQuery> right;
    std::string orderBy;
    std::string limit;
    bool hasTop = false;
    bool ties = false;
    bool oneRow = false;    // never more than one
    bool grouped = false;   // its rows are no rows of tables
    bool hasRowIds = false; // give the rowids of bases as columns _r0, ...
    std::vector<BaseRow> bases;
    std::string level; // of a recursive part: how deep it is
};

// ---- values

// The value in another type, as CAST gives it, or as a column takes it; a literal at once where it can be. A style other than -1 is
// CONVERT's.
Typed convertTo(Typed value, const SqlType& to, ConvertFor purpose = ConvertFor::Value, int style = -1);
// The same where nothing asked for it: throws DbError Type where T-SQL does it only when asked.
Typed implicitTo(Typed value, const SqlType& to, int line, ConvertFor purpose = ConvertFor::Value);
// left op right in the type that T-SQL gives it; throws DbError Type for operands that have no such operator.
Typed calculated(char op, Typed left, Typed right, int line);
// With the collation by which a text is compared.
std::string collated(const Typed& value);
std::string collationOf(const Typed& left, const Typed& right);

// ---- names

// The column of the innermost scope that has one of that name. None when there is none; throws 209 when there are several.
std::optional<ColumnPlace> findColumn(const Scope* innermost, const ObjectName& name, int line, bool* qualifierKnown = nullptr);
Origin originOf(const Scope* scope, const Expr& expr);
// Whether both stand for one value wherever they are asked: alike in all but the way in which names are written.
bool isSame(const Scope* scope, const Origin& one, const Origin& other);
bool isSame(const Scope* scope, const Expr& one, const Expr& other);

// ---- SQL

// The select of a bound query, its columns in the given types or their own; named _c0, _c1, ... unless nobody asks for them by name.
std::string render(const BoundQuery& query, const std::vector<SqlType>* types = nullptr, bool unnamed = false);
std::vector<SqlType> columnTypes(const BoundQuery& query);

} // namespace merchantry::db::tsql
