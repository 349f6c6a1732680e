#include "app/db/tsql/parser.h"

namespace merchantry::db::tsql {

StatementPtr Parser::declare() {
    auto statement = begin<DeclareStatement>();
    take();
    if (peek().kind != TokenKind::Variable)
        return cursorDeclaration(name());
    if (isWord("TABLE", 1) || (isWord("AS", 1) && isWord("TABLE", 2))) {
        auto table = begin<DeclareTableStatement>();
        table->name = take().text;
        acceptWord("AS");
        take();
        table->body = tableBody();
        return table;
    }
    do {
        Declaration variable;
        variable.line = peek().line;
        if (peek().kind != TokenKind::Variable)
            unexpected();
        variable.name = take().text;
        acceptWord("AS");
        if (acceptWord("CURSOR"))
            variable.cursor = true;
        else
            variable.type = typeName();
        if (acceptSymbol("="))
            variable.value = value();
        statement->variables.push_back(std::move(variable));
    } while (acceptSymbol(","));
    return statement;
}

StatementPtr Parser::set() {
    if (peek(1).kind != TokenKind::Variable)
        return setOption();
    auto statement = begin<SetVariableStatement>();
    take();
    statement->variable = take().text;
    statement->op = assignmentOperator();
    if (isWord("CURSOR")) {
        take();
        auto cursor = begin<CursorStatement>();
        cursor->name = statement->variable;
        cursorOptions(*cursor);
        expectWord("FOR");
        cursor->query = query();
        cursorOptions(*cursor);
        statement->cursor = std::move(cursor);
        return statement;
    }
    statement->value = value();
    return statement;
}

StatementPtr Parser::ifStatement() {
    auto statement = begin<IfStatement>();
    take();
    statement->condition = condition();
    acceptSymbol(";");
    statement->then = this->statement();
    if (isSymbol(";") && isWord("ELSE", 1))
        take();
    if (acceptWord("ELSE"))
        statement->otherwise = this->statement();
    return statement;
}

StatementPtr Parser::whileStatement() {
    auto statement = begin<WhileStatement>();
    take();
    statement->condition = condition();
    ++loops_;
    statement->body = this->statement();
    --loops_;
    return statement;
}

StatementPtr Parser::beginStatement() {
    if (isWord("TRAN", 1) || isWord("TRANSACTION", 1))
        return transaction(StatementKind::Begin);
    if (isWord("TRY", 1))
        return tryCatch();
    auto statement = begin<BlockStatement>();
    take();
    batchStart_ = false;
    statement->body = block([&] { return isWord("END"); });
    if (statement->body.empty())
        unexpected();
    take();
    return statement;
}

StatementPtr Parser::tryCatch() {
    auto statement = begin<TryStatement>();
    take();
    take();
    batchStart_ = false;
    statement->body = block([&] { return isWord("END") && isWord("TRY", 1); });
    take();
    take();
    acceptSymbol(";");
    expectWord("BEGIN");
    expectWord("CATCH");
    statement->handler = block([&] { return isWord("END") && isWord("CATCH", 1); });
    take();
    take();
    return statement;
}

StatementPtr Parser::returnStatement() {
    auto statement = begin<ReturnStatement>();
    take();
    const Token& next = peek();
    const bool hasValue = next.kind != TokenKind::End && next.kind != TokenKind::Word &&
                          !(next.kind == TokenKind::Symbol && next.text != "(" && next.text != "-" && next.text != "+" && next.text != "~");
    const bool startsValue = next.kind == TokenKind::Word && (next.is("CASE") || next.is("CAST") || next.is("CONVERT") || next.is("NULL") ||
                                                              next.is("LEFT") || next.is("RIGHT") || next.is("COALESCE") ||
                                                              next.is("NULLIF") || (isName() && (isSymbol("(", 1) || isSymbol(".", 1))));
    if (hasValue || startsValue) {
        if (!inModule_)
            fail(178, "A RETURN statement with a return value cannot be used in this context.");
        statement->value = value();
    }
    return statement;
}

StatementPtr Parser::gotoStatement() {
    auto statement = std::make_unique<GotoStatement>(StatementKind::Goto);
    take();
    statement->label = name();
    return statement;
}

StatementPtr Parser::raise() {
    auto statement = begin<RaiseStatement>();
    take();
    expectSymbol("(");
    statement->message = value();
    expectSymbol(",");
    statement->severity = value();
    expectSymbol(",");
    statement->state = value();
    while (acceptSymbol(","))
        statement->arguments.push_back(value());
    expectSymbol(")");
    if (acceptWord("WITH")) {
        do {
            name();
        } while (acceptSymbol(","));
    }
    return statement;
}

StatementPtr Parser::throwStatement() {
    auto statement = begin<ThrowStatement>();
    take();
    if (isSymbol(";") || atEnd() || peek().kind == TokenKind::Word)
        return statement;
    statement->number = value();
    expectSymbol(",");
    statement->message = value();
    expectSymbol(",");
    statement->state = value();
    return statement;
}

StatementPtr Parser::print() {
    auto statement = begin<PrintStatement>();
    take();
    statement->value = value();
    return statement;
}

StatementPtr Parser::waitFor() {
    auto statement = begin<WaitForStatement>();
    take();
    if (isWord("TIME"))
        return unsupported("WAITFOR TIME");
    expectWord("DELAY");
    statement->delay = primary();
    return statement;
}

StatementPtr Parser::transaction(StatementKind kind) {
    auto statement = std::make_unique<TransactionStatement>(kind);
    take();
    const bool named = acceptWord("TRAN") || acceptWord("TRANSACTION");
    if (kind != StatementKind::Begin && acceptWord("WORK"))
        return statement;
    if (named && (isName() || peek().kind == TokenKind::Variable))
        statement->name = take().value();
    else if (kind == StatementKind::Save)
        unexpected();
    if (kind == StatementKind::Begin && isWord("WITH") && isWord("MARK", 1)) {
        take();
        take();
        if (peek().kind == TokenKind::Text)
            take();
    }
    return statement;
}

} // namespace merchantry::db::tsql
