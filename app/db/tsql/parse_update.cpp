#include "app/db/tsql/parser.h"

#include <array>

namespace merchantry::db::tsql {

StatementPtr Parser::update() {
    auto statement = begin<UpdateStatement>();
    take();
    if (isWord("STATISTICS")) {
        take();
        objectName();
        if (isSymbol("("))
            nameList();
        if (acceptWord("WITH"))
            objectName();
        return std::make_unique<Statement>(StatementKind::Nothing);
    }
    statement->top = top();
    changedTable(*statement);
    expectWord("SET");
    do {
        statement->assignments.push_back(assignment());
    } while (acceptSymbol(","));
    whichRows(*statement);
    return statement;
}

void Parser::changedTable(RowsStatement& statement) {
    if (peek().kind == TokenKind::Variable)
        statement.table.parts.emplace_back(take().text);
    else
        statement.table = objectName();
    tableHints();
}

void Parser::whichRows(RowsStatement& statement) {
    statement.output = output();
    if (acceptWord("FROM"))
        statement.from = fromList();
    if (acceptWord("WHERE")) {
        if (isWord("CURRENT") && isWord("OF", 1)) {
            take();
            take();
            statement.currentOf = cursorName();
        } else {
            statement.where = condition();
        }
    }
    queryHints();
}

std::string Parser::assignmentOperator() {
    static constexpr std::array<std::string_view, 9> kOperators = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^="};
    for (const std::string_view op : kOperators) {
        if (acceptSymbol(op))
            return std::string(op);
    }
    unexpected();
}

Assignment Parser::assignment() {
    Assignment result;
    result.line = peek().line;
    if (peek().kind == TokenKind::Variable) {
        result.variable = take().text;
        if (isSymbol("=") && isName(1) &&
            (isSymbol("=", 2) || (isSymbol(".", 2) && isName(3) && isSymbol("=", 4)))) { // @v = column = value
            take();
            result.qualified = objectName();
            result.column = result.qualified.last();
        }
    } else {
        result.qualified = objectName();
        result.column = result.qualified.last();
    }
    result.op = assignmentOperator();
    if (isWord("DEFAULT")) {
        result.value = make(ExprKind::Default);
        take();
    } else {
        result.value = value();
    }
    return result;
}

} // namespace merchantry::db::tsql
