#pragma once

#include "app/db/server/database.h"
#include "app/db/server/odbc.h"
#include "tests/server/testserver.h"

#include <cstdio>
#include <exception>
#include <string>

namespace merchantry::bench {

// A whole measurement in an empty database of its own on the server that MERCHANTRY_TEST_SERVER names; the database is dropped behind it.
// The program's exit code.
template <class Measure> int onServer(Measure&& measure) {
    if (db::testServer().empty()) {
        std::printf("skipped, no server\n");
        return 0;
    }
    try {
        const db::server::Address address = db::ownDatabase("bench");
        const db::server::NewDatabase database(address);
        measure(address);
        return 0;
    } catch (const std::exception& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}

// The driver alone, with one statement.
class BareDriver {
public:
    explicit BareDriver(const db::server::Address& address) : connection_(db::server::odbcEnvironment()) {
        const std::string text = address.driverText();
        SQLDriverConnect(connection_.get(), nullptr, db::server::odbcText(text), static_cast<SQLSMALLINT>(text.size()), nullptr, 0, nullptr,
                         SQL_DRIVER_NOPROMPT);
        statement_ = db::server::Handle<SQL_HANDLE_STMT>(connection_.get());
    }
    ~BareDriver() {
        statement_ = {};
        SQLDisconnect(connection_.get());
    }
    BareDriver(const BareDriver&) = delete;
    BareDriver& operator=(const BareDriver&) = delete;

protected:
    SQLHSTMT statement() const { return statement_.get(); }
    SQLRETURN send(const std::string& text) const {
        return SQLExecDirect(statement(), db::server::odbcText(text), static_cast<SQLINTEGER>(text.size()));
    }

private:
    db::server::Handle<SQL_HANDLE_DBC> connection_;
    db::server::Handle<SQL_HANDLE_STMT> statement_;
};

} // namespace merchantry::bench
