#include "app/db/tsql/parser.h"

namespace merchantry::db::tsql {

StatementPtr Parser::createView(bool alter, std::size_t begin) {
    auto statement = this->begin<CreateViewStatement>();
    if (!batchStart_)
        fail(111, "'CREATE VIEW' must be the first statement in a query batch.");
    statement->alter = alter;
    take();
    statement->name = objectName();
    if (isSymbol("("))
        statement->columns = nameList();
    moduleOptions();
    expectWord("AS");
    if (isWord("WITH")) {
        std::vector<CommonTable> tables = commonTables();
        statement->query = query();
        statement->query->commonTables = std::move(tables);
    } else {
        statement->query = query();
    }
    if (isWord("WITH") && isWord("CHECK", 1)) {
        take();
        take();
        expectWord("OPTION");
    }
    acceptSymbol(";");
    if (!atEnd())
        unexpected();
    statement->text = sourceFrom(begin);
    return statement;
}

// WITH ENCRYPTION, RECOMPILE, SCHEMABINDING, EXECUTE AS ...: read and of no effect.
void Parser::moduleOptions() {
    if (!acceptWord("WITH"))
        return;
    do {
        if (isWord("EXECUTE") || isWord("EXEC")) {
            take();
            expectWord("AS");
            take();
        } else if (isWord("RETURNS")) {
            take();
            expectWord("NULL");
            expectWord("ON");
            expectWord("NULL");
            expectWord("INPUT");
        } else {
            name();
        }
    } while (acceptSymbol(","));
}

std::vector<ParameterClause> Parser::parameterList() {
    std::vector<ParameterClause> parameters;
    do {
        parameters.push_back(parameter());
    } while (acceptSymbol(","));
    return parameters;
}

ParameterClause Parser::parameter() {
    ParameterClause parameter;
    parameter.line = peek().line;
    if (peek().kind != TokenKind::Variable)
        unexpected();
    parameter.name = take().text;
    acceptWord("AS");
    parameter.type = typeName();
    if (acceptSymbol("="))
        parameter.defaultValue = constant();
    parameter.output = acceptWord("OUTPUT") || acceptWord("OUT");
    if (acceptWord("READONLY"))
        fail(102, "Incorrect syntax near 'READONLY'.");
    return parameter;
}

Block Parser::moduleBody() {
    batchStart_ = false;
    inModule_ = true;
    const int outer = count_;
    count_ = 0;
    Block body = block([&] { return atEnd(); });
    count_ = outer;
    inModule_ = false;
    return body;
}

StatementPtr Parser::createProcedure(bool alter, std::size_t begin) {
    auto statement = this->begin<CreateProcedureStatement>();
    if (!batchStart_)
        fail(111, "'CREATE/ALTER PROCEDURE' must be the first statement in a query batch.");
    statement->alter = alter;
    take();
    statement->name = objectName();
    const bool bracketed = isSymbol("(") && peek(1).kind == TokenKind::Variable;
    if (bracketed)
        take();
    if (peek().kind == TokenKind::Variable)
        statement->parameters = parameterList();
    if (bracketed)
        expectSymbol(")");
    moduleOptions();
    if (isWord("FOR") && isWord("REPLICATION", 1)) {
        take();
        take();
    }
    expectWord("AS");
    statement->body = moduleBody();
    statement->text = sourceFrom(begin);
    return statement;
}

StatementPtr Parser::createFunction(bool alter, std::size_t begin) {
    auto statement = this->begin<CreateFunctionStatement>();
    if (!batchStart_)
        fail(111, "'CREATE FUNCTION' must be the first statement in a query batch.");
    statement->alter = alter;
    take();
    statement->name = objectName();
    expectSymbol("(");
    if (!isSymbol(")"))
        statement->parameters = parameterList();
    expectSymbol(")");
    expectWord("RETURNS");
    if (peek().kind == TokenKind::Variable)
        return unsupported("a function of several statements that returns a table");
    if (acceptWord("TABLE")) {
        moduleOptions();
        acceptWord("AS");
        expectWord("RETURN");
        const bool bracketed = acceptSymbol("(");
        statement->table = query();
        if (bracketed)
            expectSymbol(")");
        acceptSymbol(";");
        if (!atEnd())
            unexpected();
        statement->text = sourceFrom(begin);
        return statement;
    }
    statement->returns = typeName();
    moduleOptions();
    acceptWord("AS");
    if (!isWord("BEGIN"))
        unexpected();
    statement->body = moduleBody();
    statement->text = sourceFrom(begin);
    return statement;
}

StatementPtr Parser::createTrigger(bool alter, std::size_t begin) {
    auto statement = this->begin<CreateTriggerStatement>();
    if (!batchStart_)
        fail(111, "'CREATE TRIGGER' must be the first statement in a query batch.");
    statement->alter = alter;
    take();
    statement->name = objectName();
    expectWord("ON");
    statement->table = objectName();
    moduleOptions();
    if (isWord("INSTEAD")) {
        take();
        expectWord("OF");
        statement->insteadOf = true;
    } else if (!acceptWord("FOR")) {
        expectWord("AFTER");
    }
    do {
        if (acceptWord("INSERT"))
            statement->onInsert = true;
        else if (acceptWord("UPDATE"))
            statement->onUpdate = true;
        else if (acceptWord("DELETE"))
            statement->onDelete = true;
        else
            unexpected();
    } while (acceptSymbol(","));
    if (isWord("NOT") && isWord("FOR", 1)) {
        take();
        take();
        expectWord("REPLICATION");
    }
    expectWord("AS");
    statement->body = moduleBody();
    statement->text = sourceFrom(begin);
    return statement;
}

} // namespace merchantry::db::tsql
