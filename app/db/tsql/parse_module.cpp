#include "app/db/tsql/parsing.h"
#include "base/guard.h"

namespace merchantry::db::tsql {
namespace {

// WITH ENCRYPTION, RECOMPILE, SCHEMABINDING, EXECUTE AS ...: read and of no effect.
void moduleOptions(TokenReader& in) {
    if (!in.acceptWord("WITH"))
        return;
    do {
        if (in.isWord("EXECUTE") || in.isWord("EXEC")) {
            in.take();
            in.expectWord("AS");
            in.take();
        } else if (in.isWord("RETURNS")) {
            in.take();
            in.expectWord("NULL");
            in.expectWord("ON");
            in.expectWord("NULL");
            in.expectWord("INPUT");
        } else {
            in.name();
        }
    } while (in.acceptSymbol(","));
}

ParameterClause parameter(TokenReader& in) {
    ParameterClause parameter;
    parameter.line = in.peek().line;
    if (in.peek().kind != TokenKind::Variable)
        in.unexpected();
    parameter.name = in.take().text;
    in.acceptWord("AS");
    parameter.type = in.typeName();
    if (in.acceptSymbol("="))
        parameter.defaultValue = parseConstant(in);
    parameter.output = in.acceptWord("OUTPUT") || in.acceptWord("OUT");
    if (in.acceptWord("READONLY"))
        in.fail(Message::IncorrectSyntax, {"READONLY"});
    return parameter;
}

Block moduleBody(TokenReader& in) {
    in.state.batchStart = false;
    const Restore module(in.state.inModule, true);
    const Restore numbers(in.state.statements, 0);
    return parseBlock(in, [&] { return in.atEnd(); });
}

} // namespace

StatementPtr parseCreateView(TokenReader& in, bool alter, std::size_t begin) {
    auto statement = begun<CreateViewStatement>(in);
    if (!in.state.batchStart)
        in.fail(Message::NotFirstInBatch, {"CREATE VIEW"});
    statement->alter = alter;
    in.take();
    statement->name = in.objectName();
    if (in.isSymbol("("))
        statement->columns = in.nameList();
    moduleOptions(in);
    in.expectWord("AS");
    if (in.isWord("WITH")) {
        std::vector<CommonTable> tables = parseCommonTables(in);
        statement->query = parseQuery(in);
        statement->query->commonTables = std::move(tables);
    } else {
        statement->query = parseQuery(in);
    }
    if (in.isWord("WITH") && in.isWord("CHECK", 1)) {
        in.take();
        in.take();
        in.expectWord("OPTION");
    }
    in.acceptSymbol(";");
    if (!in.atEnd())
        in.unexpected();
    statement->text = in.sourceFrom(begin);
    return statement;
}

std::vector<ParameterClause> parseParameterList(TokenReader& in) {
    std::vector<ParameterClause> parameters;
    do {
        parameters.push_back(parameter(in));
    } while (in.acceptSymbol(","));
    return parameters;
}

StatementPtr parseCreateProcedure(TokenReader& in, bool alter, std::size_t begin) {
    auto statement = begun<CreateProcedureStatement>(in);
    if (!in.state.batchStart)
        in.fail(Message::NotFirstInBatch, {"CREATE/ALTER PROCEDURE"});
    statement->alter = alter;
    in.take();
    statement->name = in.objectName();
    const bool bracketed = in.isSymbol("(") && in.peek(1).kind == TokenKind::Variable;
    if (bracketed)
        in.take();
    if (in.peek().kind == TokenKind::Variable)
        statement->parameters = parseParameterList(in);
    if (bracketed)
        in.expectSymbol(")");
    moduleOptions(in);
    if (in.isWord("FOR") && in.isWord("REPLICATION", 1)) {
        in.take();
        in.take();
    }
    in.expectWord("AS");
    statement->body = moduleBody(in);
    statement->text = in.sourceFrom(begin);
    return statement;
}

StatementPtr parseCreateFunction(TokenReader& in, bool alter, std::size_t begin) {
    auto statement = begun<CreateFunctionStatement>(in);
    if (!in.state.batchStart)
        in.fail(Message::NotFirstInBatch, {"CREATE FUNCTION"});
    statement->alter = alter;
    in.take();
    statement->name = in.objectName();
    in.expectSymbol("(");
    if (!in.isSymbol(")"))
        statement->parameters = parseParameterList(in);
    in.expectSymbol(")");
    in.expectWord("RETURNS");
    if (in.peek().kind == TokenKind::Variable)
        return parseUnsupported(in, "a function of several statements that returns a table");
    if (in.acceptWord("TABLE")) {
        moduleOptions(in);
        in.acceptWord("AS");
        in.expectWord("RETURN");
        const bool bracketed = in.acceptSymbol("(");
        statement->table = parseQuery(in);
        if (bracketed)
            in.expectSymbol(")");
        in.acceptSymbol(";");
        if (!in.atEnd())
            in.unexpected();
        statement->text = in.sourceFrom(begin);
        return statement;
    }
    statement->returns = in.typeName();
    moduleOptions(in);
    in.acceptWord("AS");
    if (!in.isWord("BEGIN"))
        in.unexpected();
    statement->body = moduleBody(in);
    statement->text = in.sourceFrom(begin);
    return statement;
}

StatementPtr parseCreateTrigger(TokenReader& in, bool alter, std::size_t begin) {
    auto statement = begun<CreateTriggerStatement>(in);
    if (!in.state.batchStart)
        in.fail(Message::NotFirstInBatch, {"CREATE TRIGGER"});
    statement->alter = alter;
    in.take();
    statement->name = in.objectName();
    in.expectWord("ON");
    statement->table = in.objectName();
    moduleOptions(in);
    if (in.isWord("INSTEAD")) {
        in.take();
        in.expectWord("OF");
        statement->insteadOf = true;
    } else if (!in.acceptWord("FOR")) {
        in.expectWord("AFTER");
    }
    do {
        if (in.acceptWord("INSERT"))
            statement->onInsert = true;
        else if (in.acceptWord("UPDATE"))
            statement->onUpdate = true;
        else if (in.acceptWord("DELETE"))
            statement->onDelete = true;
        else
            in.unexpected();
    } while (in.acceptSymbol(","));
    if (in.isWord("NOT") && in.isWord("FOR", 1)) {
        in.take();
        in.take();
        in.expectWord("REPLICATION");
    }
    in.expectWord("AS");
    statement->body = moduleBody(in);
    statement->text = in.sourceFrom(begin);
    return statement;
}

} // namespace merchantry::db::tsql
