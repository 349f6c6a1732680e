#pragma once

#include "app/db/tsql/ast.h"
#include "app/db/tsql/catalog.h"
#include "app/db/tsql/typed.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace merchantry::db::tsql {

// What binding gives: the sources and scopes that names mean, and statements as trees of values (typed.h) and sources.

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
    Typed rowId;
};

struct Source {
    std::string exposed; // the name by which columns are qualified
    ObjectName name;     // a table's own, when it has no alias
    std::string alias;   // in SQLite
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

// ---- sources of rows

namespace from {

struct Any;

struct Table {
    std::string storage; // its name in SQLite
    std::string alias;   // empty where nothing asks for it
};

struct Subquery {
    std::shared_ptr<const BoundQuery> query;
    std::string alias;
};

struct Values {
    std::vector<std::vector<Typed>> rows; // each with the same types
    std::string alias;
};

// What the anchor gives, and what the step finds from it, again and again. Both give their depth.
struct Recursive {
    std::string name;
    std::shared_ptr<const BoundQuery> anchor;
    std::shared_ptr<const BoundQuery> step;
    std::string alias;
};

struct Join {
    JoinKind kind;
    std::shared_ptr<const Any> left;
    std::shared_ptr<const Any> right;
    std::optional<Typed> on;
};

struct List { // a, b, c
    std::vector<Any> members;
};

struct Any {
    std::variant<List, Table, Subquery, Values, Recursive, Join> is;
};

} // namespace from

// FROM and WHERE: the rows that a query or change reads.
struct BoundRows {
    std::optional<from::Any> from;
    std::optional<Typed> where;
    std::optional<Typed> limit; // TOP of a change; that of a query is its own
};

struct BoundQuery {
    std::vector<BoundColumn> columns;
    // one select
    bool distinct = false;
    BoundRows rows;
    std::vector<Typed> groups;
    std::optional<Typed> having;
    // or two with an operator
    SetOperator op = SetOperator::None;
    std::unique_ptr<BoundQuery> left;
    std::unique_ptr<BoundQuery> right;
    std::vector<form::Ordered> orderBy;
    std::optional<Typed> limit;
    std::optional<Typed> offset;
    std::optional<Typed> percent; // so many of a hundred rows, rounded up
    bool hasTop = false;
    bool oneRow = false;    // never more than one
    bool grouped = false;   // its rows are no rows of tables
    bool hasRowIds = false; // give the rowids of bases as columns _r0, ...
    std::vector<BaseRow> bases;
    std::optional<Typed> depth; // of a part of a recursion: how deep it is

    bool isLimited() const { return limit || offset || percent; }
};

// ---- changes

// New rows, each a value for every column of the table that is not computed: the given ones, or a single row of expressions over rows read.
struct BoundInsert {
    std::shared_ptr<const TableDef> table;
    std::vector<std::vector<Typed>> rows;
    std::optional<from::Any> from;
};

// New values of columns for the rows of the table whose rowids are read.
struct BoundUpdate {
    std::shared_ptr<const TableDef> table;
    Typed rowId;
    std::map<int, Typed> values; // by column of the table
    BoundRows rows;
    std::string alias;    // of the table among the rows
    bool inPlace = false; // nothing but the table is read
};

struct BoundDelete {
    std::shared_ptr<const TableDef> table;
    Typed rowId;
    BoundRows rows;
    std::string alias;
    bool inPlace = false;
};

// ---- names

// The column of the innermost scope that has one of that name. None when there is none; throws 209 when there are several.
std::optional<ColumnPlace> findColumn(const Scope* innermost, const ObjectName& name, int line, bool* qualifierKnown = nullptr);
Origin originOf(const Scope* scope, const Expr& expr);
// Whether both stand for one value wherever they are asked: alike in all but the way in which names are written.
bool isSame(const Scope* scope, const Origin& one, const Origin& other);
bool isSame(const Scope* scope, const Expr& one, const Expr& other);

// ---- queries

std::vector<SqlType> columnTypes(const BoundQuery& query);
// Brings the columns to these types, one each.
void convertColumns(BoundQuery& query, const std::vector<SqlType>& types);

} // namespace merchantry::db::tsql
