#pragma once

#include "app/db/ado/rowstore.h"
#include "app/db/session.h"

#include <functional>
#include <memory>
#include <string>

namespace merchantry::reports {

// Asked now and then with the rows read so far; false stops the query.
using KeepReading = std::function<bool(int rows)>;

// Runs a report's statement and keeps its first result, whole. The session must be one that only reads. Throws DbError; a query that was
// stopped throws category Cancelled.
std::unique_ptr<db::RowStore> readRows(db::Session& session, const std::string& statement, const KeepReading& keepReading = {});

} // namespace merchantry::reports
