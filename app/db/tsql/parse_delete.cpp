#include "app/db/tsql/parser.h"

namespace merchantry::db::tsql {

StatementPtr Parser::deleteFrom() {
    auto statement = begin<DeleteStatement>();
    take();
    statement->top = top();
    acceptWord("FROM");
    changedTable(*statement);
    whichRows(*statement);
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
