#include "app/db/tsql/bind_expression.h"

#include "app/db/tsql/bind_condition.h"
#include "app/db/tsql/bind_from.h"
#include "app/db/tsql/bind_function.h"
#include "app/db/tsql/bind_literal.h"
#include "app/db/tsql/bind_select.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/token.h"

#include <algorithm>

namespace merchantry::db::tsql {
namespace {

// ---- names

// The column, where its query's groups leave it single.
Typed columnAt(Binding& binding, const ColumnPlace& place, int line) {
    const Scope& scope = *place.scope;
    BoundColumn column = boundColumn(binding, scope.sources[place.source], place.column);
    const bool isGroup =
        std::any_of(scope.groups.begin(), scope.groups.end(), [&](const Group& group) { return group.origin.place == place; });
    if (!scope.grouped || scope.insideAggregate > 0 || isGroup)
        return std::move(column.value);
    throw serverMessage(scope.clause == &kHavingClause    ? Message::NotGroupedHaving
                        : scope.clause == &kOrderByClause ? Message::NotGroupedOrderBy
                                                          : Message::NotGroupedSelect,
                        {scope.sources[place.source].exposed + "." + column.name}, line);
}

Typed columnOf(Binding& binding, const Expr& expr) {
    const ObjectName& name = expr.name;
    bool qualifierKnown = name.parts.size() == 1;
    if (const std::optional<ColumnPlace> place = findColumn(binding.scope, name, expr.line, &qualifierKnown))
        return columnAt(binding, *place, expr.line);
    if (!qualifierKnown)
        throw serverMessage(Message::UnboundIdentifier, {name.toText()}, expr.line);
    throw serverMessage(Message::InvalidColumn, {name.last()}, expr.line);
}

Typed variable(const Binding& binding, const Expr& expr) {
    for (auto inlined = binding.inlined.rbegin(); inlined != binding.inlined.rend(); ++inlined) {
        if (sameName(inlined->first, expr.text))
            return inlined->second;
    }
    const int slot = binding.variableSlot(expr.text, expr.line);
    return binding.assigned.count(slot) == 0 ? binding.variableBefore(slot) : binding.variableNow(slot);
}

Typed systemVariable(const Binding& binding, const Expr& expr) {
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
            return binding.system(entry.value, entry.type);
    }
    throw serverMessage(Message::UndeclaredVariable, {expr.text}, expr.line).withSeverity(15, 2);
}

// ---- operators

Typed inverted(Typed value, int line) {
    if (!value.type.isWhole())
        throw serverMessage(Message::OperandType, {kindNameOf(value.type), "'~'"}, line);
    const SqlType type = value.type;
    if (type.kind == TypeKind::Bit)
        return infix("-", wholeNumber(1), std::move(value), type);
    Typed bits = typed(form::Inverted{std::move(value)}, type);
    return type.kind == TypeKind::TinyInt ? infix("&", wholeNumber(255), std::move(bits), type) : bits;
}

Cell opposite(Cell cell, const SqlType& type) {
    if (cell.kind == Cell::Kind::Real)
        cell.real = -cell.real;
    else if (type.kind == TypeKind::Decimal)
        cell = decimalCell(-digitsOf(cell), type.precision);
    else
        cell.integer = -cell.integer;
    return cell;
}

Typed minus(Typed value, int line) {
    if (value.type.kind == TypeKind::Null)
        return value;
    if (value.type.isText() || value.type.isBinary() || value.type.isDate() || value.type.kind == TypeKind::UniqueIdentifier)
        throw serverMessage(Message::OperandType, {kindNameOf(value.type), "minus"}, line);
    SqlType type = value.type;
    if (value.literal() && !value.isNull())
        return literalOf(opposite(*value.literal(), type), type);
    if (type.kind == TypeKind::Decimal)
        return called("ts_dec_neg", {std::move(value), wholeNumber(type.precision)}, type);
    if (type.kind == TypeKind::TinyInt || type.kind == TypeKind::Bit)
        type = value.type = simpleType(TypeKind::SmallInt);
    return calculated('-', literalOf(type.isFloat() ? Cell::ofReal(0) : Cell::ofInteger(0), type), std::move(value), line);
}

Typed unary(Binding& binding, const Expr& expr) {
    Typed value = bindValue(binding, *expr.args[0]);
    switch (expr.text[0]) {
    case '+':
        return value;
    case '~':
        return inverted(std::move(value), expr.line);
    default:
        return minus(std::move(value), expr.line);
    }
}

Typed arithmetic(Binding& binding, const Expr& expr) {
    Typed left = bindValue(binding, *expr.args[0]);
    return calculated(expr.text[0], std::move(left), bindValue(binding, *expr.args[1]), expr.line);
}

// ---- CASE, CAST and COLLATE

Typed caseOf(Binding& binding, const Expr& expr) {
    std::optional<Typed> input;
    if (expr.input)
        input = bindValue(binding, *expr.input);
    form::Case result;
    for (std::size_t i = 0; i + 1 < expr.args.size(); i += 2) {
        const Expr& when = *expr.args[i];
        Typed condition = input ? bindCompared(binding, "=", *input, bindValue(binding, when), when.line) : bindCondition(binding, when);
        result.whens.emplace_back(std::move(condition), bindValue(binding, *expr.args[i + 1]));
    }
    if (expr.hasElse)
        result.otherwise = bindValue(binding, *expr.args.back());
    SqlType type;
    for (const auto& [when, then] : result.whens)
        type = commonType(type, then.type, expr.line);
    if (result.otherwise)
        type = commonType(type, result.otherwise->type, expr.line);
    if (type.kind == TypeKind::Null)
        throw serverMessage(Message::CaseOfNulls, {}, expr.line);
    Collation collation = Collation::None;
    for (auto& [when, then] : result.whens) {
        collation = collation == Collation::None ? then.collation : collation;
        then = implicitTo(std::move(then), type, expr.line);
    }
    if (result.otherwise)
        result.otherwise = implicitTo(std::move(*result.otherwise), type, expr.line);
    Typed choice = typed(std::move(result), type);
    choice.collation = collation;
    return choice;
}

Typed castOf(Binding& binding, const Expr& expr) {
    const std::optional<SqlType> builtIn = builtInType(expr.type, true);
    const SqlType type = builtIn ? *builtIn : binding.declaredType(expr.type);
    Typed value = bindValue(binding, *expr.args[0]);
    const bool isStyled = expr.args.size() > 1;
    if (expr.text.rfind("TRY_", 0) == 0) {
        const SqlType from = value.type;
        Typed style = isStyled ? bindValue(binding, *expr.args[1]) : wholeNumber(-1);
        return called("ts_try", {std::move(value), typeNumber(from), typeNumber(type), std::move(style)}, type);
    }
    if (value.type.isDate() && type.isBinary())
        throw unsupported("a date as binary", expr.line);
    if (!isStyled)
        return convertTo(std::move(value), type);
    Typed style = convertTo(bindValue(binding, *expr.args[1]), simpleType(TypeKind::Int));
    if (style.literal() && !style.isNull())
        return convertTo(std::move(value), type, ConvertFor::Value, static_cast<int>(style.literal()->integer));
    const SqlType from = value.type;
    return called("ts_cv", {std::move(value), typeNumber(from), typeNumber(type), std::move(style)}, type);
}

Collation collationNamed(const Expr& expr) {
    const auto contains = [&](std::string_view part) { return expr.text.find(part) != std::string::npos; };
    if (contains("_BIN"))
        return Collation::Binary;
    if (contains("_CS"))
        return Collation::CaseCounts;
    if (contains("_AI"))
        throw unsupported("a collation without accents", expr.line);
    if (contains("_CI") || sameName(expr.text, "database_default"))
        return Collation::Usual;
    throw serverMessage(Message::InvalidCollation, {expr.text}, expr.line);
}

Typed collate(Binding& binding, const Expr& expr) {
    Typed value = bindValue(binding, *expr.args[0]);
    if (!value.type.isText())
        throw serverMessage(Message::CollateOfType, {kindNameOf(value.type)}, expr.line);
    value.collation = collationNamed(expr);
    return value;
}

// A query as a value: more than one row is an error when it runs.
Typed subquery(Binding& binding, const Expr& expr) {
    std::unique_ptr<BoundQuery> query = bindOneColumn(binding, expr);
    const Typed& column = query->columns[0].value;
    const SqlType type = column.type;
    const Collation collation = column.collation;
    if (!query->oneRow) {
        auto only = std::make_unique<BoundQuery>();
        only->rows.from = from::Any{from::Subquery{std::move(query), ""}};
        BoundColumn one;
        one.value = called("ts_one", {queryColumn("", 0, type)}, type);
        only->columns.push_back(std::move(one));
        query = std::move(only);
    }
    Typed result = typed(form::Scalar{std::move(query)}, type);
    result.collation = collation;
    return result;
}

} // namespace

