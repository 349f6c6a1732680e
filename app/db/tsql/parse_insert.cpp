#include "app/db/tsql/parser.h"

namespace merchantry::db::tsql {

StatementPtr Parser::insert() {
    auto statement = begin<InsertStatement>();
    take();
    statement->top = top();
    acceptWord("INTO");
    if (peek().kind == TokenKind::Variable) {
        statement->table.parts.emplace_back(take().text);
        statement->table.line = statement->line;
    } else {
        statement->table = objectName();
    }
    if (isWord("WITH"))
        tableHints();
    if (isSymbol("(") && !startsQuery()) {
        statement->hasColumns = true;
        take();
        do {
            statement->columns.push_back(objectName().last());
        } while (acceptSymbol(","));
        expectSymbol(")");
    }
    statement->output = output();
    insertSource(*statement);
    return statement;
}

void Parser::insertSource(InsertStatement& insert) {
    if (isWord("DEFAULT")) {
        take();
        expectWord("VALUES");
        insert.defaultValues = true;
    } else if (acceptWord("VALUES")) {
        do {
            insert.rows.push_back(valuesRow());
        } while (acceptSymbol(","));
    } else if (isWord("EXEC") || isWord("EXECUTE")) {
        insert.execute = execute(true);
        insert.execute->line = insert.line;
        insert.execute->number = count_++;
    } else if (isWord("WITH")) {
        insert.commonTables = commonTables();
        insert.query = query();
    } else if (startsQuery()) {
        insert.query = query();
    } else {
        unexpected();
    }
}

std::vector<ExprPtr> Parser::valuesRow() {
    std::vector<ExprPtr> row;
    expectSymbol("(");
    do {
        if (isWord("DEFAULT")) {
            row.push_back(make(ExprKind::Default));
            take();
        } else {
            row.push_back(value());
        }
    } while (acceptSymbol(","));
    expectSymbol(")");
    return row;
}

std::optional<OutputClause> Parser::output() {
    if (!acceptWord("OUTPUT"))
        return std::nullopt;
    OutputClause clause;
    do {
        clause.items.push_back(selectItem());
    } while (acceptSymbol(","));
    if (acceptWord("INTO")) {
        if (peek().kind == TokenKind::Variable)
            clause.into.parts.emplace_back(take().text);
        else
            clause.into = objectName();
        if (isSymbol("("))
            clause.intoColumns = nameList();
    }
    return clause;
}

} // namespace merchantry::db::tsql
