#pragma once

#include "app/db/tsql/ast.h"
#include "app/db/tsql/typed.h"

namespace merchantry::db::tsql {

// A literal of a statement: NULL, numbers, texts, binaries. Throws 1007 or 8115 for a number that no type holds.
// Requires: the expression is of such a kind.
Typed bindLiteral(const Expr& expr);

} // namespace merchantry::db::tsql
