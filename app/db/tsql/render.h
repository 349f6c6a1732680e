#pragma once

#include "app/db/tsql/bound.h"
#include "app/db/tsql/plan.h"

#include <string>
#include <vector>

namespace merchantry::db::tsql {

// Writes bound trees as SQL for SQLite, with the places that they read numbered as they come. Nothing is looked up or decided here but
// where parentheses stand: SQLite takes only so many inside one another, and shorter texts are prepared in less time.

// The rows of a query, its columns in their own types.
Sql3 render(const BoundQuery& query);
// A select of one cell.
Sql3 render(const Typed& value);
Sql3 render(const BoundInsert& insert);
Sql3 render(const BoundUpdate& update);
Sql3 render(const BoundDelete& removal);
// The new rows alone: of an INSERT that a trigger takes over, and of an UPDATE with their rowids before them, every stored column given.
Sql3 renderRows(const BoundInsert& insert);
Sql3 renderRows(const BoundUpdate& update);
// Values over the rows read.
Sql3 renderRows(const std::vector<Typed>& values, const BoundRows& rows);
// A condition alone, for the definition of a table.
Sql3 renderDefinition(const Typed& condition);

} // namespace merchantry::db::tsql
