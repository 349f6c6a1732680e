#include "app/db/tsql/parsing.h"
#include "base/guard.h"

namespace merchantry::db::tsql {
namespace {

StatementPtr tryCatch(TokenReader& in) {
    auto statement = begun<TryStatement>(in);
    in.take();
    in.take();
    in.state.batchStart = false;
    statement->body = parseBlock(in, [&] { return in.isWord("END") && in.isWord("TRY", 1); });
    in.take();
    in.take();
    in.acceptSymbol(";");
    in.expectWord("BEGIN");
    in.expectWord("CATCH");
    statement->handler = parseBlock(in, [&] { return in.isWord("END") && in.isWord("CATCH", 1); });
    in.take();
    in.take();
    return statement;
}

} // namespace

StatementPtr parseDeclare(TokenReader& in) {
    auto statement = begun<DeclareStatement>(in);
    in.take();
    if (in.peek().kind != TokenKind::Variable)
        return parseCursorDeclaration(in, in.name());
    if (in.isWord("TABLE", 1) || (in.isWord("AS", 1) && in.isWord("TABLE", 2))) {
        auto table = begun<DeclareTableStatement>(in);
        table->name = in.take().text;
        in.acceptWord("AS");
        in.take();
        table->body = parseTableBody(in);
        return table;
    }
    do {
        Declaration variable;
        variable.line = in.peek().line;
        if (in.peek().kind != TokenKind::Variable)
            in.unexpected();
        variable.name = in.take().text;
        in.acceptWord("AS");
        if (in.acceptWord("CURSOR"))
            variable.cursor = true;
        else
            variable.type = in.typeName();
        if (in.acceptSymbol("="))
            variable.value = parseValue(in);
        statement->variables.push_back(std::move(variable));
    } while (in.acceptSymbol(","));
    return statement;
}

StatementPtr parseSet(TokenReader& in) {
    if (in.peek(1).kind != TokenKind::Variable)
        return parseSetOption(in);
    auto statement = begun<SetVariableStatement>(in);
    in.take();
    statement->variable = in.take().text;
    statement->op = parseAssignmentOperator(in);
    if (in.isWord("CURSOR")) {
        in.take();
        auto cursor = begun<CursorStatement>(in);
        cursor->name = statement->variable;
        parseCursorOptions(in, *cursor);
        in.expectWord("FOR");
        cursor->query = parseQuery(in);
        parseCursorOptions(in, *cursor);
        statement->cursor = std::move(cursor);
        return statement;
    }
    statement->value = parseValue(in);
    return statement;
}

StatementPtr parseIf(TokenReader& in) {
    auto statement = begun<IfStatement>(in);
    in.take();
    statement->condition = parseCondition(in);
    in.acceptSymbol(";");
    statement->then = parseStatement(in);
    if (in.isSymbol(";") && in.isWord("ELSE", 1))
        in.take();
    if (in.acceptWord("ELSE"))
        statement->otherwise = parseStatement(in);
    return statement;
}

StatementPtr parseWhile(TokenReader& in) {
    auto statement = begun<WhileStatement>(in);
    in.take();
    statement->condition = parseCondition(in);
    const Restore within(in.state.loops, in.state.loops + 1);
    statement->body = parseStatement(in);
    return statement;
}

StatementPtr parseBegin(TokenReader& in) {
    if (in.isWord("TRAN", 1) || in.isWord("TRANSACTION", 1))
        return parseTransaction(in, StatementKind::Begin);
    if (in.isWord("TRY", 1))
        return tryCatch(in);
    auto statement = begun<BlockStatement>(in);
    in.take();
    in.state.batchStart = false;
    statement->body = parseBlock(in, [&] { return in.isWord("END"); });
    if (statement->body.empty())
        in.unexpected();
    in.take();
    return statement;
}

StatementPtr parseReturn(TokenReader& in) {
    auto statement = begun<ReturnStatement>(in);
    in.take();
    const Token& next = in.peek();
    const bool hasValue = next.kind != TokenKind::End && next.kind != TokenKind::Word &&
                          !(next.kind == TokenKind::Symbol && next.text != "(" && next.text != "-" && next.text != "+" && next.text != "~");
    const bool startsValue =
        next.kind == TokenKind::Word &&
        (next.is("CASE") || next.is("CAST") || next.is("CONVERT") || next.is("NULL") || next.is("LEFT") || next.is("RIGHT") ||
         next.is("COALESCE") || next.is("NULLIF") || (in.isName() && (in.isSymbol("(", 1) || in.isSymbol(".", 1))));
    if (hasValue || startsValue) {
        if (!in.state.inModule)
            in.fail(Message::ReturnValueOutsideModule);
        statement->value = parseValue(in);
    }
    return statement;
}

StatementPtr parseGoto(TokenReader& in) {
    auto statement = std::make_unique<GotoStatement>(StatementKind::Goto);
    in.take();
    statement->label = in.name();
    return statement;
}

StatementPtr parseRaise(TokenReader& in) {
    auto statement = begun<RaiseStatement>(in);
    in.take();
    in.expectSymbol("(");
    statement->message = parseValue(in);
    in.expectSymbol(",");
    statement->severity = parseValue(in);
    in.expectSymbol(",");
    statement->state = parseValue(in);
    while (in.acceptSymbol(","))
        statement->arguments.push_back(parseValue(in));
    in.expectSymbol(")");
    if (in.acceptWord("WITH")) {
        do {
            in.name();
        } while (in.acceptSymbol(","));
    }
    return statement;
}

StatementPtr parseThrow(TokenReader& in) {
    auto statement = begun<ThrowStatement>(in);
    in.take();
    if (in.isSymbol(";") || in.atEnd() || in.peek().kind == TokenKind::Word)
        return statement;
    statement->number = parseValue(in);
    in.expectSymbol(",");
    statement->message = parseValue(in);
    in.expectSymbol(",");
    statement->state = parseValue(in);
    return statement;
}

StatementPtr parsePrint(TokenReader& in) {
    auto statement = begun<PrintStatement>(in);
    in.take();
    statement->value = parseValue(in);
    return statement;
}

StatementPtr parseWaitFor(TokenReader& in) {
    auto statement = begun<WaitForStatement>(in);
    in.take();
    if (in.isWord("TIME"))
        return parseUnsupported(in, "WAITFOR TIME");
    in.expectWord("DELAY");
    statement->delay = parsePrimary(in);
    return statement;
}

StatementPtr parseTransaction(TokenReader& in, StatementKind kind) {
    auto statement = std::make_unique<TransactionStatement>(kind);
    in.take();
    const bool named = in.acceptWord("TRAN") || in.acceptWord("TRANSACTION");
    if (kind != StatementKind::Begin && in.acceptWord("WORK"))
        return statement;
    if (named && (in.isName() || in.peek().kind == TokenKind::Variable))
        statement->name = in.take().value();
    else if (kind == StatementKind::Save)
        in.unexpected();
    if (kind == StatementKind::Begin && in.isWord("WITH") && in.isWord("MARK", 1)) {
        in.take();
        in.take();
        if (in.peek().kind == TokenKind::Text)
            in.take();
    }
    return statement;
}

} // namespace merchantry::db::tsql
