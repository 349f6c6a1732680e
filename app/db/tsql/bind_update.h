#pragma once

#include "app/db/tsql/binding.h"

namespace merchantry::db::tsql {

// Throws DbError (207, 264, 271, 4406, 8102, ...).
ChangePlan bindUpdate(Binding& binding, const UpdateStatement& statement);

} // namespace merchantry::db::tsql
