#pragma once

#include <map>
#include <string>

namespace merchantry::db::server {

// Where a server is and who logs in there.
struct Address {
    std::string host;
    std::string instance; // empty for the one without a name
    int port = 0;         // 0 for the usual one, or the instance's own
    std::string user;
    std::string password;
    std::string database;
    bool encrypted = true;
    bool integrated = false; // the operating system's own login is asked for

    // "shop1", "shop1\second" or "shop1, port 1435": the server as sentences name it.
    std::string toText() const;
    // As a configuration names it, and as addressOf reads it again: "shop1,1435; Encrypt=no; Database=Trial".
    std::string sourceText() const;
    // The whole as a connection string that opens it, password included.
    std::string connectionText() const;
    // The connection string of the driver.
    std::string driverText() const;
};

// Reads the parts of a connection string. The data source is "host", "host\instance" or "host,port"; "; Encrypt=no" switches encryption
// off, behind the host as well as anywhere in the string; "; Database=name" behind the host takes another database than the string's.
// Throws DbError Storage for a port that is none.
Address addressOf(const std::map<std::string, std::string>& parts);

} // namespace merchantry::db::server
