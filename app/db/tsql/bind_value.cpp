#include "app/db/tsql/binder.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

namespace merchantry::db::tsql {

ValuePlan Binder::value(const Expr& expr, const std::optional<SqlType>& target) {
    ValuePlan plan;
    Typed value = bindValue(expr);
    if (target)
        value = implicitTo(std::move(value), *target, expr.line);
    plan.type = value.type;
    if (value.literal) {
        plan.isLiteral = true;
        plan.literal = *value.literal;
        return plan;
    }
    if (value.isPlace && places_.size() == 1 && !places_[0].system)
        plan.variable = places_[0].slot;
    plan.readsTables = readsTables_;
    plan.sql = {"SELECT " + value.sql, places_};
    return plan;
}

ValuePlan Binder::compound(const std::string& variable, char op, const Expr& value, int line) {
    const int slot = variableSlot(variable, line);
    Typed before;
    before.type = context_.variables[static_cast<std::size_t>(slot)].type;
    before.sql = place(false, slot);
    const SqlType type = before.type;
    ValuePlan plan;
    plan.type = type;
    plan.sql.text = "SELECT " + implicitTo(calculated(op, std::move(before), bindValue(value), line), type, line).sql;
    plan.readsTables = readsTables_;
    plan.sql.places = places_;
    return plan;
}

ValuePlan Binder::condition(const Expr& expr) {
    ValuePlan plan;
    plan.type = simpleType(TypeKind::Bit);
    plan.sql.text = "SELECT " + bindCondition(expr);
    plan.readsTables = readsTables_;
    plan.sql.places = places_;
    return plan;
}

std::string Binder::check(const TableDef& table, const Expr& expr) {
    Scope scope;
    auto plain = std::make_shared<TableDef>(table);
    scope.sources.push_back(tableSourceOf(plain, ""));
    scope.sources[0].exposed = table.name;
    const Restore here(scope_, &scope);
    const Restore definition(inDefinition_, true);
    const std::string sql = bindCondition(expr);
    if (!places_.empty())
        throw unsupported("a value of the session in a CHECK", expr.line);
    return sql;
}

Typed Binder::computed(const TableDef& table, const Expr& expr) {
    Scope scope;
    auto plain = std::make_shared<TableDef>(table);
    scope.sources.push_back(tableSourceOf(plain, ""));
    scope.sources[0].exposed = table.name;
    const Restore here(scope_, &scope);
    const Restore inside(inComputed_, true);
    return bindValue(expr);
}

SqlType Binder::declaredType(const TypeName& name, bool* nullable) const {
    if (const std::optional<SqlType> type = builtInType(name))
        return *type;
    SqlType type;
    bool isNullable = true;
    if (!context_.catalog.userType(name.name, type, isNullable))
        throw nameError(2715, "Column, parameter, or variable: Cannot find data type " + name.name + ".", name.line);
    if (nullable)
        *nullable = isNullable;
    return type;
}

} // namespace merchantry::db::tsql