bool readsMore(const Expr& expr) {
    if (expr.query || (expr.kind == ExprKind::Function && expr.name.parts.size() > 1))
        return true;
    if (expr.input && readsMore(*expr.input))
        return true;
    return std::any_of(expr.args.begin(), expr.args.end(), [&](const ExprPtr& arg) { return readsMore(*arg); });
}

Typed bindValue(Binding& binding, const Expr& expr) {
    Scope* scope = binding.scope;
    if (!scope || !scope->grouped || scope->insideAggregate > 0 || scope->groups.empty() || expr.kind == ExprKind::Column)
        return bindUngrouped(binding, expr);
    // An expression that is one of the groups stands for its group.
    const bool isGroup = std::any_of(scope->groups.begin(), scope->groups.end(),
                                     [&](const Group& group) { return !group.origin.place && isSame(scope, expr, *group.origin.expr); });
    const Restore within(scope->grouped, !isGroup);
    return bindUngrouped(binding, expr);
}

Typed bindUngrouped(Binding& binding, const Expr& expr) {
    switch (expr.kind) {
    case ExprKind::Null:
    case ExprKind::Integer:
    case ExprKind::Number:
    case ExprKind::Float:
    case ExprKind::Money:
    case ExprKind::Text:
    case ExprKind::WideText:
    case ExprKind::Binary:
        return bindLiteral(expr);
    case ExprKind::Column:
        return columnOf(binding, expr);
    case ExprKind::Variable:
        return variable(binding, expr);
    case ExprKind::SystemVariable:
        return systemVariable(binding, expr);
    case ExprKind::Unary:
        return unary(binding, expr);
    case ExprKind::Arithmetic:
        return arithmetic(binding, expr);
    case ExprKind::Case:
        return caseOf(binding, expr);
    case ExprKind::Cast:
        return castOf(binding, expr);
    case ExprKind::Subquery:
        return subquery(binding, expr);
    case ExprKind::Collate:
        return collate(binding, expr);
    case ExprKind::Function:
        return bindFunction(binding, expr);
    case ExprKind::Default:
        throw serverMessage(Message::IncorrectKeyword, {"DEFAULT"}, expr.line);
    default:
        throw serverError(Message::IncorrectSyntax, "Incorrect syntax near a condition.", expr.line);
    }
}

} // namespace merchantry::db::tsql
