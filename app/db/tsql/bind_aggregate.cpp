#include "app/db/tsql/binder.h"
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

DbError wrongCount(const Expr& expr, int wanted) {
    return syntaxError(174, "The " + expr.name.last() + " function requires " + std::to_string(wanted) + " argument(s).", expr.line);
}

bool isNumber(const SqlType& type) {
    return type.isWhole() || type.isMoney() || type.isFloat() || type.kind == TypeKind::Decimal;
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

bool Binder::containsAggregate(const Expr& expr) const {
    if (expr.kind == ExprKind::Function && expr.name.parts.size() == 1 && !expr.window && isAggregate(expr.name.last()))
        return true;
    if (expr.input && containsAggregate(*expr.input))
        return true;
    if (expr.window) {
        for (const OrderItem& item : expr.window->order) {
            if (containsAggregate(*item.expr))
                return true;
        }
    }
    return std::any_of(expr.args.begin(), expr.args.end(), [&](const ExprPtr& arg) { return containsAggregate(*arg); });
}

bool Binder::containsAggregate(const SelectCore& core) const {
    return std::any_of(core.items.begin(), core.items.end(),
                       [&](const SelectItem& item) { return item.expr && containsAggregate(*item.expr); });
}

Typed Binder::aggregate(const Expr& expr, const std::string& name) {
    if (sameName(name, "STRING_AGG") || sameName(name, "CHECKSUM_AGG"))
        throw unsupported(name, expr.line);
    if (!scope_ || !scope_->clause->aggregates)
        throw syntaxError(
            147,
            "An aggregate may not appear in the WHERE clause unless it is in a subquery contained in a HAVING clause or a select "
            "list, and the column being aggregated is an outer reference.",
            expr.line);
    if (scope_->insideAggregate > 0)
        throw syntaxError(130, "Cannot perform an aggregate function on an expression containing an aggregate or a subquery.", expr.line);
    if (expr.star || sameName(name, "GROUPING")) {
        Typed result;
        result.type = simpleType(TypeKind::Int);
        result.nullable = false;
        if (sameName(name, "GROUPING"))
            throw unsupported("GROUPING", expr.line);
        result.sql = "COUNT(*)";
        if (sameName(name, "COUNT_BIG"))
            result.type.kind = TypeKind::BigInt;
        return result;
    }
    if (expr.args.size() != 1)
        throw wrongCount(expr, 1);
    if (containsSubquery(*expr.args[0]))
        throw syntaxError(130, "Cannot perform an aggregate function on an expression containing an aggregate or a subquery.", expr.line);
    Typed value;
    {
        const Restore inside(scope_->insideAggregate, scope_->insideAggregate + 1);
        value = bindValueOf(*expr.args[0]);
    }
    return aggregateOf(name, std::move(value), expr.distinct, expr.line);
}

Typed aggregateOf(const std::string& name, Typed value, bool distinct, int line) {
    Typed result;
    const std::string each = distinct ? "DISTINCT " : "";
    const std::string collation = value.type.isText() ? " COLLATE " + (value.collation.empty() ? std::string("ts") : value.collation) : "";
    if (sameName(name, "COUNT") || sameName(name, "COUNT_BIG")) {
        result.sql = "COUNT(" + each + value.sql + collation + ")";
        result.type = simpleType(sameName(name, "COUNT") ? TypeKind::Int : TypeKind::BigInt);
        result.nullable = false;
        return result;
    }
    const auto invalid = [&] {
        std::string lower = name;
        std::transform(lower.begin(), lower.end(), lower.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
        return typeError(8117, "Operand data type " + kindNameOf(value.type) + " is invalid for " + lower + " operator.", line);
    };
    if (sameName(name, "MIN") || sameName(name, "MAX")) {
        if (value.type.kind == TypeKind::Bit || value.type.kind == TypeKind::Image || value.type.kind == TypeKind::Text ||
            value.type.kind == TypeKind::NText)
            throw invalid();
        result.sql = (sameName(name, "MIN") ? "MIN(" : "MAX(") + value.sql + collation + ")";
        result.type = value.type.kind == TypeKind::Null ? simpleType(TypeKind::Int) : value.type;
        return result;
    }
    if (value.type.kind == TypeKind::Null)
        value = convertTo(std::move(value), simpleType(TypeKind::Int));
    if (!isNumber(value.type) || value.type.kind == TypeKind::Bit)
        throw invalid();
    const bool sum = sameName(name, "SUM");
    const bool average = sameName(name, "AVG");
    if (!sum && !average) {
        std::string lower = "ts_";
        for (const char c : name)
            lower += c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        result.type = simpleType(TypeKind::Float);
        if (lower == "ts_var")
            lower += "_"; // ts_var reads a variable
        result.sql = lower + "(" + each + convertTo(std::move(value), result.type).sql + ")";
        return result;
    }
    std::string call = sum ? "ts_sum_" : "ts_avg_";
    result.type = value.type;
    if (value.type.kind == TypeKind::Decimal) {
        result.type = decimalType(38, sum ? value.type.scale : std::max(value.type.scale, 6));
        call += sum ? "dec" : "dec" + std::to_string(value.type.scale);
    } else if (value.type.isMoney()) {
        result.type = simpleType(TypeKind::Money);
        call += "money";
    } else if (value.type.isFloat()) {
        result.type = simpleType(TypeKind::Float);
        call += "float";
    } else {
        result.type = simpleType(value.type.kind == TypeKind::BigInt ? TypeKind::BigInt : TypeKind::Int);
        call += value.type.kind == TypeKind::BigInt ? "big" : "int";
    }
    result.sql = call + "(" + each + value.sql + ")";
    return result;
}

Typed Binder::windowed(const Expr& expr, const std::string& name) {
    if (!scope_ || !scope_->clause->windows)
        throw syntaxError(4108, "Windowed functions can only appear in the SELECT or ORDER BY clauses.", expr.line);
    if (!expr.window)
        throw syntaxError(10753, "The function '" + name + "' must have an OVER clause.", expr.line);
    Typed result;
    if (!isAggregate(name)) {
        result.type = simpleType(TypeKind::BigInt);
        std::string arguments;
        for (std::size_t i = 0; i < expr.args.size(); ++i) {
            Typed value = bindValue(*expr.args[i]);
            if (i == 0 && !sameName(name, "NTILE"))
                result.type = value.type;
            arguments += (i > 0 ? "," : "") + value.sql;
        }
        if (expr.window->order.empty())
            throw syntaxError(4112, "The function '" + name + "' must have an OVER clause with ORDER BY.", expr.line);
        result.sql = name + "(" + arguments + ")" + over(*expr.window);
        return result;
    }
    if (expr.distinct)
        throw unsupported("DISTINCT in a window", expr.line);
    if (expr.star) {
        result.sql = "COUNT(*)";
        result.type = simpleType(TypeKind::Int);
    } else {
        if (expr.args.size() != 1)
            throw wrongCount(expr, 1);
        Typed value = bindValue(*expr.args[0]);
        result = aggregateOf(name, std::move(value), false, expr.line);
    }
    result.sql += over(*expr.window);
    return result;
}

std::string Binder::over(const WindowSpec& window) {
    std::string sql;
    for (const ExprPtr& part : window.partition)
        sql += (sql.empty() ? "PARTITION BY " : ",") + collated(bindValue(*part));
    bool first = true;
    for (const OrderItem& item : window.order) {
        sql +=
            (first ? (sql.empty() ? "ORDER BY " : " ORDER BY ") : ",") + collated(bindValue(*item.expr)) + (item.descending ? " DESC" : "");
        first = false;
    }
    if (!window.frame.empty())
        sql += " " + window.frame;
    return " OVER (" + sql + ")";
}

} // namespace merchantry::db::tsql
