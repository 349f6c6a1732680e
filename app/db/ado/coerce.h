#pragma once

#include "app/db/sqltype.h"
#include "base/value.h"

namespace merchantry::db {

// A value as a column of that type takes it: texts read as numbers, dates or flags, numbers rounded halves to even, anything as text.
// Throws DbError kTypeMismatch when it cannot be.
Value coerced(const Value& value, const SqlType& type);

} // namespace merchantry::db
