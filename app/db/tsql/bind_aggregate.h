#pragma once

#include "app/db/tsql/binding.h"

namespace merchantry::db::tsql {

// An aggregate over the rows of a group. Throws 130, 147 where none may stand, 8117 for a type that it does not take.
Typed bindAggregate(Binding& binding, const Expr& expr);
// An aggregate or ranking function with its OVER clause. Throws 4108, 4112, 10753.
Typed bindWindowed(Binding& binding, const Expr& expr);

bool containsAggregate(const Expr& expr);
bool containsAggregate(const SelectCore& core);

} // namespace merchantry::db::tsql
