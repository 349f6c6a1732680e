#pragma once

#include "app/db/tsql/binding.h"

#include <memory>
#include <vector>

namespace merchantry::db::tsql {

// A query and what it gives. An inner one may be ordered only where it is limited, too (1033).
std::unique_ptr<BoundQuery> bindQuery(Binding& binding, const Query& query);
std::unique_ptr<BoundQuery> bindSubquery(Binding& binding, const Query& query);
// The query of an expression that wants one column of it; throws 116 for more.
std::unique_ptr<BoundQuery> bindOneColumn(Binding& binding, const Expr& expr);

// The columns that a star stands for, behind those that are there.
void expandStar(Binding& binding, const SelectItem& item, Scope& scope, std::vector<BoundColumn>& columns);

// What is run for a bound query: its text, and its columns as readers see them.
QueryPlan planOf(const BoundQuery& query);
// The same for a whole statement: with variables that its items are assigned to, and the table that SELECT INTO makes.
QueryPlan bindQueryPlan(Binding& binding, const Query& query);

// A number of rows to read at most; throws where PERCENT is not supported.
std::optional<Typed> bindLimit(Binding& binding, const std::optional<TopClause>& top);

} // namespace merchantry::db::tsql
