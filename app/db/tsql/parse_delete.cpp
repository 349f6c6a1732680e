#include "app/db/tsql/parser.h"

namespace merchantry::db::tsql {

StatementPtr Parser::deleteFrom() {
    auto statement = begin<DeleteStatement>();
    take();
    statement->top = top();
    acceptWord("FROM");
    if (peek().kind == TokenKind::Variable)
        statement->table.parts.emplace_back(take().text);
    else
        statement->table = objectName();
    tableHints();
    statement->output = output();
    if (acceptWord("FROM"))
        statement->from = fromList();
    if (acceptWord("WHERE")) {
        if (isWord("CURRENT") && isWord("OF", 1)) {
            take();
            take();
            statement->currentOf = cursorName();
        } else {
            statement->where = condition();
        }
    }
    queryHints();
    return statement;
}

StatementPtr Parser::truncate() {
    auto statement = begin<TruncateStatement>();
    take();
    expectWord("TABLE");
    statement->table = objectName();
    return statement;
}

} // namespace merchantry::db::tsql
