#pragma once

#include "app/db/dberror.h"
#include "app/db/tsql/ast.h"

#include <string_view>
#include <vector>

namespace merchantry::db::tsql {

// Reads a whole batch. Throws DbError of category Syntax (102, 105, 156, ...) with the line; nothing of a batch that is not
// understood from end to end may run. A statement that is understood but not carried out becomes an UnsupportedStatement.
Batch parseBatch(std::string_view text, bool quotedIdentifiers = true);

// Reads the text of a default, check or computed column alone.
ExprPtr parseExpressionText(std::string_view text);

// Reads a type as procedures pass it in a text, as "varchar(11)".
TypeName parseTypeText(std::string_view text);

// Reads the declaration list of sp_executesql, as "@a INT, @b VARCHAR(10) OUTPUT".
std::vector<ParameterClause> parseParameterText(std::string_view text);

} // namespace merchantry::db::tsql
