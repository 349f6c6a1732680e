#pragma once

#include "app/db/session.h"

#include <string>

namespace merchantry::app {

// Lets the identity of a copied table go on behind the last number that was given in the original, also where the rows of the newest
// numbers were deleted: no number is given twice. A table without an identity is left alone. Requires: the rows are copied, the target has
// no trigger yet. Throws DbError.
void carryLastNumber(db::Session& from, db::Session& to, const std::string& table, bool toServer);

} // namespace merchantry::app
