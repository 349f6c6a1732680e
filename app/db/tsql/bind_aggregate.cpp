#include "app/db/tsql/bind_aggregate.h"

#include "app/db/tsql/bind_expression.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/functions.h"
#include "app/db/tsql/token.h"

#include <algorithm>
#include <array>

namespace merchantry::db::tsql {
namespace {

constexpr std::array<std::string_view, 13> kAggregates = {"COUNT",  "COUNT_BIG", "SUM",  "AVG",      "MIN",          "MAX",       "STDEV",
                                                          "STDEVP", "VAR",       "VARP", "GROUPING", "CHECKSUM_AGG", "STRING_AGG"};
constexpr std::array<std::string_view, 8> kRankings = {"ROW_NUMBER", "RANK", "DENSE_RANK",  "NTILE",
                                                       "LAG",        "LEAD", "FIRST_VALUE", "LAST_VALUE"};

bool isOneOf(std::string_view name, const auto& names) {
    return std::any_of(names.begin(), names.end(), [&](std::string_view one) { return sameName(one, name); });
}

std::string lowerName(const std::string& name) {
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return lower;
}

DbError insideAnother(int line) {
    return serverMessage(Message::AggregateOfAggregate, {}, line);
}

DbError invalidOperand(const std::string& name, const SqlType& type, int line) {
    return serverMessage(Message::OperandType, {kindNameOf(type), lowerName(name)}, line);
}

Typed over(std::string function, Typed value, bool distinct, const SqlType& type) {
    return typed(form::Call{std::move(function), {std::move(value)}, distinct}, type);
}

// COUNT(*)
Typed countOfRows(const std::string& name) {
    Typed result = typed(form::Call{"COUNT", {}, false, true}, simpleType(sameName(name, "COUNT_BIG") ? TypeKind::BigInt : TypeKind::Int));
    result.nullable = false;
    return result;
}

Typed extreme(const std::string& name, Typed value, int line) {
    const SqlType type = value.type;
    if (type.kind == TypeKind::Bit || type.kind == TypeKind::Image || type.kind == TypeKind::Text || type.kind == TypeKind::NText)
        throw invalidOperand(name, type, line);
    return over(sameName(name, "MIN") ? "MIN" : "MAX", type.isText() ? collated(std::move(value)) : std::move(value), false,
                type.kind == TypeKind::Null ? simpleType(TypeKind::Int) : type);
}

// STDEV and its like.
Typed spread(const std::string& name, Typed value, bool distinct) {
    const SqlType type = simpleType(TypeKind::Float);
    std::string function = "ts_" + lowerName(name);
    if (function == "ts_var")
        function += "_"; // ts_var reads a variable
    return over(std::move(function), convertTo(std::move(value), type), distinct, type);
}

Typed sumOrAverage(const std::string& name, Typed value, bool distinct) {
    const bool sum = sameName(name, "SUM");
    const SqlType from = value.type;
    const std::string family = sum ? "ts_sum_" : "ts_avg_";
    const auto as = [&](const std::string& kind, const SqlType& type) { return over(family + kind, std::move(value), distinct, type); };
    if (from.kind == TypeKind::Decimal)
        return as(sum ? "dec" : "dec" + std::to_string(from.scale), decimalType(38, sum ? from.scale : std::max(from.scale, 6)));
    if (from.isMoney())
        return as("money", simpleType(TypeKind::Money));
    if (from.isFloat())
        return as("float", simpleType(TypeKind::Float));
    const bool big = from.kind == TypeKind::BigInt;
    return as(big ? "big" : "int", simpleType(big ? TypeKind::BigInt : TypeKind::Int));
}

Typed aggregateOf(const std::string& name, Typed value, bool distinct, int line) {
    if (sameName(name, "COUNT") || sameName(name, "COUNT_BIG")) {
        const SqlType type = simpleType(sameName(name, "COUNT") ? TypeKind::Int : TypeKind::BigInt);
        Typed result = over("COUNT", value.type.isText() ? collated(std::move(value)) : std::move(value), distinct, type);
        result.nullable = false;
        return result;
    }
    if (sameName(name, "MIN") || sameName(name, "MAX"))
        return extreme(name, std::move(value), line);
    if (value.type.kind == TypeKind::Null)
        value = convertTo(std::move(value), simpleType(TypeKind::Int));
    if (!isNumber(value.type) || value.type.kind == TypeKind::Bit)
        throw invalidOperand(name, value.type, line);
    if (sameName(name, "SUM") || sameName(name, "AVG"))
        return sumOrAverage(name, std::move(value), distinct);
    return spread(name, std::move(value), distinct);
}

Typed ranking(Binding& binding, const Expr& expr) {
    const std::string& name = expr.name.last();
    SqlType type = simpleType(TypeKind::BigInt);
    std::vector<Typed> arguments;
    for (const ExprPtr& arg : expr.args)
        arguments.push_back(bindValue(binding, *arg));
    if (!arguments.empty() && !sameName(name, "NTILE"))
        type = arguments[0].type;
    if (expr.window->order.empty())
        throw serverMessage(Message::OverWithoutOrder, {name}, expr.line);
    return called(name, std::move(arguments), type);
}

Typed overWindow(Binding& binding, const Expr& expr) {
    if (expr.distinct)
        throw unsupported("DISTINCT in a window", expr.line);
    if (expr.star)
        return countOfRows("COUNT");
    if (expr.args.size() != 1)
        throw wrongCount(expr, 1);
    return aggregateOf(expr.name.last(), bindValue(binding, *expr.args[0]), false, expr.line);
}

} // namespace

bool isAggregate(std::string_view name) {
    return isOneOf(name, kAggregates);
}

bool isRanking(std::string_view name) {
    return isOneOf(name, kRankings);
}

std::vector<std::string_view> aggregateNames() {
    return {kAggregates.begin(), kAggregates.end()};
}

std::vector<std::string_view> rankingNames() {
    return {kRankings.begin(), kRankings.end()};
}

bool containsAggregate(const Expr& expr) {
    if (expr.kind == ExprKind::Function && expr.name.parts.size() == 1 && !expr.window && isAggregate(expr.name.last()))
        return true;
    if (expr.input && containsAggregate(*expr.input))
        return true;
    if (expr.window && std::any_of(expr.window->order.begin(), expr.window->order.end(),
                                   [](const OrderItem& item) { return containsAggregate(*item.expr); }))
        return true;
    return std::any_of(expr.args.begin(), expr.args.end(), [](const ExprPtr& arg) { return containsAggregate(*arg); });
}

bool containsAggregate(const SelectCore& core) {
    return std::any_of(core.items.begin(), core.items.end(),
                       [](const SelectItem& item) { return item.expr && containsAggregate(*item.expr); });
}

Typed bindAggregate(Binding& binding, const Expr& expr) {
    const std::string& name = expr.name.last();
    Scope* scope = binding.scope;
    if (sameName(name, "STRING_AGG") || sameName(name, "CHECKSUM_AGG"))
        throw unsupported(name, expr.line);
    if (!scope || !scope->clause->aggregates)
        throw serverMessage(Message::AggregateInWhere, {}, expr.line);
    if (scope->insideAggregate > 0)
        throw insideAnother(expr.line);
    if (sameName(name, "GROUPING"))
        throw unsupported("GROUPING", expr.line);
    if (expr.star)
        return countOfRows(name);
    if (expr.args.size() != 1)
        throw wrongCount(expr, 1);
    if (readsMore(*expr.args[0]))
        throw insideAnother(expr.line);
    const Restore inside(scope->insideAggregate, scope->insideAggregate + 1);
    return aggregateOf(name, bindUngrouped(binding, *expr.args[0]), expr.distinct, expr.line);
}

Typed bindWindowed(Binding& binding, const Expr& expr) {
    const std::string& name = expr.name.last();
    if (!binding.scope || !binding.scope->clause->windows)
        throw serverMessage(Message::WindowOutsideSelect, {}, expr.line);
    if (!expr.window)
        throw serverMessage(Message::OverMissing, {name}, expr.line);
    form::Windowed window;
    window.call = isAggregate(name) ? overWindow(binding, expr) : ranking(binding, expr);
    for (const ExprPtr& part : expr.window->partition)
        window.partition.push_back(collated(bindValue(binding, *part)));
    for (const OrderItem& item : expr.window->order)
        window.order.push_back({collated(bindValue(binding, *item.expr)), item.descending});
    window.frame = expr.window->frame;
    const SqlType type = window.call.type;
    const bool nullable = window.call.nullable;
    Typed result = typed(std::move(window), type);
    result.nullable = nullable;
    return result;
}

} // namespace merchantry::db::tsql
