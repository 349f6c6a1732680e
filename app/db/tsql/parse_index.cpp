#include "app/db/tsql/parser.h"

namespace merchantry::db::tsql {

StatementPtr Parser::createIndex() {
    auto statement = begin<CreateIndexStatement>();
    statement->unique = acceptWord("UNIQUE");
    if (acceptWord("CLUSTERED"))
        statement->clustered = true;
    else
        acceptWord("NONCLUSTERED");
    expectWord("INDEX");
    statement->name = name();
    expectWord("ON");
    statement->table = objectName();
    statement->columns = indexColumns();
    if (acceptWord("INCLUDE"))
        nameList();
    if (isWord("WHERE"))
        return unsupported("an index with WHERE");
    indexOptions();
    storageOptions();
    return statement;
}

std::vector<IndexColumn> Parser::indexColumns() {
    std::vector<IndexColumn> columns;
    expectSymbol("(");
    do {
        IndexColumn column;
        column.name = name();
        column.descending = acceptWord("DESC");
        if (!column.descending)
            acceptWord("ASC");
        columns.push_back(std::move(column));
    } while (acceptSymbol(","));
    expectSymbol(")");
    return columns;
}

// WITH (FILLFACTOR = 80, ...) or WITH FILLFACTOR = 80: read and of no effect.
void Parser::indexOptions() {
    if (!acceptWord("WITH"))
        return;
    const bool bracketed = acceptSymbol("(");
    do {
        if (isWord("FILLFACTOR") || isName())
            take();
        else
            unexpected();
        if (acceptSymbol("=") && !acceptWord("ON") && !acceptWord("OFF"))
            wholeNumber();
    } while (acceptSymbol(","));
    if (bracketed)
        expectSymbol(")");
}

} // namespace merchantry::db::tsql
