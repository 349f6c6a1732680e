#pragma once

#include "app/db/server/address.h"

#include <string>

namespace merchantry::db::server {

// The database of a store that is being made: a new one, or one that is there and empty. Dropped with this object unless it was kept; one
// that was there before stays.
class NewDatabase {
public:
    // Throws DbError Storage with a sentence: the server cannot be opened, the login may not make databases, or the one of that name holds
    // something.
    explicit NewDatabase(Address address);
    ~NewDatabase();
    NewDatabase(const NewDatabase&) = delete;
    NewDatabase& operator=(const NewDatabase&) = delete;

    void keep() { made_ = false; }

private:
    bool isThere() const;
    void refuseFull() const;

    const Address address_;
    bool made_ = false;
};

// Removes a database with all that it holds. Throws DbError.
void dropDatabase(const Address& address);

} // namespace merchantry::db::server
