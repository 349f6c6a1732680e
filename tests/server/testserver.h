#pragma once

#include "app/db/ado/provider.h"
#include "app/db/server/address.h"
#include "app/db/server/server.h"

#include <cstdlib>
#include <random>
#include <string>

namespace merchantry::db {

// The connection string of a server to test and measure on, that of MERCHANTRY_TEST_SERVER; empty without one.
inline std::string testServer() {
    const char* named = std::getenv("MERCHANTRY_TEST_SERVER");
    return named == nullptr ? "" : named;
}

// A database on that server that nobody else has, and that is not made yet. Requires: there is a server.
inline server::Address ownDatabase(const std::string& what) {
    server::Address address = serverOf(testServer())->address();
    address.database = "merchantry_" + what + "_" + std::to_string(std::random_device()());
    return address;
}

} // namespace merchantry::db
