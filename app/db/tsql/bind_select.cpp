#include "app/db/tsql/bind_select.h"

#include "app/db/tsql/bind_aggregate.h"
#include "app/db/tsql/bind_condition.h"
#include "app/db/tsql/bind_expression.h"
#include "app/db/tsql/bind_from.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/render.h"
#include "app/db/tsql/token.h"

#include <algorithm>

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
            throw serverMessage(Message::NameMissing, {}, line);
        if (table->find(column.name) >= 0)
            throw serverMessage(Message::ColumnTwice, {column.name, name}, line);
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
            throw serverMessage(Message::NotGroupedSelect, {columns[i].name}, line);
    }
}

// The column of the result that a number or a name means; -1 for neither.
int outputNamed(const Expr& expr, const BoundQuery& result) {
    if (expr.kind == ExprKind::Integer) {
        const long place = std::stol(expr.text.substr(0, 9));
        if (place < 1 || static_cast<std::size_t>(place) > result.columns.size())
            throw serverMessage(Message::OrderByPosition, {expr.text}, expr.line);
        return static_cast<int>(place) - 1;
    }
    if (expr.kind != ExprKind::Column || expr.name.parts.size() != 1)
        return -1;
    const auto found = std::find_if(result.columns.begin(), result.columns.end(),
                                    [&](const BoundColumn& column) { return sameName(column.name, expr.name.last()); });
    return found == result.columns.end() ? -1 : static_cast<int>(found - result.columns.begin());
}

// The variables that the items of a SELECT are assigned to: all of them, or none.
void noteAssigned(const Binding& binding, const SelectCore& core, QueryPlan& plan) {
    const auto isAssigned = [](const SelectItem& item) { return !item.variable.empty(); };
    if (std::none_of(core.items.begin(), core.items.end(), isAssigned))
        return;
    for (const SelectItem& item : core.items) {
        if (!isAssigned(item))
            throw serverMessage(Message::AssignmentBesideColumns, {}, item.line);
        plan.assignTo.push_back(binding.variableSlot(item.variable, item.line));
        plan.assignOps.push_back(item.op);
    }
}

// A number of rows from least on; the engine refuses another one, which refused says, and null.
Typed rowCount(Binding& binding, const Expr& count, std::int64_t least = 0, Message refused = Message::NegativeTop) {
    const SqlType type = simpleType(TypeKind::BigInt);
    Typed number = convertTo(bindValue(binding, count), type);
    if (const Cell* known = number.literal(); known && !known->isNull() && known->integer >= least)
        return number;
    return called("ts_top", {std::move(number), wholeNumber(least), wholeNumber(static_cast<int>(refused))}, type);
}

// What ORDER BY names: a column of the result, or an expression of its own.
struct OrderKey {
    int output = -1;
    Origin origin;
    Typed value;
};

// Binds one SELECT ... FROM ... WHERE ... GROUP BY ... HAVING, with the order of the query around it.
class SelectBinder {
public:
    SelectBinder(Binding& binding, const SelectCore& core) : binding_(binding), core_(core), result_(std::make_unique<BoundQuery>()) {
        scope_.outer = binding.scope;
        scope_.alone = core.alone && core.from[0]->kind == TableRef::Kind::Table;
    }

    std::unique_ptr<BoundQuery> bind(const std::vector<OrderItem>& order);

private:
    void from();
    void groups();
    void items();
    BoundColumn item(const SelectItem& item) const;
    void having();
    void top(const TopClause& top);

    Binding& binding_;
    const SelectCore& core_;
    Scope scope_;
    std::unique_ptr<BoundQuery> result_;
};

OrderKey orderKey(Binding& binding, const Expr& expr, const Scope* scope, const BoundQuery& result) {
    OrderKey key;
    key.output = outputNamed(expr, result);
    if (key.output < 0) {
        if (!scope && expr.kind == ExprKind::Column)
            throw serverMessage(Message::InvalidColumn, {expr.name.last()}, expr.line);
        if (!scope)
            throw serverMessage(Message::OrderByNotSelected, {}, expr.line);
        key.value = bindValue(binding, expr);
        if (key.value.literal())
            throw serverMessage(Message::OrderByConstant, {}, expr.line);
        key.origin = originOf(scope, expr);
        const auto same = std::find_if(result.columns.begin(), result.columns.end(),
                                       [&](const BoundColumn& column) { return isSame(scope, column.origin, key.origin); });
        if (same != result.columns.end())
            key.output = static_cast<int>(same - result.columns.begin());
        else if (result.distinct)
            throw serverMessage(Message::OrderByNotDistinct, {}, expr.line);
    }
    if (key.output < 0)
        return key;
    const auto index = static_cast<std::size_t>(key.output);
    key.origin = result.columns[index].origin;
    key.value = result.columns[index].value;
    key.value.form = queryColumn("", index, key.value.type).form;
    return key;
}

