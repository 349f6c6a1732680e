#pragma once

#include "app/db/tsql/binding.h"

namespace merchantry::db::tsql {

// The call of a function: built-in, aggregate, over a window, or one of the store. Throws DbError (174, 195, 4121, 8116, ...).
Typed bindFunction(Binding& binding, const Expr& expr);

} // namespace merchantry::db::tsql
