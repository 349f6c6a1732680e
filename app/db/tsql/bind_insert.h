#pragma once

#include "app/db/tsql/binding.h"

#include <vector>

namespace merchantry::db::tsql {

// Throws DbError (109 to 121, 207, 208, 213, 264, 544, 545, 8101, ...).
ChangePlan bindInsert(Binding& binding, const InsertStatement& statement);
// INSERT ... EXEC: the columns that take the rows, as a plan whose places stand for the cells of a row by their number.
ChangePlan bindInsertRow(Binding& binding, const InsertStatement& statement, const std::vector<SqlType>& types);

} // namespace merchantry::db::tsql
