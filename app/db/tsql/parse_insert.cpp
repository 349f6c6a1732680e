#include "app/db/tsql/parsing.h"

namespace merchantry::db::tsql {
namespace {

void insertSource(TokenReader& in, InsertStatement& insert) {
    if (in.isWord("DEFAULT")) {
        in.take();
        in.expectWord("VALUES");
        insert.defaultValues = true;
    } else if (in.acceptWord("VALUES")) {
        do {
            insert.rows.push_back(parseValuesRow(in));
        } while (in.acceptSymbol(","));
    } else if (in.isWord("EXEC") || in.isWord("EXECUTE")) {
        insert.execute = parseExecute(in, true);
        insert.execute->line = insert.line;
        insert.execute->number = in.state.statements++;
    } else if (in.isWord("WITH")) {
        insert.commonTables = parseCommonTables(in);
        insert.query = parseQuery(in);
    } else if (startsQuery(in)) {
        insert.query = parseQuery(in);
    } else {
        in.unexpected();
    }
}

} // namespace

StatementPtr parseInsert(TokenReader& in) {
    auto statement = begun<InsertStatement>(in);
    in.take();
    statement->top = parseTop(in);
    in.acceptWord("INTO");
    if (in.peek().kind == TokenKind::Variable) {
        statement->table.parts.emplace_back(in.take().text);
        statement->table.line = statement->line;
    } else {
        statement->table = in.objectName();
    }
    if (in.isWord("WITH"))
        skipTableHints(in);
    if (in.isSymbol("(") && !startsQuery(in)) {
        statement->hasColumns = true;
        in.take();
        do {
            statement->columns.push_back(in.objectName().last());
        } while (in.acceptSymbol(","));
        in.expectSymbol(")");
    }
    statement->output = parseOutput(in);
    insertSource(in, *statement);
    return statement;
}

std::vector<ExprPtr> parseValuesRow(TokenReader& in) {
    std::vector<ExprPtr> row;
    in.expectSymbol("(");
    do {
        if (in.isWord("DEFAULT")) {
            row.push_back(newExpr(in, ExprKind::Default));
            in.take();
        } else {
            row.push_back(parseValue(in));
        }
    } while (in.acceptSymbol(","));
    in.expectSymbol(")");
    return row;
}

std::optional<OutputClause> parseOutput(TokenReader& in) {
    if (!in.acceptWord("OUTPUT"))
        return std::nullopt;
    OutputClause clause;
    do {
        clause.items.push_back(parseSelectItem(in));
    } while (in.acceptSymbol(","));
    if (in.acceptWord("INTO")) {
        if (in.peek().kind == TokenKind::Variable)
            clause.into.parts.emplace_back(in.take().text);
        else
            clause.into = in.objectName();
        if (in.isSymbol("("))
            clause.intoColumns = in.nameList();
    }
    return clause;
}

} // namespace merchantry::db::tsql
