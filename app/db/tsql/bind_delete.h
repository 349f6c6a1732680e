#pragma once

#include "app/db/tsql/binding.h"

namespace merchantry::db::tsql {

// Throws DbError (208, 4403, 4405, ...).
ChangePlan bindDelete(Binding& binding, const DeleteStatement& statement);

} // namespace merchantry::db::tsql
