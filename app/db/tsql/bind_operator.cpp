#include "app/db/tsql/binder.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/literal.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::db::tsql {
namespace {

// A whole decimal of many digits, SCOPE_IDENTITY() above all, beside a column of integers: it becomes a number, since the column as a
// decimal would find no index.
void keepColumnBare(const Typed& column, Typed& other) {
    const bool wide = other.type.kind == TypeKind::Decimal && other.type.scale == 0 && other.type.precision > 18;
    if (!column.isColumn || !column.type.isWhole() || !wide || other.isColumn)
        return;
    other.sql = "ts_whole(" + other.sql + ")";
    other.type = column.type;
    other.literal.reset();
    other.isPlace = false;
}

} // namespace

Typed Binder::unary(const Expr& expr) {
    Typed value = bindValue(*expr.args[0]);
    const char op = expr.text[0];
    if (op == '+')
        return value;
    if (op == '~') {
        if (!value.type.isWhole())
            throw typeError(8117, "Operand data type " + kindNameOf(value.type) + " is invalid for '~' operator.", expr.line);
        value.sql = value.type.kind == TypeKind::Bit ? "(1-" + value.sql + ")" : "(~" + value.sql + ")";
        if (value.type.kind == TypeKind::TinyInt)
            value.sql = "(255&" + value.sql + ")";
        value.literal.reset();
        value.isColumn = false;
        value.isPlace = false;
        return value;
    }
    if (value.type.kind == TypeKind::Null)
        return value;
    if (value.type.isText() || value.type.isBinary() || value.type.isDate() || value.type.kind == TypeKind::UniqueIdentifier)
        throw typeError(8117, "Operand data type " + kindNameOf(value.type) + " is invalid for minus operator.", expr.line);
    if (value.literal && !value.literal->isNull()) {
        Cell& cell = *value.literal;
        if (cell.kind == Cell::Kind::Real)
            cell.real = -cell.real;
        else if (value.type.kind == TypeKind::Decimal)
            cell = decimalCell(-digitsOf(cell), value.type.precision);
        else
            cell.integer = -cell.integer;
        value.sql = cell.kind == Cell::Kind::Integer || cell.kind == Cell::Kind::Real ? "(" + literalSql(cell) + ")" : literalSql(cell);
        return value;
    }
    Typed zero;
    zero.type = value.type;
    zero.literal = value.type.isFloat()                   ? Cell::ofReal(0)
                   : value.type.kind == TypeKind::Decimal ? decimalCell(0, value.type.precision)
                                                          : Cell::ofInteger(0);
    zero.sql = literalSql(*zero.literal);
    if (value.type.kind == TypeKind::Decimal) {
        const SqlType type = value.type;
        Typed result = value;
        result.isColumn = false;
        result.isPlace = false;
        result.sql = "ts_dec_neg(" + value.sql + "," + std::to_string(type.precision) + ")";
        return result;
    }
    if (value.type.kind == TypeKind::TinyInt || value.type.kind == TypeKind::Bit) {
        value.type = simpleType(TypeKind::SmallInt);
        zero.type = value.type;
    }
    return calculated('-', std::move(zero), std::move(value), expr.line);
}

Typed Binder::arithmetic(const Expr& expr) {
    Typed left = bindValue(*expr.args[0]);
    Typed right = bindValue(*expr.args[1]);
    return calculated(expr.text[0], std::move(left), std::move(right), expr.line);
}

Typed Binder::caseOf(const Expr& expr) {
    std::vector<std::string> conditions;
    std::vector<Typed> values;
    std::optional<Typed> input;
    if (expr.input)
        input = bindValue(*expr.input);
    const std::size_t pairs = expr.args.size() / 2;
    for (std::size_t i = 0; i < pairs; ++i) {
        const Expr& when = *expr.args[i * 2];
        conditions.push_back(input ? compare("=", *input, bindValue(when), when.line) : bindCondition(when));
        values.push_back(bindValue(*expr.args[i * 2 + 1]));
    }
    if (expr.hasElse)
        values.push_back(bindValue(*expr.args.back()));
    SqlType type;
    for (const Typed& value : values)
        type = commonType(type, value.type, expr.line);
    if (type.kind == TypeKind::Null)
        throw typeError(8133,
                        "At least one of the result expressions in a CASE expression must be an expression other than the NULL constant.",
                        expr.line);
    Typed result;
    result.type = type;
    result.sql = "CASE";
    for (std::size_t i = 0; i < pairs; ++i) {
        result.sql += " WHEN " + conditions[i] + " THEN " + implicitTo(values[i], type, expr.line).sql;
        result.collation = result.collation.empty() ? values[i].collation : result.collation;
    }
    if (expr.hasElse)
        result.sql += " ELSE " + implicitTo(values.back(), type, expr.line).sql;
    result.sql = "(" + result.sql + " END)";
    return result;
}

