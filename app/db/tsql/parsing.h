#pragma once

#include "app/db/tsql/ast.h"
#include "app/db/tsql/token_reader.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::db::tsql {

// Recursive descent: what the parse_*.cpp ask of each other, by the file in which it stands. Each begins at the token that tells what
// comes, leaves the reader behind it, and throws DbError of category Syntax at the first token that does not belong there.

// A statement or part that begins at the next token.
template <class T> std::unique_ptr<T> begun(const TokenReader& in) {
    auto part = std::make_unique<T>();
    part->line = in.peek().line;
    return part;
}

// ---- parse_expression

ExprPtr newExpr(const TokenReader& in, ExprKind kind);
// A value or a condition.
ExprPtr parseExpression(TokenReader& in);
ExprPtr parseValue(TokenReader& in);
ExprPtr parseCondition(TokenReader& in);
// A value without operators between, but with a sign.
ExprPtr parseUnary(TokenReader& in);

// ---- parse_primary

ExprPtr parsePrimary(TokenReader& in);
ExprPtr parseLiteral(TokenReader& in);
std::vector<ExprPtr> parseExpressionList(TokenReader& in);
std::vector<OrderItem> parseOrderItems(TokenReader& in);
// What the function reads, with its text.
ExprPtr parseSourced(TokenReader& in, const std::function<ExprPtr()>& read);

// ---- parse_select

// Whether a query begins here, perhaps behind opening parentheses.
bool startsQuery(const TokenReader& in);
StatementPtr parseSelect(TokenReader& in);
// WITH name AS (...) and the statement behind it.
StatementPtr parseWith(TokenReader& in);
std::vector<CommonTable> parseCommonTables(TokenReader& in);
// A query with its ORDER BY.
QueryPtr parseQuery(TokenReader& in);
std::optional<TopClause> parseTop(TokenReader& in);
SelectItem parseSelectItem(TokenReader& in);
std::vector<TableRefPtr> parseFromList(TokenReader& in);
// WITH (NOLOCK) and the like: read and of no effect.
void skipTableHints(TokenReader& in);
// OPTION (...): read and, but for MAXRECURSION of a query, of no effect.
void parseQueryHints(TokenReader& in, Query* query = nullptr);

// ---- parse_statement

// Statements up to where ends() holds, which is left to be read.
Block parseBlock(TokenReader& in, const std::function<bool()>& ends);
StatementPtr parseStatement(TokenReader& in);
// Reads to the end of the batch.
StatementPtr parseUnsupported(TokenReader& in, const std::string& feature);

// ---- parse_insert, parse_update, parse_delete

StatementPtr parseInsert(TokenReader& in);
std::vector<ExprPtr> parseValuesRow(TokenReader& in);
std::optional<OutputClause> parseOutput(TokenReader& in);
StatementPtr parseUpdate(TokenReader& in);
// The table of UPDATE and DELETE, with its hints.
void parseChangedTable(TokenReader& in, RowsStatement& statement);
// OUTPUT, FROM, WHERE and what follows.
void parseWhichRows(TokenReader& in, RowsStatement& statement);
std::string parseAssignmentOperator(TokenReader& in);
StatementPtr parseDelete(TokenReader& in);
StatementPtr parseTruncate(TokenReader& in);

// ---- parse_table, parse_index

StatementPtr parseCreateTable(TokenReader& in);
StatementPtr parseAlterTable(TokenReader& in);
StatementPtr parseCreateType(TokenReader& in);
TableBody parseTableBody(TokenReader& in);
// ON filegroup, TEXTIMAGE_ON filegroup: read and of no effect.
void skipStorageOptions(TokenReader& in);
StatementPtr parseCreateIndex(TokenReader& in);
std::vector<IndexColumn> parseIndexColumns(TokenReader& in);
// WITH (FILLFACTOR = 80, ...) or WITH FILLFACTOR = 80: read and of no effect.
void skipIndexOptions(TokenReader& in);

// ---- parse_module: begin is where the text of the definition begins

StatementPtr parseCreateView(TokenReader& in, bool alter, std::size_t begin);
StatementPtr parseCreateProcedure(TokenReader& in, bool alter, std::size_t begin);
StatementPtr parseCreateFunction(TokenReader& in, bool alter, std::size_t begin);
StatementPtr parseCreateTrigger(TokenReader& in, bool alter, std::size_t begin);
std::vector<ParameterClause> parseParameterList(TokenReader& in);

// ---- parse_control, parse_execute, parse_settings

StatementPtr parseDeclare(TokenReader& in);
StatementPtr parseSet(TokenReader& in);
StatementPtr parseSetOption(TokenReader& in);
StatementPtr parseIf(TokenReader& in);
StatementPtr parseWhile(TokenReader& in);
StatementPtr parseBegin(TokenReader& in);
StatementPtr parseReturn(TokenReader& in);
StatementPtr parseGoto(TokenReader& in);
StatementPtr parseRaise(TokenReader& in);
StatementPtr parseThrow(TokenReader& in);
StatementPtr parsePrint(TokenReader& in);
StatementPtr parseWaitFor(TokenReader& in);
StatementPtr parseTransaction(TokenReader& in, StatementKind kind);
StatementPtr parseExecute(TokenReader& in, bool withWord);
// A literal with or without sign, NULL, or a bare word, which is a text: what can be passed, and what a parameter can have as its default.
ExprPtr parseConstant(TokenReader& in);

// ---- parse_cursor

StatementPtr parseCursorDeclaration(TokenReader& in, std::string name);
StatementPtr parseCursorAction(TokenReader& in, CursorStatement::Action action);
StatementPtr parseFetch(TokenReader& in);
std::string parseCursorName(TokenReader& in);
void parseCursorOptions(TokenReader& in, CursorStatement& cursor);

} // namespace merchantry::db::tsql
