#include "app/db/tsql/binder.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>
#include <utility>

namespace merchantry::db::tsql {
namespace {

// SQLite takes so many selects in one.
constexpr int kDeepestQuery = 480;

// A column of the result as its readers see it; with the table's column behind it where each row is one of the table.
Column shownColumn(const BoundColumn& bound, const BoundQuery& query) {
    const Typed& value = bound.value;
    Column column;
    column.name = bound.name;
    column.type = value.type.kind == TypeKind::Null ? simpleType(TypeKind::Int) : value.type;
    column.nullable = value.nullable;
    if (!value.table || value.column < 0 || query.grouped || query.op != SetOperator::None || query.distinct)
        return column;
    const ColumnDef& definition = value.table->columns[static_cast<std::size_t>(value.column)];
    column.baseTable = value.table->name;
    column.baseColumn = definition.name;
    column.identity = definition.identity;
    column.computed = definition.computed != nullptr;
    return column;
}

// The table of SELECT INTO, with the columns of the result; the first identity column goes on counting.
std::shared_ptr<const TableDef> tableToMake(const BoundQuery& bound, const std::vector<Column>& columns, const std::string& name,
                                            int line) {
    auto table = std::make_shared<TableDef>();
    table->name = name;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Column& column = columns[i];
        if (column.name.empty())
            throw syntaxError(1038, "An object or column name is missing or empty.", line);
        if (table->find(column.name) >= 0)
            throw nameError(2705,
                            "Column names in each table must be unique. Column name '" + column.name + "' in table '" + name +
                                "' is specified more than once.",
                            line);
        ColumnDef definition;
        definition.name = column.name;
        definition.type = column.type;
        definition.nullable = column.nullable;
        const Typed& value = bound.columns[i].value;
        if (column.identity && value.table && table->identityColumn() < 0) {
            const ColumnDef& from = value.table->columns[static_cast<std::size_t>(value.column)];
            definition.identity = true;
            definition.seed = from.seed;
            definition.increment = from.increment;
        }
        table->columns.push_back(std::move(definition));
    }
    return table;
}

// The columns of a star, which must all be groups where the query has any.
void checkGrouped(const std::vector<BoundColumn>& columns, std::size_t first, const Scope& scope, int line) {
    for (std::size_t i = first; scope.grouped && i < columns.size(); ++i) {
        const bool isGroup = std::any_of(scope.groups.begin(), scope.groups.end(),
                                         [&](const Group& group) { return isSame(&scope, group.origin, columns[i].origin); });
        if (!isGroup)
            throw nameError(8120,
                            "Column '" + columns[i].name +
                                "' is invalid in the select list because it is not contained in either an "
                                "aggregate function or the GROUP BY clause.",
                            line);
    }
}

// The column of the result that a number or a name means; -1 for neither.
int outputNamed(const Expr& expr, const BoundQuery& result) {
    if (expr.kind == ExprKind::Integer) {
        const long place = std::stol(expr.text.substr(0, 9));
        if (place < 1 || static_cast<std::size_t>(place) > result.columns.size())
            throw syntaxError(108,
                              "The ORDER BY position number " + expr.text + " is out of range of the number of items in the select list.",
                              expr.line);
        return static_cast<int>(place) - 1;
    }
    if (expr.kind != ExprKind::Column || expr.name.parts.size() != 1)
        return -1;
    const auto found = std::find_if(result.columns.begin(), result.columns.end(),
                                    [&](const BoundColumn& column) { return sameName(column.name, expr.name.last()); });
    return found == result.columns.end() ? -1 : static_cast<int>(found - result.columns.begin());
}

} // namespace

std::string Binder::nextAlias() {
    return "t" + std::to_string(++aliases_);
}

QueryPlan Binder::query(const Query& query) {
    maxRecursion_ = query.maxRecursion;
    if (query.core) {
        for (const SelectItem& item : query.core->items) {
            if (!item.variable.empty())
                assigned_.insert(variableSlot(item.variable, item.line));
        }
    }
    const std::unique_ptr<BoundQuery> bound = bindQuery(query, true);
    return plan(*bound, query);
}

