#include "app/db/tsql/binder.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/literal.h"
#include "app/db/tsql/token.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace merchantry::db::tsql {
namespace {

Typed nullLiteral() {
    Typed result;
    result.sql = "NULL";
    result.literal = Cell();
    return result;
}

} // namespace

std::string Binder::place(bool system, int slot) {
    const auto [found, isNew] = placeOf_.try_emplace({system, slot}, static_cast<int>(places_.size()) + 1);
    if (isNew)
        places_.push_back({system, slot});
    return "?" + std::to_string(found->second);
}

Typed Binder::bindValue(const Expr& expr) {
    if (!scope_ || !scope_->grouped || scope_->insideAggregate > 0 || scope_->groups.empty() || expr.kind == ExprKind::Column)
        return bindValueOf(expr);
    // An expression that is one of the groups stands for its group.
    for (const Group& group : scope_->groups) {
        if (group.origin.place || !isSame(scope_, expr, *group.origin.expr))
            continue;
        const Restore within(scope_->grouped, false);
        return bindValueOf(expr);
    }
    return bindValueOf(expr);
}

Typed Binder::bindValueOf(const Expr& expr) {
    switch (expr.kind) {
    case ExprKind::Null:
        return nullLiteral();
    case ExprKind::Integer:
        return integerLiteral(expr);
    case ExprKind::Number:
        return numberLiteral(expr);
    case ExprKind::Float: {
        Typed result;
        result.type = simpleType(TypeKind::Float);
        result.nullable = false;
        result.literal = Cell::ofReal(std::strtod(expr.text.c_str(), nullptr));
        if (!std::isfinite(result.literal->real))
            throw overflow(result.type);
        result.sql = literalSql(*result.literal);
        return result;
    }
    case ExprKind::Money:
        return moneyLiteral(expr);
    case ExprKind::Text:
    case ExprKind::WideText:
        return textLiteral(expr);
    case ExprKind::Binary:
        return binaryLiteral(expr);
    case ExprKind::Column:
        return column(expr);
    case ExprKind::Variable:
        return variable(expr);
    case ExprKind::SystemVariable:
        return systemVariable(expr);
    case ExprKind::Unary:
        return unary(expr);
    case ExprKind::Arithmetic:
        return arithmetic(expr);
    case ExprKind::Case:
        return caseOf(expr);
    case ExprKind::Cast:
        return cast(expr);
    case ExprKind::Subquery:
        return subquery(expr);
    case ExprKind::Collate:
        return collate(expr);
    case ExprKind::Function:
        return function(expr);
    case ExprKind::Default:
        throw syntaxError(156, "Incorrect syntax near the keyword 'DEFAULT'.", expr.line);
    default:
        throw syntaxError(102, "Incorrect syntax near a condition.", expr.line);
    }
}

// ---- names

BoundColumn Binder::columnAt(const ColumnPlace& place) {
    const Source& source = place.scope->sources[place.source];
    return source.table ? tableColumn(source, place.column) : source.columns[place.column];
}

Typed Binder::column(const Expr& expr) {
    const ObjectName& name = expr.name;
    bool qualifierKnown = name.parts.size() == 1;
    if (const std::optional<ColumnPlace> place = findColumn(scope_, name, expr.line, &qualifierKnown))
        return resolved(*place, expr.line);
    if (!qualifierKnown)
        throw nameError(4104, "The multi-part identifier \"" + name.toText() + "\" could not be bound.", expr.line);
    throw nameError(207, "Invalid column name '" + name.last() + "'.", expr.line);
}

Typed Binder::resolved(const ColumnPlace& place, int line) {
    const Scope& scope = *place.scope;
    const BoundColumn column = columnAt(place);
    const bool isGroup =
        std::any_of(scope.groups.begin(), scope.groups.end(), [&](const Group& group) { return group.origin.place == place; });
    if (!scope.grouped || scope.insideAggregate > 0 || isGroup)
        return column.value;
    const int number = scope.clause == &kHavingClause ? 8121 : scope.clause == &kOrderByClause ? 8127 : 8120;
    throw nameError(number,
                    "Column '" + scope.sources[place.source].exposed + "." + column.name + "' is invalid in the " +
                        (number == 8120 ? "select list" : std::string(scope.clause->name) + " clause") +
                        " because it is not contained in either an aggregate function or the GROUP BY clause.",
                    line);
}

int Binder::variableSlot(const std::string& name, int line) const {
    for (std::size_t i = 0; i < context_.variables.size(); ++i) {
        if (sameName(context_.variables[i].name, name))
            return static_cast<int>(i);
    }
    throw nameError(137, "Must declare the scalar variable \"" + name + "\".", line).withSeverity(15, 2);
}

Typed Binder::variable(const Expr& expr) {
    for (auto inlined = inlined_.rbegin(); inlined != inlined_.rend(); ++inlined) {
        if (sameName(inlined->first, expr.text))
            return inlined->second;
    }
    const int slot = variableSlot(expr.text, expr.line);
    Typed result;
    result.type = context_.variables[static_cast<std::size_t>(slot)].type;
    result.isPlace = assigned_.count(slot) == 0;
    result.sql = result.isPlace ? place(false, slot) : "ts_var(" + std::to_string(slot) + ")";
    return result;
}

