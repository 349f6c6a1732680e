#include "app/db/tsql/binder.h"

#include "app/db/tsql/bind_condition.h"
#include "app/db/tsql/bind_delete.h"
#include "app/db/tsql/bind_expression.h"
#include "app/db/tsql/bind_from.h"
#include "app/db/tsql/bind_insert.h"
#include "app/db/tsql/bind_select.h"
#include "app/db/tsql/bind_update.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/render.h"

namespace merchantry::db::tsql {
namespace {

// A table's own columns, by their bare names.
Scope scopeOf(const TableDef& table) {
    Scope scope;
    scope.sources.push_back(tableSource(std::make_shared<TableDef>(table), ""));
    scope.sources[0].exposed = table.name;
    return scope;
}

} // namespace

QueryPlan Binder::query(const Query& query) {
    return bindQueryPlan(binding_, query);
}

ValuePlan Binder::plan(const Typed& value) const {
    ValuePlan plan;
    plan.type = value.type;
    if (const Cell* cell = value.literal()) {
        plan.isLiteral = true;
        plan.literal = *cell;
        return plan;
    }
    if (const auto* place = value.as<form::Place>(); place && !place->holds.system)
        plan.variable = place->holds.slot;
    plan.readsTables = binding_.readsTables;
    plan.sql = render(value);
    return plan;
}

ValuePlan Binder::value(const Expr& expr, const std::optional<SqlType>& target) {
    Typed value = bindValue(binding_, expr);
    return plan(target ? implicitTo(std::move(value), *target, expr.line) : value);
}

ValuePlan Binder::compound(const std::string& variable, char op, const Expr& value, int line) {
    const int slot = variableSlot(variable, line);
    Typed after = calculated(op, binding_.variableBefore(slot), bindValue(binding_, value), line);
    return plan(implicitTo(std::move(after), binding_.typeOfSlot(slot), line));
}

ValuePlan Binder::condition(const Expr& expr) {
    return plan(bindCondition(binding_, expr));
}

ChangePlan Binder::insert(const InsertStatement& statement) {
    return bindInsert(binding_, statement);
}

ChangePlan Binder::insertRow(const InsertStatement& statement, const std::vector<SqlType>& types) {
    return bindInsertRow(binding_, statement, types);
}

ChangePlan Binder::update(const UpdateStatement& statement) {
    return bindUpdate(binding_, statement);
}

ChangePlan Binder::deleteFrom(const DeleteStatement& statement) {
    return bindDelete(binding_, statement);
}

std::string Binder::check(const TableDef& table, const Expr& expr) {
    Scope scope = scopeOf(table);
    const Restore here(binding_.scope, &scope);
    const Restore definition(binding_.inDefinition, true);
    Sql3 sql = renderDefinition(bindCondition(binding_, expr));
    if (!sql.places.empty())
        throw unsupported("a value of the session in a CHECK", expr.line);
    return sql.text;
}

Typed Binder::computed(const TableDef& table, const Expr& expr) {
    Scope scope = scopeOf(table);
    const Restore here(binding_.scope, &scope);
    const Restore inside(binding_.inComputed, true);
    return bindValue(binding_, expr);
}

std::vector<BoundColumn> Binder::viewColumns(const ViewDef& view) {
    Scope scope;
    TableRef ref;
    ref.name.parts.push_back(view.name);
    bindView(binding_, ref, view, scope);
    return scope.sources[0].columns;
}

} // namespace merchantry::db::tsql
