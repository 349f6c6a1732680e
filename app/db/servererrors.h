#pragma once

#include "app/db/dberror.h"

namespace merchantry::db {

// There is no connection to the server: it could not be opened, or was lost.
class NotConnected : public DbError {
public:
    explicit NotConnected(const std::string& sentence) : DbError(Category::Storage, 0, sentence) {}
};

// The server gave a statement up because others were in the way just then (1205, 1222). Nothing of a whole transaction was done, and it
// may be run again.
class TryAgain : public DbError {
public:
    explicit TryAgain(const DbError& error) : DbError(error) {}
};

} // namespace merchantry::db
