#include "app/db/tsql/parsing.h"

namespace merchantry::db::tsql {
namespace {

// A constant, a variable or DEFAULT.
ExprPtr argumentValue(TokenReader& in) {
    const Token& token = in.peek();
    if (token.kind == TokenKind::Variable || token.kind == TokenKind::SystemVariable) {
        ExprPtr result = newExpr(in, token.kind == TokenKind::Variable ? ExprKind::Variable : ExprKind::SystemVariable);
        result->text = in.take().text;
        return result;
    }
    if (token.is("DEFAULT")) {
        ExprPtr result = newExpr(in, ExprKind::Default);
        in.take();
        return result;
    }
    return parseConstant(in);
}

Argument argument(TokenReader& in) {
    Argument result;
    result.line = in.peek().line;
    if (in.peek().kind == TokenKind::Variable && in.isSymbol("=", 1)) {
        result.name = in.take().text;
        in.take();
    }
    result.value = argumentValue(in);
    result.output = in.acceptWord("OUTPUT") || in.acceptWord("OUT");
    if (result.output && result.value->kind != ExprKind::Variable)
        in.fail(Message::OutputOfConstant);
    return result;
}

} // namespace

StatementPtr parseExecute(TokenReader& in, bool withWord) {
    auto statement = begun<ExecuteStatement>(in);
    if (withWord)
        in.take();
    if (withWord && in.isSymbol("(")) {
        auto text = begun<ExecuteTextStatement>(in);
        in.take();
        text->text = parseValue(in);
        in.expectSymbol(")");
        return text;
    }
    if (withWord && in.peek().kind == TokenKind::Variable) {
        if (in.isSymbol("=", 1)) {
            statement->result = in.take().text;
            in.take();
        } else {
            statement->procedureVariable = in.take().text;
        }
    }
    if (statement->procedureVariable.empty()) {
        if (in.peek().kind == TokenKind::Variable)
            statement->procedureVariable = in.take().text;
        else
            statement->procedure = in.objectName();
    }
    if (in.isSymbol(";") && in.peek(1).kind == TokenKind::Integer) { // proc;1
        in.take();
        in.take();
    }
    const Token& next = in.peek();
    const bool none = in.isLabel() || next.kind == TokenKind::End || next.kind == TokenKind::SystemVariable || next.isSymbol(";") ||
                      (next.kind == TokenKind::Symbol && !next.isSymbol("-") && !next.isSymbol("+")) ||
                      (next.kind == TokenKind::Word && isReservedWord(next.text) && !next.is("NULL") && !next.is("DEFAULT"));
    if (none && next.kind == TokenKind::Symbol && !next.isSymbol(";") && !next.isSymbol(")"))
        in.unexpected();
    if (!none || next.kind == TokenKind::SystemVariable) {
        bool named = false;
        do {
            statement->arguments.push_back(argument(in));
            named = named || !statement->arguments.back().name.empty();
            if (named && statement->arguments.back().name.empty())
                in.fail(Message::NamedParameterFirst, {std::to_string(statement->arguments.size())});
        } while (in.acceptSymbol(","));
    }
    if (in.isWord("WITH") && in.isWord("RECOMPILE", 1)) {
        in.take();
        in.take();
    }
    return statement;
}

ExprPtr parseConstant(TokenReader& in) {
    const Token& token = in.peek();
    if (token.isSymbol("-") || token.isSymbol("+")) {
        ExprPtr result = newExpr(in, ExprKind::Unary);
        result->text = in.take().text;
        const TokenKind kind = in.peek().kind;
        if (kind != TokenKind::Integer && kind != TokenKind::Number && kind != TokenKind::Float && kind != TokenKind::Money)
            in.unexpected();
        result->args.push_back(parseLiteral(in));
        return result;
    }
    if (token.is("NULL")) {
        ExprPtr result = newExpr(in, ExprKind::Null);
        in.take();
        return result;
    }
    if (in.isName()) {
        ExprPtr result = newExpr(in, ExprKind::Text);
        result->text = in.take().value();
        return result;
    }
    switch (token.kind) {
    case TokenKind::Integer:
    case TokenKind::Number:
    case TokenKind::Float:
    case TokenKind::Money:
    case TokenKind::Text:
    case TokenKind::WideText:
    case TokenKind::Binary:
        return parseLiteral(in);
    default:
        in.unexpected();
    }
}

} // namespace merchantry::db::tsql