// ---- conditions

std::string Binder::bindCondition(const Expr& expr) {
    switch (expr.kind) {
    case ExprKind::And:
    case ExprKind::Or:
        return chained(expr);
    case ExprKind::Not:
        return "(NOT " + bindCondition(*expr.args[0]) + ")";
    case ExprKind::Compare: {
        Typed left = bindValue(*expr.args[0]);
        Typed right = bindValue(*expr.args[1]);
        return compare(expr.text, std::move(left), std::move(right), expr.line);
    }
    case ExprKind::IsNull:
        return "(" + bindValue(*expr.args[0]).sql + (expr.negated ? " IS NOT NULL)" : " IS NULL)");
    case ExprKind::Like:
        return like(expr);
    case ExprKind::Between: {
        const Typed value = bindValue(*expr.args[0]);
        const std::string low = compare(">=", value, bindValue(*expr.args[1]), expr.line);
        const std::string high = compare("<=", value, bindValue(*expr.args[2]), expr.line);
        return std::string(expr.negated ? "(NOT (" : "((") + low + " AND " + high + "))";
    }
    case ExprKind::InList:
        return inList(expr);
    case ExprKind::InQuery:
        return inQuery(expr);
    case ExprKind::Exists: {
        const std::unique_ptr<BoundQuery> query = bindSubquery(*expr.query);
        return "EXISTS (" + render(*query) + ")";
    }
    case ExprKind::Quantified:
        return quantified(expr);
    case ExprKind::Function:
        return "(" + bindValue(expr).sql + ")";
    default:
        throw syntaxError(4145, "An expression of non-boolean type specified in a context where a condition is expected.", expr.line);
    }
}

// a AND b AND c, without parentheses between: SQLite takes few of them inside one another.
std::string Binder::chained(const Expr& expr) {
    std::vector<const Expr*> operands;
    const Expr* first = &expr;
    for (; first->kind == expr.kind; first = first->args[0].get())
        operands.push_back(first->args[1].get());
    std::string sql = "(" + bindCondition(*first);
    for (auto operand = operands.rbegin(); operand != operands.rend(); ++operand)
        sql += (expr.kind == ExprKind::And ? " AND " : " OR ") + bindCondition(**operand);
    return sql + ")";
}

std::string Binder::compare(const std::string& op, Typed left, Typed right, int line) {
    const auto isNull = [](const Typed& value) { return value.literal && value.literal->isNull(); };
    const bool nullable = !context_.ansiNulls && (op == "=" || op == "<>");
    const std::string meant =
        nullable && (isNull(left) || isNull(right) || left.isPlace || right.isPlace) ? (op == "=" ? " IS " : " IS NOT ") : op;
    keepColumnBare(left, right);
    keepColumnBare(right, left);
    SqlType type = commonType(left.type, right.type, line);
    if (type.kind == TypeKind::Null)
        type = simpleType(TypeKind::Int);
    // A whole literal beside a decimal needs no more digits than it has.
    const std::string collation = collationOf(left, right);
    const bool text = type.isText() || type.kind == TypeKind::UniqueIdentifier;
    // A column of a table brings the usual collation along.
    const auto brings = [&](const Typed& value) { return value.isColumn && value.table && sameCells(value.type, type); };
    const bool named = text && (collation != "ts" || !(brings(left) || brings(right)));
    const std::string a = implicitTo(std::move(left), type, line).sql;
    const std::string b = implicitTo(std::move(right), type, line).sql;
    return "(" + a + (named ? " COLLATE " + collation + " " : "") + meant + b + ")";
}

