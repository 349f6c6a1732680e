#pragma once

#include "app/db/server/address.h"
#include "app/db/session.h"

#include <memory>

namespace merchantry::db::server {

class Link;
class ScratchStore;

// A database on a server, and the sessions of this process on it. Connections are pooled: one that a session lets go serves the next. May
// be used from several threads; each session from one. A session keeps its server alive.
class Server : public std::enable_shared_from_this<Server> {
public:
    explicit Server(Address address);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // A session with everything as new. Throws DbError Storage with a sentence that names the cause.
    std::unique_ptr<Session> session();

    const Address& address() const { return address_; }

    // For sessions: a connection that stands, as far as can be seen, and giving it back.
    std::unique_ptr<Link> link();
    void giveBack(std::unique_ptr<Link> link);
    // For sessions: whether the server lets the process of that number wait for another one. Asked on a connection of its own; false also
    // where the login may not know.
    bool isBlocked(int process);
    // Ends the connections that no session has, the one that asks for others among them.
    void closeIdle();
    // For sessions: columns that lack their tables get them, for a batch that gave them; and the shape of a table. The link is used to read
    // the server's catalogue, once for all sessions and again when a table is not known.
    std::vector<std::vector<Column>> setsOf(Link& link, std::string_view batch, const std::vector<Parameter>& parameters);
    TableShape table(Link& link, std::string_view name);

private:
    struct State;
    std::unique_ptr<Link> takeIdle();
    ScratchStore& scratch(Link& link);
    bool renewScratch(Link& link);

    const Address address_;
    std::unique_ptr<State> state_;
};

// Runs a batch on a link; throws its first error.
void runOn(Link& link, std::string_view batch, ResultSink& sink);

} // namespace merchantry::db::server