QueryPlan Binder::plan(const BoundQuery& bound, const Query& query) {
    QueryPlan plan;
    const SelectCore* core = query.core.get();
    if (core)
        noteAssigned(*core, plan);
    for (const BoundColumn& column : bound.columns)
        plan.columns.push_back(shownColumn(column, bound));
    plan.sql.text = render(bound, nullptr, bound.orderBy.empty());
    plan.sql.places = places_;
    if (core && !core->into.empty())
        plan.into = tableToMake(bound, plan.columns, core->into.last(), query.line);
    return plan;
}

// The variables that the items of a SELECT are assigned to: all of them, or none.
void Binder::noteAssigned(const SelectCore& core, QueryPlan& plan) const {
    const auto isAssigned = [](const SelectItem& item) { return !item.variable.empty(); };
    if (std::none_of(core.items.begin(), core.items.end(), isAssigned))
        return;
    for (const SelectItem& item : core.items) {
        if (!isAssigned(item))
            throw syntaxError(141,
                              "A SELECT statement that assigns a value to a variable must not be combined with data-retrieval operations.",
                              item.line);
        plan.assignTo.push_back(variableSlot(item.variable, item.line));
        plan.assignOps.push_back(item.op);
    }
}

std::unique_ptr<BoundQuery> Binder::bindSubquery(const Query& query) {
    return bindQuery(query, false);
}

// With its own common tables and one level deeper than the query around it.
std::unique_ptr<BoundQuery> Binder::bindQueryBody(const Query& query) {
    const Restore depth(depth_, depth_ + 1);
    if (depth_ > kDeepestQuery)
        throw syntaxError(191,
                          "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller queries.",
                          query.line);
    const CommonTablesScope known(commonTables_, query.commonTables);
    return query.core ? bindCore(query, *query.core) : bindSetOperation(query);
}

std::unique_ptr<BoundQuery> Binder::bindQuery(const Query& query, bool topLevel) {
    std::unique_ptr<BoundQuery> result = bindQueryBody(query);
    if (!topLevel && !query.orderBy.empty() && !result->hasTop && !query.offset)
        throw syntaxError(
            1033,
            "The ORDER BY clause is invalid in views, inline functions, derived tables, subqueries, and common table expressions, "
            "unless TOP, OFFSET or FOR XML is also specified.",
            query.line);
    if (query.offset) {
        const std::string offset = convertTo(bindValue(*query.offset), simpleType(TypeKind::BigInt)).sql;
        const std::string fetch = query.fetch ? convertTo(bindValue(*query.fetch), simpleType(TypeKind::BigInt)).sql : "-1";
        result->limit = " LIMIT " + fetch + " OFFSET " + offset;
    }
    return result;
}

std::unique_ptr<BoundQuery> Binder::bindSetOperation(const Query& query) {
    auto result = std::make_unique<BoundQuery>();
    result->op = query.op;
    result->left = bindQuery(*query.left, false);
    result->right = bindQuery(*query.right, false);
    if (result->left->columns.size() != result->right->columns.size())
        throw syntaxError(205,
                          "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal number of expressions in "
                          "their target lists.",
                          query.line);
    for (std::size_t i = 0; i < result->left->columns.size(); ++i) {
        const BoundColumn& left = result->left->columns[i];
        const BoundColumn& right = result->right->columns[i];
        BoundColumn column;
        column.name = left.name;
        column.value.type = commonType(left.value.type, right.value.type, query.line);
        requireImplicit(left.value.type, column.value.type, query.line);
        requireImplicit(right.value.type, column.value.type, query.line);
        column.value.nullable = left.value.nullable || right.value.nullable;
        column.value.sql = "_c" + std::to_string(i);
        column.value.isColumn = true;
        result->columns.push_back(std::move(column));
    }
    result->grouped = true;
    if (!query.orderBy.empty())
        result->orderBy = orderBy(query.orderBy, nullptr, *result);
    return result;
}

