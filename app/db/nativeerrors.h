#pragma once

#include "app/db/dberror.h"

namespace merchantry::db {

// What compatible servers send where they have no number, mostly for a statement or a name that they do not understand.
constexpr int kUnnamedError = 33557097;

// What kind of error a server's number is: the one table for both kinds of store. Raised for numbers from 50000 on, which are the
// store's own; Other for a number that nobody here tells from others.
DbError::Category categoryOf(int native);

// The error of a server's number, which says what kind it is, whoever raises it.
inline DbError serverError(int native, const std::string& message, int line = 0) {
    return {categoryOf(native), native, message, line};
}

} // namespace merchantry::db