std::string Binder::like(const Expr& expr) {
    Typed value = bindValue(*expr.args[0]);
    Typed pattern = bindValue(*expr.args[1]);
    const auto asText = [&](Typed typed) {
        return typed.type.isText() || typed.type.kind == TypeKind::Null ? typed : convertTo(std::move(typed), varcharType(8000));
    };
    const bool caseCounts = !value.collation.empty() && value.collation != "ts";
    std::string sql =
        std::string(caseCounts ? "ts_like_cs(" : "ts_like(") + asText(std::move(value)).sql + "," + asText(std::move(pattern)).sql;
    if (expr.args.size() > 2)
        sql += "," + asText(bindValue(*expr.args[2])).sql;
    return std::string(expr.negated ? "(NOT " : "(") + sql + "))";
}

std::string Binder::inList(const Expr& expr) {
    const Typed value = bindValue(*expr.args[0]);
    std::vector<Typed> members;
    SqlType type = value.type;
    for (std::size_t i = 1; i < expr.args.size(); ++i) {
        members.push_back(bindValue(*expr.args[i]));
        type = commonType(type, members.back().type, expr.line);
    }
    std::string sql;
    const bool literals = std::all_of(members.begin(), members.end(), [](const Typed& member) { return member.literal.has_value(); });
    if (literals && sameCells(value.type, type) && value.type.kind != TypeKind::Null) {
        for (const Typed& member : members)
            sql += (sql.empty() ? "" : ",") + implicitTo(member, type, expr.line).sql;
        sql = "(" + collated(value) + " IN (" + sql + "))";
    } else {
        for (const Typed& member : members)
            sql += (sql.empty() ? "" : " OR ") + compare("=", value, member, expr.line);
        sql = "(" + sql + ")";
    }
    return expr.negated ? "(NOT " + sql + ")" : sql;
}

std::string Binder::inQuery(const Expr& expr) {
    Typed value = bindValue(*expr.args[0]);
    const std::unique_ptr<BoundQuery> query = bindSubquery(*expr.query);
    if (query->columns.size() != 1)
        throw syntaxError(116, "Only one expression can be specified in the select list when the subquery is not introduced with EXISTS.",
                          expr.line);
    const std::vector<SqlType> types = {commonType(value.type, query->columns[0].value.type, expr.line)};
    value = implicitTo(std::move(value), types[0], expr.line);
    return "(" + collated(value) + (expr.negated ? " NOT IN (" : " IN (") + render(*query, &types) + "))";
}

std::string Binder::quantified(const Expr& expr) {
    const Typed value = bindValue(*expr.args[0]);
    const std::unique_ptr<BoundQuery> query = bindSubquery(*expr.query);
    if (query->columns.size() != 1)
        throw syntaxError(116, "Only one expression can be specified in the select list when the subquery is not introduced with EXISTS.",
                          expr.line);
    Typed member = query->columns[0].value;
    const std::string alias = nextAlias();
    member.sql = alias + "._c0";
    member.literal.reset();
    member.isPlace = false;
    const std::string comparison = compare(expr.text, value, member, expr.line);
    const std::string from = "EXISTS (SELECT 1 FROM (" + render(*query) + ") AS " + alias + " WHERE ";
    const std::string decided = from + (expr.all ? "NOT " : "") + comparison + ")";
    const std::string unknown = from + comparison + " IS NULL)";
    return "(CASE WHEN " + decided + " THEN " + (expr.all ? "0" : "1") + " WHEN " + unknown + " THEN NULL ELSE " + (expr.all ? "1" : "0") +
           " END)";
}

Typed Binder::subquery(const Expr& expr) {
    const std::unique_ptr<BoundQuery> query = bindSubquery(*expr.query);
    if (query->columns.size() != 1)
        throw syntaxError(116, "Only one expression can be specified in the select list when the subquery is not introduced with EXISTS.",
                          expr.line);
    Typed result;
    result.type = query->columns[0].value.type;
    result.collation = query->columns[0].value.collation;
    if (query->oneRow)
        result.sql = "(" + render(*query) + ")";
    else
        result.sql = "(SELECT ts_one(_c0) FROM (" + render(*query) + "))";
    return result;
}

} // namespace merchantry::db::tsql
