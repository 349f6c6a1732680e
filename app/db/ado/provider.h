#pragma once

#include "app/db/session.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace merchantry::db {

namespace server {
class Server;
} // namespace server
class Ahead;

// The parts of a connection string "Key=value; Key=value", keys without case. A data source that the catalogue follows is taken whole: the
// path of a store may hold a semicolon.
std::map<std::string, std::string> connectionParts(const std::string& connectionString);

// Whether a data source is the path of a store file; any other names a server.
bool isStoreFile(const std::string& dataSource);

// The server that a connection string names. Throws DbError Storage with a sentence when the string cannot be used.
std::shared_ptr<server::Server> serverOf(const std::string& connectionString);

// Opens sessions by connection string: a data source that is a path is a store file, run in this process; anything else names a server.
// One provider lives as long as the program; connections borrow it. It keeps the connections to servers that are not in use.
class Provider {
public:
    explicit Provider(const Clock* clock = nullptr) : clock_(clock) {}

    // Throws DbError (category Storage) with a sentence for the user when the store cannot be opened.
    std::unique_ptr<Session> open(const std::string& connectionString);

    // Whether each statement takes a way there and back: the store is on a server.
    bool isFar(const std::string& connectionString) const;

    // Lets the connections to servers go that are not in use, so that a database can be restored.
    void closeIdle();

    // Who is asked while a statement of the application waits for another program; null for nobody.
    Waiter* waiter = nullptr;
    // Called with each statement that the application sends, before it runs, and with the same as it may be written down. For scripts that
    // look on.
    std::function<void(const std::string& statement, const std::string& shown)> statementSent;

    // Called with each session that is opened; what it gives is used in its place. For those that look on, to which every store is far.
    std::function<std::unique_ptr<Session>(std::unique_ptr<Session>)> sessionOpened;
    // What was read before it was asked for, owned by the screen that asks; null for nothing.
    Ahead* ahead = nullptr;

private:
    std::shared_ptr<server::Server> server(const std::string& connectionString);

    const Clock* clock_;
    std::mutex mutex_;
    std::map<std::string, std::shared_ptr<server::Server>> servers_; // by connection string
};

} // namespace merchantry::db
