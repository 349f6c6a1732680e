#pragma once

#include "app/db/messages.h"

#include <string>

namespace merchantry::db::tsql {

// What the engine understands and does not do; errors in a server's words are those of messages.h.
DbError unsupported(const std::string& feature, int line = 0);

// Errors of values that end the batch and take the transaction with them, as conversions do.
bool endsBatch(int number);

} // namespace merchantry::db::tsql
