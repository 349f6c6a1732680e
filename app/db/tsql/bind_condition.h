#pragma once

#include "app/db/tsql/binding.h"

#include <string>

namespace merchantry::db::tsql {

// A condition: 1, 0 or null. Throws DbError as bindValue does, and 4145 for an expression that is none.
Typed bindCondition(Binding& binding, const Expr& expr);
// A comparison under the session's SET ANSI_NULLS.
Typed bindCompared(const Binding& binding, const std::string& op, Typed left, Typed right, int line);

} // namespace merchantry::db::tsql
