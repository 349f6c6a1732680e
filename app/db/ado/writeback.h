#pragma once

#include "app/db/ado/rowstore.h"

#include <map>

namespace merchantry::db {

// How a changed row reaches its base tables. `pending` maps columns of the store to their new values. Each call is one statement a table.

// UPDATE … WHERE key AND the old values of the changed columns. Throws DbError kConflict when the row is no longer so,
// kReadOnly when a column belongs to no table or the table's key is not among the columns.
void writeUpdate(Session& session, const RowStore& store, int row, const std::map<int, Value>& pending);
// INSERT into the one base table of the pending columns (of all columns, when nothing is pending), then reads the row back into the store,
// defaults and identity included. Gives the store's new row.
int writeInsert(Session& session, RowStore& store, const std::map<int, Value>& pending);
// DELETE by key. Throws kConflict when the row is gone already.
void writeDelete(Session& session, const RowStore& store, int row);

} // namespace merchantry::db
