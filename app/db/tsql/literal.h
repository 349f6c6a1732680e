#pragma once

#include "app/db/tsql/cell.h"

#include <string>

namespace merchantry::db::tsql {

// A cell as a literal of SQLite.
std::string literalSql(const Cell& cell);

} // namespace merchantry::db::tsql