// Scope: of the select; null for one that is joined of several.
std::vector<form::Ordered> orderBy(Binding& binding, const std::vector<OrderItem>& items, const Scope* scope, const BoundQuery& result) {
    std::vector<form::Ordered> order;
    std::vector<OrderKey> keys;
    for (const OrderItem& item : items) {
        OrderKey key = orderKey(binding, *item.expr, scope, result);
        const bool again = std::any_of(keys.begin(), keys.end(), [&](const OrderKey& other) {
            return (key.output >= 0 && key.output == other.output) || isSame(scope, key.origin, other.origin);
        });
        if (again)
            throw serverMessage(Message::OrderByTwice, {}, item.expr->line);
        order.push_back({collated(key.value), item.descending});
        keys.push_back(std::move(key));
    }
    return order;
}

std::unique_ptr<BoundQuery> SelectBinder::bind(const std::vector<OrderItem>& order) {
    const Restore here(binding_.scope, &scope_);
    from();
    if (core_.rollup || core_.cube)
        throw unsupported(core_.rollup ? "GROUP BY ... WITH ROLLUP" : "GROUP BY ... WITH CUBE", core_.line);
    groups();
    const bool aggregates = containsAggregate(core_) || core_.having;
    scope_.grouped = aggregates || !core_.groupBy.empty();
    result_->grouped = scope_.grouped;
    result_->oneRow = (aggregates && core_.groupBy.empty()) || core_.from.empty();
    result_->distinct = core_.distinct;
    items();
    having();
    {
        const Restore clause(scope_.clause, &kOrderByClause);
        result_->orderBy = orderBy(binding_, order, &scope_, *result_);
    }
    if (core_.top)
        top(*core_.top);
    if (!result_->grouped && !result_->distinct) {
        for (const Source& source : scope_.sources)
            result_->bases.insert(result_->bases.end(), source.bases.begin(), source.bases.end());
    }
    return std::move(result_);
}

void SelectBinder::from() {
    if (!core_.from.empty())
        result_->rows.from = bindFrom(binding_, core_.from, scope_);
    if (!core_.where)
        return;
    const Restore clause(scope_.clause, &kWhereClause);
    result_->rows.where = bindCondition(binding_, *core_.where);
}

void SelectBinder::groups() {
    const Restore clause(scope_.clause, &kGroupByClause);
    std::vector<Group> groups;
    for (const ExprPtr& expr : core_.groupBy) {
        if (containsAggregate(*expr))
            throw serverMessage(Message::AggregateInGroupBy, {}, expr->line);
        Typed value = bindValue(binding_, *expr);
        if (value.literal())
            throw serverMessage(Message::GroupByConstant, {}, expr->line);
        result_->groups.push_back(collated(value));
        groups.push_back({std::move(value), originOf(&scope_, *expr)});
    }
    scope_.groups = std::move(groups);
}

void SelectBinder::items() {
    const Restore clause(scope_.clause, &kSelectClause);
    for (const SelectItem& one : core_.items) {
        if (!one.star) {
            result_->columns.push_back(item(one));
            continue;
        }
        const std::size_t first = result_->columns.size();
        expandStar(binding_, one, scope_, result_->columns);
        checkGrouped(result_->columns, first, scope_, one.line);
    }
}

// One that is assigned to a variable takes its value with each row, where the rows are those of the query.
BoundColumn SelectBinder::item(const SelectItem& item) const {
    BoundColumn column;
    column.value = bindValue(binding_, *item.expr);
    column.name = item.alias;
    if (column.name.empty() && item.expr->kind == ExprKind::Column)
        column.name = item.expr->name.last();
    if (item.variable.empty()) {
        column.origin = originOf(&scope_, *item.expr);
        return column;
    }
    const int slot = binding_.variableSlot(item.variable, item.line);
    if (item.op != "=")
        column.value = calculated(item.op[0], binding_.variableNow(slot), std::move(column.value), item.line);
    column.value = implicitTo(std::move(column.value), binding_.typeOfSlot(slot), item.line);
    if (!scope_.grouped && !core_.distinct)
        column.value = Binding::assignedTo(slot, std::move(column.value));
    return column;
}

void SelectBinder::having() {
    if (!core_.having)
        return;
    const Restore clause(scope_.clause, &kHavingClause);
    result_->having = bindCondition(binding_, *core_.having);
}

void SelectBinder::top(const TopClause& top) {
    result_->hasTop = true;
    if (top.percent && top.count->kind == ExprKind::Integer && top.count->text == "100") // all rows, as views with an order ask for
        return;
    if (top.ties)
        throw unsupported("TOP ... WITH TIES", top.count->line);
    if (top.percent) {
        result_->percent = convertTo(bindValue(binding_, *top.count), simpleType(TypeKind::Float));
        return;
    }
    result_->limit = rowCount(binding_, *top.count);
    const Cell* count = result_->limit->literal();
    if (count && count->integer <= 1)
        result_->oneRow = true;
}

std::unique_ptr<BoundQuery> bindAny(Binding& binding, const Query& query, bool topLevel);

