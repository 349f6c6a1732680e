#include "app/db/tsql/bind_condition.h"

#include "app/db/tsql/bind_expression.h"
#include "app/db/tsql/bind_select.h"
#include "app/db/tsql/errors.h"

#include <algorithm>

namespace merchantry::db::tsql {
namespace {

Typed either(bool isNegated, Typed meant) {
    return isNegated ? negated(std::move(meant)) : meant;
}

// a AND b AND c in one form: SQLite takes few parentheses inside one another.
Typed chained(Binding& binding, const Expr& expr) {
    std::vector<const Expr*> operands;
    const Expr* first = &expr;
    for (; first->kind == expr.kind; first = first->args[0].get())
        operands.push_back(first->args[1].get());
    form::Junction junction{expr.kind == ExprKind::And, {bindCondition(binding, *first)}};
    for (auto operand = operands.rbegin(); operand != operands.rend(); ++operand)
        junction.conditions.push_back(bindCondition(binding, **operand));
    return condition(std::move(junction));
}

Typed between(Binding& binding, const Expr& expr) {
    const Typed value = bindValue(binding, *expr.args[0]);
    Typed low = bindCompared(binding, ">=", value, bindValue(binding, *expr.args[1]), expr.line);
    Typed high = bindCompared(binding, "<=", value, bindValue(binding, *expr.args[2]), expr.line);
    return either(expr.negated, condition(form::Junction{true, {std::move(low), std::move(high)}}));
}

Typed like(Binding& binding, const Expr& expr) {
    std::vector<Typed> arguments;
    for (const ExprPtr& arg : expr.args)
        arguments.push_back(bindValue(binding, *arg));
    const Collation collation = arguments[0].collation;
    const bool caseCounts = collation == Collation::CaseCounts || collation == Collation::Binary;
    for (Typed& argument : arguments) {
        if (!argument.type.isText())
            argument = convertTo(std::move(argument), varcharType(8000));
    }
    return either(expr.negated, called(caseCounts ? "ts_like_cs" : "ts_like", std::move(arguments), simpleType(TypeKind::Bit)));
}

Typed inList(Binding& binding, const Expr& expr) {
    const Typed value = bindValue(binding, *expr.args[0]);
    std::vector<Typed> members;
    SqlType type = value.type;
    for (std::size_t i = 1; i < expr.args.size(); ++i) {
        members.push_back(bindValue(binding, *expr.args[i]));
        type = commonType(type, members.back().type, expr.line);
    }
    const bool literals = std::all_of(members.begin(), members.end(), [](const Typed& member) { return member.literal() != nullptr; });
    if (literals && sameCells(value.type, type) && value.type.kind != TypeKind::Null) {
        for (Typed& member : members)
            member = implicitTo(std::move(member), type, expr.line);
        return either(expr.negated, condition(form::InList{collated(value), std::move(members)}));
    }
    form::Junction any{false, {}};
    for (Typed& member : members)
        any.conditions.push_back(bindCompared(binding, "=", value, std::move(member), expr.line));
    return either(expr.negated, condition(std::move(any)));
}

Typed inQuery(Binding& binding, const Expr& expr) {
    Typed value = bindValue(binding, *expr.args[0]);
    std::unique_ptr<BoundQuery> query = bindOneColumn(binding, expr);
    const SqlType type = commonType(value.type, query->columns[0].value.type, expr.line);
    convertColumns(*query, {type});
    return either(expr.negated, condition(form::InQuery{collated(implicitTo(std::move(value), type, expr.line)), std::move(query)}));
}

// Whether a row of the query meets the condition.
Typed anyRow(const std::shared_ptr<const BoundQuery>& query, const std::string& alias, Typed met) {
    auto rows = std::make_shared<BoundQuery>();
    rows->rows.from = from::Any{from::Subquery{query, alias}};
    rows->rows.where = std::move(met);
    rows->columns.emplace_back().value = wholeNumber(1);
    return condition(form::Exists{std::move(rows)});
}

// ANY is decided by a row that fits, ALL by one that does not; else a row that is unknown leaves it unknown.
Typed quantified(Binding& binding, const Expr& expr) {
    const Typed value = bindValue(binding, *expr.args[0]);
    std::unique_ptr<BoundQuery> bound = bindOneColumn(binding, expr);
    Typed member = bound->columns[0].value;
    const std::shared_ptr<const BoundQuery> query = std::move(bound);
    const std::string alias = binding.nextAlias();
    member.form = queryColumn(alias, 0, member.type).form;
    const Typed fits = bindCompared(binding, expr.text, value, member, expr.line);
    const SqlType bit = simpleType(TypeKind::Bit);
    form::Case decided;
    decided.whens.emplace_back(anyRow(query, alias, either(expr.all, fits)), wholeNumber(expr.all ? 0 : 1));
    decided.whens.emplace_back(anyRow(query, alias, condition(form::IsNull{fits})), literalOf(Cell(), bit));
    decided.otherwise = wholeNumber(expr.all ? 1 : 0);
    return typed(std::move(decided), bit);
}

} // namespace

Typed bindCompared(const Binding& binding, const std::string& op, Typed left, Typed right, int line) {
    return compared(op, std::move(left), std::move(right), line, !binding.context.ansiNulls);
}

Typed bindCondition(Binding& binding, const Expr& expr) {
    switch (expr.kind) {
    case ExprKind::And:
    case ExprKind::Or:
        return chained(binding, expr);
    case ExprKind::Not:
        return negated(bindCondition(binding, *expr.args[0]));
    case ExprKind::Compare: {
        Typed left = bindValue(binding, *expr.args[0]);
        return bindCompared(binding, expr.text, std::move(left), bindValue(binding, *expr.args[1]), expr.line);
    }
    case ExprKind::IsNull:
        return condition(form::IsNull{bindValue(binding, *expr.args[0]), expr.negated});
    case ExprKind::Like:
        return like(binding, expr);
    case ExprKind::Between:
        return between(binding, expr);
    case ExprKind::InList:
        return inList(binding, expr);
    case ExprKind::InQuery:
        return inQuery(binding, expr);
    case ExprKind::Exists:
        return condition(form::Exists{bindSubquery(binding, *expr.query)});
    case ExprKind::Quantified:
        return quantified(binding, expr);
    case ExprKind::Function:
        return bindValue(binding, expr);
    default:
        throw serverError(Message::NoCondition, "An expression of non-boolean type specified in a context where a condition is expected.",
                          expr.line);
    }
}

} // namespace merchantry::db::tsql