Typed Binder::system(SystemValue value, const SqlType& type) {
    Typed result;
    result.type = type;
    const std::string number = std::to_string(static_cast<int>(value));
    result.isPlace = !inDefinition_;
    result.sql = result.isPlace ? place(true, static_cast<int>(value)) : "ts_system(" + number + ")";
    return result;
}

Typed Binder::systemVariable(const Expr& expr) {
    struct Entry {
        std::string_view name;
        SystemValue value;
        SqlType type;
    };
    static const std::vector<Entry> kEntries = {
        {"@@ROWCOUNT", SystemValue::RowCount, simpleType(TypeKind::Int)},
        {"@@ERROR", SystemValue::Error, simpleType(TypeKind::Int)},
        {"@@IDENTITY", SystemValue::Identity, decimalType(38, 0)},
        {"@@TRANCOUNT", SystemValue::TranCount, simpleType(TypeKind::Int)},
        {"@@NESTLEVEL", SystemValue::NestLevel, simpleType(TypeKind::Int)},
        {"@@FETCH_STATUS", SystemValue::FetchStatus, simpleType(TypeKind::Int)},
        {"@@SPID", SystemValue::Spid, simpleType(TypeKind::SmallInt)},
        {"@@DATEFIRST", SystemValue::DateFirst, simpleType(TypeKind::TinyInt)},
        {"@@VERSION", SystemValue::Version, nvarcharType(300)},
        {"@@SERVERNAME", SystemValue::ServerName, nvarcharType(128)},
        {"@@SERVICENAME", SystemValue::ServerName, nvarcharType(128)},
        {"@@LANGUAGE", SystemValue::Language, nvarcharType(128)},
        {"@@PROCID", SystemValue::ProcedureId, simpleType(TypeKind::Int)},
        {"@@OPTIONS", SystemValue::Options, simpleType(TypeKind::Int)},
        {"@@MAX_PRECISION", SystemValue::MaxPrecision, simpleType(TypeKind::TinyInt)},
        {"@@CURSOR_ROWS", SystemValue::CursorRows, simpleType(TypeKind::Int)},
    };
    for (const Entry& entry : kEntries) {
        if (sameName(entry.name, expr.text))
            return system(entry.value, entry.type);
    }
    throw nameError(137, "Must declare the scalar variable \"" + expr.text + "\".", expr.line).withSeverity(15, 2);
}

// ---- CAST and COLLATE

SqlType Binder::typeOfCast(const Expr& expr) const {
    const std::optional<SqlType> builtIn = builtInType(expr.type, true);
    return builtIn ? *builtIn : declaredType(expr.type);
}

Typed Binder::cast(const Expr& expr) {
    const SqlType type = typeOfCast(expr);
    Typed value = bindValue(*expr.args[0]);
    const bool tries = expr.text.rfind("TRY_", 0) == 0;
    if (tries) {
        Typed result;
        result.type = type;
        const std::string style = expr.args.size() > 1 ? bindValue(*expr.args[1]).sql : "-1";
        result.sql =
            "ts_try(" + value.sql + "," + std::to_string(typeCode(value.type)) + "," + std::to_string(typeCode(type)) + "," + style + ")";
        return result;
    }
    if (value.type.isDate() && type.isBinary())
        throw unsupported("a date as binary", expr.line);
    if (expr.args.size() < 2)
        return convertTo(std::move(value), type);
    const Typed style = convertTo(bindValue(*expr.args[1]), simpleType(TypeKind::Int));
    if (style.literal && !style.literal->isNull())
        return convertTo(std::move(value), type, ConvertFor::Value, static_cast<int>(style.literal->integer));
    Typed result;
    result.type = type;
    result.sql =
        "ts_cv(" + value.sql + "," + std::to_string(typeCode(value.type)) + "," + std::to_string(typeCode(type)) + "," + style.sql + ")";
    return result;
}

Typed Binder::collate(const Expr& expr) {
    Typed value = bindValue(*expr.args[0]);
    if (!value.type.isText())
        throw typeError(447, "Expression type " + kindNameOf(value.type) + " is invalid for COLLATE clause.", expr.line);
    if (sameName(expr.text, "database_default")) {
        value.collation = "ts";
        return value;
    }
    const auto contains = [&](std::string_view part) { return expr.text.find(part) != std::string::npos; };
    if (contains("_BIN"))
        value.collation = "ts_bin";
    else if (contains("_CS"))
        value.collation = "ts_cs";
    else if (contains("_AI"))
        throw unsupported("a collation without accents", expr.line);
    else if (contains("_CI"))
        value.collation = "ts";
    else
        throw nameError(448, "Invalid collation '" + expr.text + "'.", expr.line);
    value.isColumn = false;
    return value;
}

} // namespace merchantry::db::tsql
