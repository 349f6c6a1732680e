#pragma once

#include "app/db/tsql/binding.h"

namespace merchantry::db::tsql {

// The value of an expression. Throws DbError of category Name (207, 4104, 8120, ...), Type (402, 8117, ...) or Syntax with its line.
Typed bindValue(Binding& binding, const Expr& expr);
// The same where groups do not matter: within a computed column or an aggregate.
Typed bindUngrouped(Binding& binding, const Expr& expr);

// Whether the expression reads tables beside those of its query: by a subquery, or by a function of the store.
bool readsMore(const Expr& expr);

} // namespace merchantry::db::tsql
