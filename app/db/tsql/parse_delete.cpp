#include "app/db/tsql/parsing.h"

namespace merchantry::db::tsql {

StatementPtr parseDelete(TokenReader& in) {
    auto statement = begun<DeleteStatement>(in);
    in.take();
    statement->top = parseTop(in);
    in.acceptWord("FROM");
    parseChangedTable(in, *statement);
    parseWhichRows(in, *statement);
    return statement;
}

StatementPtr parseTruncate(TokenReader& in) {
    auto statement = begun<TruncateStatement>(in);
    in.take();
    in.expectWord("TABLE");
    statement->table = in.objectName();
    return statement;
}

} // namespace merchantry::db::tsql
