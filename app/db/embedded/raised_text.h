#pragma once

#include "app/db/sqltype.h"
#include "app/db/tsql/cell.h"

#include <string>
#include <string_view>
#include <vector>

namespace merchantry::db::embedded {

struct RaisedArgument {
    tsql::Cell cell;
    SqlType type;
};

// The text of RAISERROR with its arguments filled in: %d %i %u %o %x %X for whole numbers (%I64d for bigint), %s for texts, %% for a sign;
// with flags (- + 0 # and blank), width and precision, either of which may be * and is an argument then. What is missing or null is
// "(null)". A text longer than a message can be ends in "...". Throws DbError 2787 for a format that is none, and 2786 for an argument of
// another kind.
std::string raisedText(std::string_view format, const std::vector<RaisedArgument>& arguments);

} // namespace merchantry::db::embedded
