#pragma once

#include "app/ADOUtilities.h"
#include "app/failure.h"

#include <functional>

namespace merchantry::setup {

// Writes what the bound controls hold, and what `beside` sets, into the row that they are bound to. False when that failed: it was
// reported, with a plain sentence when someone else had changed the row, and nothing is pending any more.
bool writeBound(app::DataControl& data, app::FailurePlace place, const std::function<void(db::Recordset& row)>& beside = {});

} // namespace merchantry::setup
