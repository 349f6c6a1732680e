#include "app/db/tsql/parsing.h"

#include <array>

namespace merchantry::db::tsql {
namespace {

Assignment assignment(TokenReader& in) {
    Assignment result;
    result.line = in.peek().line;
    if (in.peek().kind == TokenKind::Variable) {
        result.variable = in.take().text;
        if (in.isSymbol("=") && in.isName(1) &&
            (in.isSymbol("=", 2) || (in.isSymbol(".", 2) && in.isName(3) && in.isSymbol("=", 4)))) { // @v = column = value
            in.take();
            result.qualified = in.objectName();
            result.column = result.qualified.last();
        }
    } else {
        result.qualified = in.objectName();
        result.column = result.qualified.last();
    }
    result.op = parseAssignmentOperator(in);
    if (in.isWord("DEFAULT")) {
        result.value = newExpr(in, ExprKind::Default);
        in.take();
    } else {
        result.value = parseValue(in);
    }
    return result;
}

} // namespace

StatementPtr parseUpdate(TokenReader& in) {
    auto statement = begun<UpdateStatement>(in);
    in.take();
    if (in.isWord("STATISTICS")) {
        in.take();
        in.objectName();
        if (in.isSymbol("("))
            in.nameList();
        if (in.acceptWord("WITH"))
            in.objectName();
        return std::make_unique<Statement>(StatementKind::Nothing);
    }
    statement->top = parseTop(in);
    parseChangedTable(in, *statement);
    in.expectWord("SET");
    do {
        statement->assignments.push_back(assignment(in));
    } while (in.acceptSymbol(","));
    parseWhichRows(in, *statement);
    return statement;
}

void parseChangedTable(TokenReader& in, RowsStatement& statement) {
    if (in.peek().kind == TokenKind::Variable)
        statement.table.parts.emplace_back(in.take().text);
    else
        statement.table = in.objectName();
    skipTableHints(in);
}

void parseWhichRows(TokenReader& in, RowsStatement& statement) {
    statement.output = parseOutput(in);
    if (in.acceptWord("FROM"))
        statement.from = parseFromList(in);
    if (in.acceptWord("WHERE")) {
        if (in.isWord("CURRENT") && in.isWord("OF", 1)) {
            in.take();
            in.take();
            statement.currentOf = parseCursorName(in);
        } else {
            statement.where = parseCondition(in);
        }
    }
    parseQueryHints(in);
}

std::string parseAssignmentOperator(TokenReader& in) {
    static constexpr std::array<std::string_view, 9> kOperators = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^="};
    for (const std::string_view op : kOperators) {
        if (in.acceptSymbol(op))
            return std::string(op);
    }
    in.unexpected();
}

} // namespace merchantry::db::tsql
