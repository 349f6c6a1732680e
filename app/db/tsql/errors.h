#pragma once

#include "app/db/dberror.h"

#include <string>

namespace merchantry::db::tsql {

// The server's errors that the engine raises itself, each with its severity. Their numbers tell their category (nativeerrors.h).
DbError syntaxError(int number, const std::string& message, int line);
DbError nameError(int number, const std::string& message, int line);
// Bad types that are known before a statement runs (206, 257, 402, 8117, ...).
DbError typeError(int number, const std::string& message, int line);
// Values that do not fit or cannot be read (220, 245, 8115, ...).
DbError valueError(int number, const std::string& message);
DbError unsupported(const std::string& feature, int line = 0);

// Errors of values that end the batch and take the transaction with them, as conversions do.
bool endsBatch(int number);

} // namespace merchantry::db::tsql