std::unique_ptr<BoundQuery> Binder::bindCore(const Query& query, const SelectCore& core) {
    auto result = std::make_unique<BoundQuery>();
    Scope scope;
    scope.outer = scope_;
    scope.alone = core.alone && core.from[0]->kind == TableRef::Kind::Table;
    const Restore here(scope_, &scope);
    bindSource(core, scope, *result);
    if (core.rollup || core.cube)
        throw unsupported(core.rollup ? "GROUP BY ... WITH ROLLUP" : "GROUP BY ... WITH CUBE", core.line);
    bindGroups(core, scope);
    const bool aggregates = containsAggregate(core) || core.having;
    scope.grouped = aggregates || !core.groupBy.empty();
    result->grouped = scope.grouped;
    result->oneRow = (aggregates && core.groupBy.empty()) || core.from.empty();
    result->distinct = core.distinct;
    bindItems(core, scope, *result);
    bindHaving(core, scope, *result);
    if (!query.orderBy.empty())
        result->orderBy = orderBy(query.orderBy, &scope, *result);
    if (core.top)
        bindTop(*core.top, *result);
    if (!result->grouped && !result->distinct) {
        for (const Source& source : scope.sources)
            result->bases.insert(result->bases.end(), source.bases.begin(), source.bases.end());
    }
    return result;
}

void Binder::bindSource(const SelectCore& core, Scope& scope, BoundQuery& result) {
    if (!core.from.empty())
        result.tail = " FROM " + bindFrom(core.from, scope);
    if (!core.where)
        return;
    const Restore clause(scope.clause, &kWhereClause);
    result.tail += " WHERE " + bindCondition(*core.where);
}

void Binder::bindGroups(const SelectCore& core, Scope& scope) {
    const Restore clause(scope.clause, &kGroupByClause);
    std::vector<Group> groups;
    for (const ExprPtr& expr : core.groupBy) {
        if (containsAggregate(*expr))
            throw syntaxError(
                144, "Cannot use an aggregate or a subquery in an expression used for the group by list of a GROUP BY clause.", expr->line);
        Typed value = bindValue(*expr);
        if (value.literal)
            throw syntaxError(164, "Each GROUP BY expression must contain at least one column that is not an outer reference.", expr->line);
        groups.push_back({std::move(value), originOf(scope_, *expr)});
    }
    scope.groups = std::move(groups);
}

void Binder::bindItems(const SelectCore& core, Scope& scope, BoundQuery& result) {
    const Restore clause(scope.clause, &kSelectClause);
    for (const SelectItem& item : core.items) {
        if (!item.star) {
            result.columns.push_back(bindItem(item, !scope.grouped && !core.distinct));
            continue;
        }
        const std::size_t first = result.columns.size();
        expandStar(item, scope, result.columns);
        checkGrouped(result.columns, first, scope, item.line);
    }
}

// One that is assigned to a variable takes its value with each row, where the rows are those of the query.
BoundColumn Binder::bindItem(const SelectItem& item, bool isRow) {
    BoundColumn column;
    column.value = bindValue(*item.expr);
    column.name = item.alias;
    if (column.name.empty() && item.expr->kind == ExprKind::Column)
        column.name = item.expr->name.last();
    if (item.variable.empty()) {
        column.origin = originOf(scope_, *item.expr);
        return column;
    }
    const int slot = variableSlot(item.variable, item.line);
    const SqlType& type = context_.variables[static_cast<std::size_t>(slot)].type;
    if (item.op != "=") {
        Typed before;
        before.type = type;
        before.sql = "ts_var(" + std::to_string(slot) + ")";
        column.value = calculated(item.op[0], std::move(before), std::move(column.value), item.line);
    }
    column.value = implicitTo(std::move(column.value), type, item.line);
    column.value.isColumn = false;
    if (isRow)
        column.value.sql = "ts_setvar(" + std::to_string(slot) + "," + column.value.sql + ")";
    return column;
}

// GROUP BY and HAVING, behind what the items needed.
void Binder::bindHaving(const SelectCore& core, Scope& scope, BoundQuery& result) {
    const char* before = " GROUP BY ";
    for (const Group& group : scope.groups)
        result.tail += std::exchange(before, ",") + collated(group.value);
    if (!core.having)
        return;
    const Restore clause(scope.clause, &kHavingClause);
    result.tail += " HAVING " + bindCondition(*core.having);
}

