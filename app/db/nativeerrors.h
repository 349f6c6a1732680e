#pragma once

#include "app/db/dberror.h"

namespace merchantry::db {

// What kind of error a server's number is: the one table for both kinds of store. Raised for numbers from 50000 on, which are the
// store's own; Other for a number that nobody here tells from others.
DbError::Category categoryOf(int native);

} // namespace merchantry::db
