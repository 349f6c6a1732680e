#include "app/db/server/database.h"

#include "app/db/eachrow.h"
#include "app/db/server/link.h"
#include "app/db/server/server.h"
#include "base/text.h"

namespace merchantry::db::server {
namespace {

Address masterOf(Address address) {
    address.database = "master";
    return address;
}

std::string literal(const std::string& text) {
    return "'" + replaced(text, "'", "''") + "'";
}

std::string bracketed(const std::string& name) {
    return "[" + replaced(name, "]", "]]") + "]";
}

bool hasRows(Link& link, const std::string& select) {
    bool found = false;
    EachRow rows([&](const RowView&) { found = true; });
    runOn(link, select, rows);
    return found;
}

} // namespace

NewDatabase::NewDatabase(Address address) : address_(std::move(address)) {
    if (address_.database.empty())
        throw DbError(DbError::Category::Storage, 0, "Please name the database (Initial Catalog) that the store is to have on the server.");
    if (isThere()) {
        refuseFull();
        return;
    }
    Link link(masterOf(address_));
    NoResult none;
    runOn(link, "CREATE DATABASE " + bracketed(address_.database), none);
    made_ = true;
}

NewDatabase::~NewDatabase() {
    if (!made_)
        return;
    try {
        dropDatabase(address_);
    } catch (const std::exception&) {
        // An empty database is left; making the store again takes it.
    }
}

bool NewDatabase::isThere() const {
    Link link(masterOf(address_));
    return hasRows(link, "SELECT name FROM sys.databases WHERE name = " + literal(address_.database));
}

void NewDatabase::refuseFull() const {
    Link link(address_);
    if (hasRows(link, "SELECT TOP 1 name FROM sys.tables WHERE is_ms_shipped = 0"))
        throw DbError(DbError::Category::Storage, 0,
                      "The database " + address_.database + " on the server " + address_.toText() +
                          " holds tables already. Please choose another name; an existing store is never overwritten.");
}

void dropDatabase(const Address& address) {
    Link link(masterOf(address));
    NoResult none;
    runOn(link, "DROP DATABASE " + bracketed(address.database), none);
}

} // namespace merchantry::db::server