void Binder::expandStar(const SelectItem& item, Scope& scope, std::vector<BoundColumn>& columns) {
    bool found = false;
    for (std::size_t i = 0; i < scope.sources.size(); ++i) {
        Source& source = scope.sources[i];
        if (!item.starOf.empty() && !sameName(source.exposed, item.starOf.last()))
            continue;
        found = true;
        complete(source);
        for (std::size_t c = 0; c < source.columns.size(); ++c) {
            columns.push_back(source.columns[c]);
            columns.back().origin.place = ColumnPlace{&scope, i, c};
        }
    }
    if (!item.starOf.empty() && !found)
        throw nameError(4104, "The multi-part identifier \"" + item.starOf.toText() + ".*\" could not be bound.", item.line);
    if (!found)
        throw syntaxError(263, "Must specify table to select from.", item.line);
}

// ---- ORDER BY, TOP

std::string Binder::orderBy(const std::vector<OrderItem>& items, Scope* scope, const BoundQuery& result) {
    std::optional<Restore<const Clause*>> clause;
    if (scope)
        clause.emplace(scope->clause, &kOrderByClause);
    std::string sql;
    std::vector<OrderKey> keys;
    for (const OrderItem& item : items) {
        OrderKey key = orderKey(item, scope, result);
        const bool again = std::any_of(keys.begin(), keys.end(), [&](const OrderKey& other) {
            return (key.output >= 0 && key.output == other.output) || isSame(scope_, key.origin, other.origin);
        });
        if (again)
            throw syntaxError(
                169, "A column has been specified more than once in the order by list. Columns in the order by list must be unique.",
                item.expr->line);
        sql += (sql.empty() ? " ORDER BY " : ",") + collated(key.value) + (item.descending ? " DESC" : "");
        keys.push_back(std::move(key));
    }
    return sql;
}

Binder::OrderKey Binder::orderKey(const OrderItem& item, Scope* scope, const BoundQuery& result) {
    const Expr& expr = *item.expr;
    OrderKey key;
    key.output = outputNamed(expr, result);
    if (key.output < 0) {
        if (!scope && expr.kind == ExprKind::Column)
            throw nameError(207, "Invalid column name '" + expr.name.last() + "'.", expr.line);
        if (!scope)
            throw syntaxError(
                104, "ORDER BY items must appear in the select list if the statement contains a UNION, INTERSECT or EXCEPT operator.",
                expr.line);
        key.value = bindValue(expr);
        if (key.value.literal)
            throw syntaxError(408, "A constant expression was encountered in the ORDER BY list, position 1.", expr.line);
        key.origin = originOf(scope_, expr);
        const auto same = std::find_if(result.columns.begin(), result.columns.end(),
                                       [&](const BoundColumn& column) { return isSame(scope_, column.origin, key.origin); });
        if (same != result.columns.end())
            key.output = static_cast<int>(same - result.columns.begin());
        else if (result.distinct)
            throw syntaxError(145, "ORDER BY items must appear in the select list if SELECT DISTINCT is specified.", expr.line);
    }
    if (key.output < 0)
        return key;
    const BoundColumn& column = result.columns[static_cast<std::size_t>(key.output)];
    key.origin = column.origin;
    key.value = column.value;
    key.value.sql = "_c" + std::to_string(key.output);
    return key;
}

void Binder::bindTop(const TopClause& top, BoundQuery& result) {
    result.hasTop = true;
    if (top.percent && top.count->kind == ExprKind::Integer && top.count->text == "100") // all rows, as views with an order ask for
        return;
    if (top.percent) { // so many of a hundred, rounded up
        const Typed share = convertTo(bindValue(*top.count), simpleType(TypeKind::Int));
        const Restore unordered(result.orderBy, std::string());
        result.limit = " LIMIT (SELECT (COUNT(*)*" + share.sql + "+99)/100 FROM (" + render(result) + "))";
        return;
    }
    if (top.ties)
        throw unsupported("TOP ... WITH TIES", top.count->line);
    const Typed count = convertTo(bindValue(*top.count), simpleType(TypeKind::BigInt));
    result.limit = " LIMIT " + (count.literal ? count.sql : "ts_top(" + count.sql + ")");
    if (count.literal && count.literal->integer <= 1)
        result.oneRow = true;
}

} // namespace merchantry::db::tsql
