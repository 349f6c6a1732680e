#include "app/db/tsql/parser.h"

#include "app/db/nativeerrors.h"

#include <array>

namespace merchantry::db::tsql {
namespace {

bool isCondition(const Expr& expr) {
    switch (expr.kind) {
    case ExprKind::Compare:
    case ExprKind::And:
    case ExprKind::Or:
    case ExprKind::Not:
    case ExprKind::IsNull:
    case ExprKind::Like:
    case ExprKind::Between:
    case ExprKind::InList:
    case ExprKind::InQuery:
    case ExprKind::Exists:
    case ExprKind::Quantified:
        return true;
    case ExprKind::Function: // IF UPDATE(column)
        return sameName(expr.name.last(), "UPDATE");
    default:
        return false;
    }
}

} // namespace

ExprPtr Parser::make(ExprKind kind) const {
    auto expr = std::make_unique<Expr>();
    expr->kind = kind;
    expr->line = peek().line;
    return expr;
}

void Parser::requireCondition(const Expr& expr) const {
    if (isCondition(expr))
        return;
    const std::string near = atEnd() && at_ > 0 ? tokens_[at_ - 1].value() : peek().value();
    throw serverError(4145, "An expression of non-boolean type specified in a context where a condition is expected, near '" + near + "'.",
                      peek().line)
        .withSeverity(15, 1);
}

void Parser::requireValue(const Expr& expr) const {
    if (isCondition(expr))
        unexpected();
}

ExprPtr Parser::expression() {
    const Nesting nesting(*this);
    ExprPtr left = conjunction();
    int links = 0;
    while (isWord("OR")) {
        link(links);
        requireCondition(*left);
        ExprPtr both = make(ExprKind::Or);
        take();
        ExprPtr right = conjunction();
        requireCondition(*right);
        both->args.push_back(std::move(left));
        both->args.push_back(std::move(right));
        left = std::move(both);
    }
    return left;
}

ExprPtr Parser::value() {
    const Nesting nesting(*this);
    ExprPtr result = sum();
    requireValue(*result);
    return result;
}

ExprPtr Parser::condition() {
    ExprPtr result = expression();
    requireCondition(*result);
    return result;
}

ExprPtr Parser::conjunction() {
    ExprPtr left = negation();
    int links = 0;
    while (isWord("AND")) {
        link(links);
        requireCondition(*left);
        ExprPtr both = make(ExprKind::And);
        take();
        ExprPtr right = negation();
        requireCondition(*right);
        both->args.push_back(std::move(left));
        both->args.push_back(std::move(right));
        left = std::move(both);
    }
    return left;
}

ExprPtr Parser::negation() {
    if (!isWord("NOT"))
        return comparison();
    const Nesting nesting(*this);
    ExprPtr result = make(ExprKind::Not);
    take();
    result->args.push_back(negation());
    requireCondition(*result->args[0]);
    return result;
}

ExprPtr Parser::comparison() {
    if (isWord("EXISTS")) {
        ExprPtr result = make(ExprKind::Exists);
        take();
        expectSymbol("(");
        result->query = query();
        expectSymbol(")");
        return result;
    }
    return comparisonAfter(sum());
}

ExprPtr Parser::comparisonAfter(ExprPtr left) {
    static constexpr std::array<std::string_view, 9> kOperators = {"=", "<>", "!=", "<", "<=", ">", ">=", "!<", "!>"};
    const int line = peek().line;
    for (const std::string_view op : kOperators) {
        if (!isSymbol(op))
            continue;
        requireValue(*left);
        take();
        const std::string_view meant = op == "!=" ? "<>" : op == "!<" ? ">=" : op == "!>" ? "<=" : op;
        if (isWord("ALL") || isWord("ANY") || isWord("SOME"))
            return quantified(std::move(left), std::string(meant), line);
        ExprPtr result = make(ExprKind::Compare);
        result->text = meant;
        result->args.push_back(std::move(left));
        result->args.push_back(value());
        return result;
    }
    const bool negated = isWord("NOT") && (isWord("LIKE", 1) || isWord("BETWEEN", 1) || isWord("IN", 1));
    if (isWord("IS")) {
        requireValue(*left);
        ExprPtr result = make(ExprKind::IsNull);
        take();
        result->negated = acceptWord("NOT");
        expectWord("NULL");
        result->args.push_back(std::move(left));
        return result;
    }
    if (negated)
        take();
    return membership(std::move(left), negated, line);
}

ExprPtr Parser::quantified(ExprPtr left, const std::string& op, int line) {
    ExprPtr result = make(ExprKind::Quantified);
    result->line = line;
    result->all = take().is("ALL");
    result->text = op;
    result->args.push_back(std::move(left));
    expectSymbol("(");
    result->query = query();
    expectSymbol(")");
    return result;
}

ExprPtr Parser::membership(ExprPtr left, bool negated, int line) {
    ExprPtr result;
    if (isWord("LIKE")) {
        take();
        requireValue(*left);
        result = make(ExprKind::Like);
        result->args.push_back(std::move(left));
        result->args.push_back(value());
        if (acceptWord("ESCAPE"))
            result->args.push_back(value());
    } else if (isWord("BETWEEN")) {
        take();
        requireValue(*left);
        result = make(ExprKind::Between);
        result->args.push_back(std::move(left));
        result->args.push_back(value());
        expectWord("AND");
        result->args.push_back(value());
    } else if (isWord("IN")) {
        take();
        requireValue(*left);
        expectSymbol("(");
        result = make(startsQuery() ? ExprKind::InQuery : ExprKind::InList);
        result->args.push_back(std::move(left));
        if (result->kind == ExprKind::InQuery) {
            result->query = query();
        } else {
            do {
                result->args.push_back(value());
            } while (acceptSymbol(","));
        }
        expectSymbol(")");
    } else {
        return left;
    }
    result->line = line;
    result->negated = negated;
    return result;
}

ExprPtr Parser::sum() {
    ExprPtr left = product();
    int links = 0;
    while (isSymbol("+") || isSymbol("-") || isSymbol("&") || isSymbol("|") || isSymbol("^")) {
        link(links);
        requireValue(*left);
        ExprPtr both = make(ExprKind::Arithmetic);
        both->text = take().text;
        ExprPtr right = product();
        requireValue(*right);
        both->args.push_back(std::move(left));
        both->args.push_back(std::move(right));
        left = std::move(both);
    }
    return left;
}

ExprPtr Parser::product() {
    ExprPtr left = unary();
    int links = 0;
    while (isSymbol("*") || isSymbol("/") || isSymbol("%")) {
        link(links);
        requireValue(*left);
        ExprPtr both = make(ExprKind::Arithmetic);
        both->text = take().text;
        ExprPtr right = unary();
        requireValue(*right);
        both->args.push_back(std::move(left));
        both->args.push_back(std::move(right));
        left = std::move(both);
    }
    return left;
}

ExprPtr Parser::unary() {
    if (!isSymbol("-") && !isSymbol("+") && !isSymbol("~"))
        return primary();
    const Nesting nesting(*this);
    ExprPtr result = make(ExprKind::Unary);
    result->text = take().text;
    result->args.push_back(unary());
    requireValue(*result->args[0]);
    return result;
}

} // namespace merchantry::db::tsql
