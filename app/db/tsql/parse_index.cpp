#include "app/db/tsql/parsing.h"

namespace merchantry::db::tsql {

StatementPtr parseCreateIndex(TokenReader& in) {
    auto statement = begun<CreateIndexStatement>(in);
    statement->unique = in.acceptWord("UNIQUE");
    if (in.acceptWord("CLUSTERED"))
        statement->clustered = true;
    else
        in.acceptWord("NONCLUSTERED");
    in.expectWord("INDEX");
    statement->name = in.name();
    in.expectWord("ON");
    statement->table = in.objectName();
    statement->columns = parseIndexColumns(in);
    if (in.acceptWord("INCLUDE"))
        in.nameList();
    if (in.isWord("WHERE"))
        return parseUnsupported(in, "an index with WHERE");
    skipIndexOptions(in);
    skipStorageOptions(in);
    return statement;
}

std::vector<IndexColumn> parseIndexColumns(TokenReader& in) {
    std::vector<IndexColumn> columns;
    in.expectSymbol("(");
    do {
        IndexColumn column;
        column.name = in.name();
        column.descending = in.acceptWord("DESC");
        if (!column.descending)
            in.acceptWord("ASC");
        columns.push_back(std::move(column));
    } while (in.acceptSymbol(","));
    in.expectSymbol(")");
    return columns;
}

void skipIndexOptions(TokenReader& in) {
    if (!in.acceptWord("WITH"))
        return;
    const bool bracketed = in.acceptSymbol("(");
    do {
        if (in.isWord("FILLFACTOR") || in.isName())
            in.take();
        else
            in.unexpected();
        if (in.acceptSymbol("=") && !in.acceptWord("ON") && !in.acceptWord("OFF"))
            in.wholeNumber();
    } while (in.acceptSymbol(","));
    if (bracketed)
        in.expectSymbol(")");
}

} // namespace merchantry::db::tsql
