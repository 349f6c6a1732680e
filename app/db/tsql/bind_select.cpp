#include "app/db/tsql/binder.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>
#include <utility>

namespace merchantry::db::tsql {
namespace {

// SQLite takes so many selects in one.
constexpr int kDeepestQuery = 480;

std::string setOperatorSql(SetOperator op) {
    switch (op) {
    case SetOperator::Union:
        return " UNION ";
    case SetOperator::UnionAll:
        return " UNION ALL ";
    case SetOperator::Except:
        return " EXCEPT ";
    default:
        return " INTERSECT ";
    }
}

// Whether a query can stand as an operand without parentheses, which SQLite does not have there.
bool isPlainOperand(const BoundQuery& query, bool isLeft) {
    if (!query.orderBy.empty() || !query.limit.empty())
        return false;
    return query.op == SetOperator::None || isLeft;
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
    const bool assigns =
        core && std::any_of(core->items.begin(), core->items.end(), [](const SelectItem& item) { return !item.variable.empty(); });
    if (assigns) {
        for (const SelectItem& item : core->items) {
            if (item.variable.empty())
                throw syntaxError(
                    141, "A SELECT statement that assigns a value to a variable must not be combined with data-retrieval operations.",
                    item.line);
            plan.assignTo.push_back(variableSlot(item.variable, item.line));
            plan.assignOps.push_back(item.op);
        }
    }
    for (const BoundColumn& bound_column : bound.columns) {
        Column column;
        column.name = bound_column.name;
        column.type = bound_column.value.type.kind == TypeKind::Null ? simpleType(TypeKind::Int) : bound_column.value.type;
        column.nullable = bound_column.value.nullable;
        if (bound_column.value.table && bound_column.value.column >= 0 && !bound.grouped && bound.op == SetOperator::None &&
            !bound.distinct) {
            const ColumnDef& definition = bound_column.value.table->columns[static_cast<std::size_t>(bound_column.value.column)];
            column.baseTable = bound_column.value.table->name;
            column.baseColumn = definition.name;
            column.identity = definition.identity;
            column.computed = definition.computed != nullptr;
        }
        plan.columns.push_back(std::move(column));
    }
    plan.sql.text = render(bound, nullptr, bound.orderBy.empty());
    plan.sql.places = places_;
    if (core && !core->into.empty()) {
        auto table = std::make_shared<TableDef>();
        table->name = core->into.last();
        for (std::size_t i = 0; i < plan.columns.size(); ++i) {
            const Column& column = plan.columns[i];
            if (column.name.empty())
                throw syntaxError(1038, "An object or column name is missing or empty.", query.line);
            if (table->find(column.name) >= 0)
                throw nameError(2705,
                                "Column names in each table must be unique. Column name '" + column.name + "' in table '" + table->name +
                                    "' is specified more than once.",
                                query.line);
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
        plan.into = table;
    }
    return plan;
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
    const AtEnd known([this, count = commonTables_.size()] { commonTables_.resize(count); });
    for (const CommonTable& table : query.commonTables)
        commonTables_.push_back(&table);
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
    if (!core.from.empty())
        result->tail = " FROM " + bindFrom(core.from, scope);
    if (core.where) {
        scope.clause = "WHERE";
        result->tail += " WHERE " + bindCondition(*core.where);
    }
    const bool aggregates = containsAggregate(core) || core.having;
    scope.aggregatesAllowed = true;
    scope.windowsAllowed = true;
    if (core.rollup || core.cube)
        throw unsupported(core.rollup ? "GROUP BY ... WITH ROLLUP" : "GROUP BY ... WITH CUBE", core.line);
    if (!core.groupBy.empty())
        bindGroups(core, scope);
    scope.grouped = aggregates || !core.groupBy.empty();
    result->grouped = scope.grouped;
    result->oneRow = (aggregates && core.groupBy.empty()) || core.from.empty();
    result->distinct = core.distinct;
    scope.clause = "SELECT";
    bindItems(core, scope, *result);
    if (!core.groupBy.empty()) {
        std::string groups;
        for (const Typed& group : scope.groups)
            groups += (groups.empty() ? " GROUP BY " : ",") + collated(group);
        result->tail += groups;
    }
    if (core.having) {
        scope.clause = "HAVING";
        scope.windowsAllowed = false;
        result->tail += " HAVING " + bindCondition(*core.having);
        scope.windowsAllowed = true;
    }
    if (!query.orderBy.empty()) {
        scope.clause = "ORDER BY";
        result->orderBy = orderBy(query.orderBy, &scope, *result);
    }
    if (core.top)
        bindTop(*core.top, *result);
    if (!result->grouped && !result->distinct) {
        for (const Source& source : scope.sources)
            result->bases.insert(result->bases.end(), source.bases.begin(), source.bases.end());
    }
    return result;
}

void Binder::bindGroups(const SelectCore& core, Scope& scope) {
    scope.aggregatesAllowed = false;
    scope.windowsAllowed = false;
    std::vector<Typed> groups;
    for (const ExprPtr& expr : core.groupBy) {
        if (containsAggregate(*expr))
            throw syntaxError(
                144, "Cannot use an aggregate or a subquery in an expression used for the group by list of a GROUP BY clause.", expr->line);
        Typed group = bindValue(*expr);
        if (group.literal)
            throw syntaxError(164, "Each GROUP BY expression must contain at least one column that is not an outer reference.", expr->line);
        groups.push_back(std::move(group));
    }
    scope.groups = std::move(groups);
    scope.aggregatesAllowed = true;
    scope.windowsAllowed = true;
}

void Binder::bindItems(const SelectCore& core, Scope& scope, BoundQuery& result) {
    for (const SelectItem& item : core.items) {
        if (item.star) {
            const std::size_t first = result.columns.size();
            expandStar(item, scope, result.columns);
            if (scope.grouped) {
                for (std::size_t i = first; i < result.columns.size(); ++i) {
                    const bool isGroup = std::any_of(scope.groups.begin(), scope.groups.end(),
                                                     [&](const Typed& group) { return group.sql == result.columns[i].value.sql; });
                    if (!isGroup)
                        throw nameError(8120,
                                        "Column '" + result.columns[i].name +
                                            "' is invalid in the select list because it is not contained in either an "
                                            "aggregate function or the GROUP BY clause.",
                                        item.line);
                }
            }
            continue;
        }
        BoundColumn column;
        column.value = bindValue(*item.expr);
        column.name = item.alias;
        if (column.name.empty() && item.expr->kind == ExprKind::Column)
            column.name = item.expr->name.last();
        if (!item.variable.empty()) {
            const int slot = variableSlot(item.variable, item.line);
            const SqlType& type = context_.variables[static_cast<std::size_t>(slot)].type;
            if (item.op != "=") {
                Typed before;
                before.type = type;
                before.sql = "ts_var(" + std::to_string(slot) + ")";
                column.value = arithmetic(item.op[0], std::move(before), std::move(column.value), item.line);
            }
            column.value = implicitTo(std::move(column.value), type, item.line);
            column.value.isColumn = false;
            if (!scope.grouped && !core.distinct)
                column.value.sql = "ts_setvar(" + std::to_string(slot) + "," + column.value.sql + ")";
        }
        result.columns.push_back(std::move(column));
    }
}

void Binder::expandStar(const SelectItem& item, Scope& scope, std::vector<BoundColumn>& columns) {
    bool found = false;
    for (Source& source : scope.sources) {
        if (!item.starOf.empty() && !sameName(source.exposed, item.starOf.last()))
            continue;
        found = true;
        complete(source);
        columns.insert(columns.end(), source.columns.begin(), source.columns.end());
    }
    if (!item.starOf.empty() && !found)
        throw nameError(4104, "The multi-part identifier \"" + item.starOf.toText() + ".*\" could not be bound.", item.line);
    if (!found)
        throw syntaxError(263, "Must specify table to select from.", item.line);
}

// ---- ORDER BY, TOP

std::string Binder::orderBy(const std::vector<OrderItem>& items, Scope* scope, const BoundQuery& result) {
    std::string sql;
    std::vector<std::string> keys;
    for (const OrderItem& item : items) {
        std::string key;
        const std::string text = orderItem(item, scope, result, key);
        if (std::find(keys.begin(), keys.end(), key) != keys.end())
            throw syntaxError(
                169, "A column has been specified more than once in the order by list. Columns in the order by list must be unique.",
                item.expr->line);
        keys.push_back(key);
        sql += (sql.empty() ? " ORDER BY " : ",") + text + (item.descending ? " DESC" : "");
    }
    return sql;
}

std::string Binder::orderItem(const OrderItem& item, Scope* scope, const BoundQuery& result, std::string& key) {
    const Expr& expr = *item.expr;
    const auto output = [&](std::size_t index) {
        const Typed& value = result.columns[index].value;
        key = value.sql;
        Typed reference = value;
        reference.sql = "_c" + std::to_string(index);
        return collated(reference);
    };
    if (expr.kind == ExprKind::Integer) {
        const long place = std::stol(expr.text.substr(0, 9));
        if (place < 1 || static_cast<std::size_t>(place) > result.columns.size())
            throw syntaxError(108,
                              "The ORDER BY position number " + expr.text + " is out of range of the number of items in the select list.",
                              expr.line);
        return output(static_cast<std::size_t>(place) - 1);
    }
    if (expr.kind == ExprKind::Column && expr.name.parts.size() == 1) {
        for (std::size_t i = 0; i < result.columns.size(); ++i) {
            if (sameName(result.columns[i].name, expr.name.last()))
                return output(i);
        }
    }
    if (!scope) {
        if (expr.kind == ExprKind::Column)
            throw nameError(207, "Invalid column name '" + expr.name.last() + "'.", expr.line);
        throw syntaxError(104,
                          "ORDER BY items must appear in the select list if the statement contains a UNION, INTERSECT or EXCEPT operator.",
                          expr.line);
    }
    Typed value = bindValue(expr);
    if (value.literal)
        throw syntaxError(408, "A constant expression was encountered in the ORDER BY list, position 1.", expr.line);
    key = value.sql;
    for (std::size_t i = 0; i < result.columns.size(); ++i) {
        if (result.columns[i].value.sql == value.sql)
            return output(i);
    }
    if (result.distinct)
        throw syntaxError(145, "ORDER BY items must appear in the select list if SELECT DISTINCT is specified.", expr.line);
    return collated(value);
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

// ---- text

std::vector<SqlType> Binder::columnTypes(const BoundQuery& query) {
    std::vector<SqlType> types;
    for (const BoundColumn& column : query.columns)
        types.push_back(column.value.type);
    return types;
}

std::string Binder::render(const BoundQuery& query, const std::vector<SqlType>* types, bool unnamed) const {
    if (query.op == SetOperator::None)
        return renderCore(query, types, unnamed) + query.orderBy + query.limit;
    const std::vector<SqlType> own = types ? *types : columnTypes(query);
    const auto operand = [&](const BoundQuery& side, bool isLeft) {
        const std::string text = render(side, &own);
        return isPlainOperand(side, isLeft) ? text : "SELECT * FROM (" + text + ")";
    };
    return operand(*query.left, true) + setOperatorSql(query.op) + operand(*query.right, false) + query.orderBy + query.limit;
}

std::string Binder::renderCore(const BoundQuery& query, const std::vector<SqlType>* types, bool unnamed) const {
    std::string sql = query.distinct ? "SELECT DISTINCT " : "SELECT ";
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
        Typed value = query.columns[i].value;
        if (types)
            value = convertTo(std::move(value), (*types)[i]);
        const bool plain = value.isColumn && value.collation.empty();
        sql += (i > 0 ? "," : "") + (plain || !value.type.isText() ? value.sql : collated(value)) +
               (unnamed ? std::string() : " AS _c" + std::to_string(i));
    }
    for (std::size_t i = 0; query.hasRowIds && i < query.bases.size(); ++i)
        sql += "," + query.bases[i].sql + " AS _r" + std::to_string(i);
    if (!query.level.empty())
        sql += "," + query.level;
    return sql + query.tail;
}

} // namespace merchantry::db::tsql
