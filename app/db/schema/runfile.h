#pragma once

#include "app/db/session.h"

#include <string_view>

namespace merchantry::db {

// Runs the text of a file of the schema. Throws DbError, naming the file and, where the error is one of this text, the line.
void runFile(Session& session, std::string_view name, std::string_view text);

} // namespace merchantry::db
