#include "app/db/tsql/parser.h"

namespace merchantry::db::tsql {

StatementPtr Parser::execute(bool withWord) {
    auto statement = begin<ExecuteStatement>();
    if (withWord)
        take();
    if (withWord && isSymbol("(")) {
        auto text = begin<ExecuteTextStatement>();
        take();
        text->text = value();
        expectSymbol(")");
        return text;
    }
    if (withWord && peek().kind == TokenKind::Variable) {
        if (isSymbol("=", 1)) {
            statement->result = take().text;
            take();
        } else {
            statement->procedureVariable = take().text;
        }
    }
    if (statement->procedureVariable.empty()) {
        if (peek().kind == TokenKind::Variable)
            statement->procedureVariable = take().text;
        else
            statement->procedure = objectName();
    }
    if (isSymbol(";") && peek(1).kind == TokenKind::Integer) { // proc;1
        take();
        take();
    }
    const Token& next = peek();
    const bool none = isLabel() || next.kind == TokenKind::End || next.kind == TokenKind::SystemVariable || next.isSymbol(";") ||
                      (next.kind == TokenKind::Symbol && !next.isSymbol("-") && !next.isSymbol("+")) ||
                      (next.kind == TokenKind::Word && isReservedWord(next.text) && !next.is("NULL") && !next.is("DEFAULT"));
    if (none && next.kind == TokenKind::Symbol && !next.isSymbol(";") && !next.isSymbol(")"))
        unexpected();
    if (!none || next.kind == TokenKind::SystemVariable) {
        bool named = false;
        do {
            statement->arguments.push_back(argument());
            named = named || !statement->arguments.back().name.empty();
            if (named && statement->arguments.back().name.empty())
                fail(119, "Must pass parameter number " + std::to_string(statement->arguments.size()) +
                              " and subsequent parameters as '@name = value'. After the form '@name = value' has been used, all subsequent "
                              "parameters must be passed in the form '@name = value'.");
        } while (acceptSymbol(","));
    }
    if (isWord("WITH") && isWord("RECOMPILE", 1)) {
        take();
        take();
    }
    return statement;
}

Argument Parser::argument() {
    Argument result;
    result.line = peek().line;
    if (peek().kind == TokenKind::Variable && isSymbol("=", 1)) {
        result.name = take().text;
        take();
    }
    result.value = argumentValue();
    result.output = acceptWord("OUTPUT") || acceptWord("OUT");
    if (result.output && result.value->kind != ExprKind::Variable)
        fail(179, "Cannot use the OUTPUT option when passing a constant to a stored procedure.");
    return result;
}

// A constant, a variable or DEFAULT.
ExprPtr Parser::argumentValue() {
    const Token& token = peek();
    if (token.kind == TokenKind::Variable || token.kind == TokenKind::SystemVariable) {
        ExprPtr result = make(token.kind == TokenKind::Variable ? ExprKind::Variable : ExprKind::SystemVariable);
        result->text = take().text;
        return result;
    }
    if (token.is("DEFAULT")) {
        ExprPtr result = make(ExprKind::Default);
        take();
        return result;
    }
    return constant();
}

// A literal with or without sign, NULL, or a bare word, which is a text: what can be passed, and what a parameter can have as its default.
ExprPtr Parser::constant() {
    const Token& token = peek();
    if (token.isSymbol("-") || token.isSymbol("+")) {
        ExprPtr result = make(ExprKind::Unary);
        result->text = take().text;
        const TokenKind kind = peek().kind;
        if (kind != TokenKind::Integer && kind != TokenKind::Number && kind != TokenKind::Float && kind != TokenKind::Money)
            unexpected();
        result->args.push_back(literal());
        return result;
    }
    if (token.is("NULL")) {
        ExprPtr result = make(ExprKind::Null);
        take();
        return result;
    }
    if (isName()) {
        ExprPtr result = make(ExprKind::Text);
        result->text = take().value();
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
        return literal();
    default:
        unexpected();
    }
}

} // namespace merchantry::db::tsql
