#include "app/db/tsql/parsing.h"

#include "app/db/messages.h"

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

void requireCondition(const TokenReader& in, const Expr& expr) {
    if (isCondition(expr))
        return;
    const std::string near = in.atEnd() ? in.last().value() : in.peek().value();
    throw serverMessage(Message::NoCondition, {near}, in.peek().line).withSeverity(15, 1);
}

void requireValue(const TokenReader& in, const Expr& expr) {
    if (isCondition(expr))
        in.unexpected();
}

ExprPtr quantified(TokenReader& in, ExprPtr left, const std::string& op, int line) {
    ExprPtr result = newExpr(in, ExprKind::Quantified);
    result->line = line;
    result->all = in.take().is("ALL");
    result->text = op;
    result->args.push_back(std::move(left));
    in.expectSymbol("(");
    result->query = parseQuery(in);
    in.expectSymbol(")");
    return result;
}

ExprPtr membership(TokenReader& in, ExprPtr left, bool negated, int line) {
    ExprPtr result;
    if (in.isWord("LIKE")) {
        in.take();
        requireValue(in, *left);
        result = newExpr(in, ExprKind::Like);
        result->args.push_back(std::move(left));
        result->args.push_back(parseValue(in));
        if (in.acceptWord("ESCAPE"))
            result->args.push_back(parseValue(in));
    } else if (in.isWord("BETWEEN")) {
        in.take();
        requireValue(in, *left);
        result = newExpr(in, ExprKind::Between);
        result->args.push_back(std::move(left));
        result->args.push_back(parseValue(in));
        in.expectWord("AND");
        result->args.push_back(parseValue(in));
    } else if (in.isWord("IN")) {
        in.take();
        requireValue(in, *left);
        in.expectSymbol("(");
        result = newExpr(in, startsQuery(in) ? ExprKind::InQuery : ExprKind::InList);
        result->args.push_back(std::move(left));
        if (result->kind == ExprKind::InQuery) {
            result->query = parseQuery(in);
        } else {
            do {
                result->args.push_back(parseValue(in));
            } while (in.acceptSymbol(","));
        }
        in.expectSymbol(")");
    } else {
        return left;
    }
    result->line = line;
    result->negated = negated;
    return result;
}

ExprPtr comparisonAfter(TokenReader& in, ExprPtr left) {
    static constexpr std::array<std::string_view, 9> kOperators = {"=", "<>", "!=", "<", "<=", ">", ">=", "!<", "!>"};
    const int line = in.peek().line;
    for (const std::string_view op : kOperators) {
        if (!in.isSymbol(op))
            continue;
        requireValue(in, *left);
        in.take();
        const std::string_view meant = op == "!=" ? "<>" : op == "!<" ? ">=" : op == "!>" ? "<=" : op;
        if (in.isWord("ALL") || in.isWord("ANY") || in.isWord("SOME"))
            return quantified(in, std::move(left), std::string(meant), line);
        ExprPtr result = newExpr(in, ExprKind::Compare);
        result->text = meant;
        result->args.push_back(std::move(left));
        result->args.push_back(parseValue(in));
        return result;
    }
    const bool negated = in.isWord("NOT") && (in.isWord("LIKE", 1) || in.isWord("BETWEEN", 1) || in.isWord("IN", 1));
    if (in.isWord("IS")) {
        requireValue(in, *left);
        ExprPtr result = newExpr(in, ExprKind::IsNull);
        in.take();
        result->negated = in.acceptWord("NOT");
        in.expectWord("NULL");
        result->args.push_back(std::move(left));
        return result;
    }
    if (negated)
        in.take();
    return membership(in, std::move(left), negated, line);
}

ExprPtr product(TokenReader& in) {
    ExprPtr left = parseUnary(in);
    int links = 0;
    while (in.isSymbol("*") || in.isSymbol("/") || in.isSymbol("%")) {
        in.link(links);
        requireValue(in, *left);
        ExprPtr both = newExpr(in, ExprKind::Arithmetic);
        both->text = in.take().text;
        ExprPtr right = parseUnary(in);
        requireValue(in, *right);
        both->args.push_back(std::move(left));
        both->args.push_back(std::move(right));
        left = std::move(both);
    }
    return left;
}

ExprPtr sum(TokenReader& in) {
    ExprPtr left = product(in);
    int links = 0;
    while (in.isSymbol("+") || in.isSymbol("-") || in.isSymbol("&") || in.isSymbol("|") || in.isSymbol("^")) {
        in.link(links);
        requireValue(in, *left);
        ExprPtr both = newExpr(in, ExprKind::Arithmetic);
        both->text = in.take().text;
        ExprPtr right = product(in);
        requireValue(in, *right);
        both->args.push_back(std::move(left));
        both->args.push_back(std::move(right));
        left = std::move(both);
    }
    return left;
}

ExprPtr comparison(TokenReader& in) {
    if (in.isWord("EXISTS")) {
        ExprPtr result = newExpr(in, ExprKind::Exists);
        in.take();
        in.expectSymbol("(");
        result->query = parseQuery(in);
        in.expectSymbol(")");
        return result;
    }
    return comparisonAfter(in, sum(in));
}

ExprPtr negation(TokenReader& in) {
    if (!in.isWord("NOT"))
        return comparison(in);
    const Nesting nesting(in);
    ExprPtr result = newExpr(in, ExprKind::Not);
    in.take();
    result->args.push_back(negation(in));
    requireCondition(in, *result->args[0]);
    return result;
}

ExprPtr conjunction(TokenReader& in) {
    ExprPtr left = negation(in);
    int links = 0;
    while (in.isWord("AND")) {
        in.link(links);
        requireCondition(in, *left);
        ExprPtr both = newExpr(in, ExprKind::And);
        in.take();
        ExprPtr right = negation(in);
        requireCondition(in, *right);
        both->args.push_back(std::move(left));
        both->args.push_back(std::move(right));
        left = std::move(both);
    }
    return left;
}

} // namespace

ExprPtr newExpr(const TokenReader& in, ExprKind kind) {
    auto expr = std::make_unique<Expr>();
    expr->kind = kind;
    expr->line = in.peek().line;
    return expr;
}

ExprPtr parseExpression(TokenReader& in) {
    const Nesting nesting(in);
    ExprPtr left = conjunction(in);
    int links = 0;
    while (in.isWord("OR")) {
        in.link(links);
        requireCondition(in, *left);
        ExprPtr both = newExpr(in, ExprKind::Or);
        in.take();
        ExprPtr right = conjunction(in);
        requireCondition(in, *right);
        both->args.push_back(std::move(left));
        both->args.push_back(std::move(right));
        left = std::move(both);
    }
    return left;
}

ExprPtr parseValue(TokenReader& in) {
    const Nesting nesting(in);
    ExprPtr result = sum(in);
    requireValue(in, *result);
    return result;
}

ExprPtr parseCondition(TokenReader& in) {
    ExprPtr result = parseExpression(in);
    requireCondition(in, *result);
    return result;
}

ExprPtr parseUnary(TokenReader& in) {
    if (!in.isSymbol("-") && !in.isSymbol("+") && !in.isSymbol("~"))
        return parsePrimary(in);
    const Nesting nesting(in);
    ExprPtr result = newExpr(in, ExprKind::Unary);
    result->text = in.take().text;
    result->args.push_back(result->text == "~" ? parseUnary(in) : product(in)); // a sign binds less than * and /
    requireValue(in, *result->args[0]);
    return result;
}

} // namespace merchantry::db::tsql