std::unique_ptr<BoundQuery> bindSetOperation(Binding& binding, const Query& query) {
    auto result = std::make_unique<BoundQuery>();
    result->op = query.op;
    result->left = bindAny(binding, *query.left, false);
    result->right = bindAny(binding, *query.right, false);
    if (result->left->columns.size() != result->right->columns.size())
        throw serverMessage(Message::UnequalColumns, {}, query.line);
    for (std::size_t i = 0; i < result->left->columns.size(); ++i) {
        const BoundColumn& left = result->left->columns[i];
        const BoundColumn& right = result->right->columns[i];
        const SqlType type = commonType(left.value.type, right.value.type, query.line);
        requireImplicit(left.value.type, type, query.line);
        requireImplicit(right.value.type, type, query.line);
        BoundColumn column;
        column.name = left.name;
        column.value = queryColumn("", i, type);
        column.value.nullable = left.value.nullable || right.value.nullable;
        result->columns.push_back(std::move(column));
    }
    convertColumns(*result, columnTypes(*result));
    result->grouped = true;
    result->orderBy = orderBy(binding, query.orderBy, nullptr, *result);
    return result;
}

// With its own common tables and one level deeper than the query around it.
std::unique_ptr<BoundQuery> bindBody(Binding& binding, const Query& query) {
    const Restore depth(binding.depth, binding.depth + 1);
    if (binding.depth > kDeepestQuery)
        throw serverMessage(Message::NestedTooDeeply, {}, query.line);
    const CommonTablesScope known(binding, query.commonTables);
    return query.core ? SelectBinder(binding, *query.core).bind(query.orderBy) : bindSetOperation(binding, query);
}

std::unique_ptr<BoundQuery> bindAny(Binding& binding, const Query& query, bool topLevel) {
    if (binding.inDefinition || binding.inComputed)
        throw serverMessage(Message::SubqueryNotAllowed, {}, query.line);
    std::unique_ptr<BoundQuery> result = bindBody(binding, query);
    if (!topLevel && !query.orderBy.empty() && !result->hasTop && !query.offset)
        throw serverMessage(Message::OrderByInSubquery, {}, query.line);
    if (query.offset) {
        if (result->hasTop)
            throw serverMessage(Message::TopBesideOffset, {}, query.line);
        result->offset = rowCount(binding, *query.offset, 0, Message::NegativeOffset);
        if (query.fetch)
            result->limit = rowCount(binding, *query.fetch, 1, Message::NoRowsToFetch);
    }
    return result;
}

} // namespace

std::unique_ptr<BoundQuery> bindQuery(Binding& binding, const Query& query) {
    return bindAny(binding, query, true);
}

std::unique_ptr<BoundQuery> bindSubquery(Binding& binding, const Query& query) {
    return bindAny(binding, query, false);
}

std::unique_ptr<BoundQuery> bindOneColumn(Binding& binding, const Expr& expr) {
    std::unique_ptr<BoundQuery> query = bindSubquery(binding, *expr.query);
    if (query->columns.size() != 1)
        throw serverMessage(Message::SubqueryOfSeveralColumns, {}, expr.line);
    return query;
}

void expandStar(Binding& binding, const SelectItem& item, Scope& scope, std::vector<BoundColumn>& columns) {
    bool found = false;
    for (std::size_t i = 0; i < scope.sources.size(); ++i) {
        Source& source = scope.sources[i];
        if (!item.starOf.empty() && !sameName(source.exposed, item.starOf.last()))
            continue;
        found = true;
        complete(binding, source);
        for (std::size_t c = 0; c < source.columns.size(); ++c) {
            columns.push_back(source.columns[c]);
            columns.back().origin.place = ColumnPlace{&scope, i, c};
        }
    }
    if (!item.starOf.empty() && !found)
        throw serverMessage(Message::UnboundIdentifier, {item.starOf.toText() + ".*"}, item.line);
    if (!found)
        throw serverMessage(Message::NothingToSelectFrom, {}, item.line);
}

QueryPlan planOf(const BoundQuery& query) {
    QueryPlan plan;
    for (const BoundColumn& column : query.columns)
        plan.columns.push_back(shownColumn(column, query));
    plan.sql = render(query);
    return plan;
}

QueryPlan bindQueryPlan(Binding& binding, const Query& query) {
    binding.maxRecursion = query.maxRecursion;
    const SelectCore* core = query.core.get();
    for (std::size_t i = 0; core && i < core->items.size(); ++i) {
        if (const SelectItem& item = core->items[i]; !item.variable.empty())
            binding.assigned.insert(binding.variableSlot(item.variable, item.line));
    }
    const std::unique_ptr<BoundQuery> bound = bindQuery(binding, query);
    QueryPlan plan = planOf(*bound);
    if (core)
        noteAssigned(binding, *core, plan);
    if (core && !core->into.empty())
        plan.into = tableToMake(*bound, plan.columns, core->into.last(), query.line);
    return plan;
}

std::optional<Typed> bindLimit(Binding& binding, const std::optional<TopClause>& top) {
    if (!top)
        return std::nullopt;
    if (top->percent || top->ties)
        throw unsupported(top->ties ? "TOP ... WITH TIES" : "TOP ... PERCENT of a change", top->count->line);
    return rowCount(binding, *top->count);
}

} // namespace merchantry::db::tsql
