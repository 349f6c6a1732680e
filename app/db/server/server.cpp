#include "app/db/server/server.h"

#include "app/db/eachrow.h"
#include "app/db/server/link.h"
#include "app/db/server/scratchstore.h"
#include "app/db/server/serversession.h"

#include <mutex>
#include <vector>

namespace merchantry::db::server {

struct Server::State {
    std::mutex mutex;
    std::vector<std::unique_ptr<Link>> idle;
    std::mutex askingMutex;
    std::unique_ptr<Link> asking; // whether others wait
    std::mutex scratchMutex;
    std::unique_ptr<ScratchStore> scratch;
    std::string stamp; // of the server's catalogue, when the scratch store did not know a name
};

Server::Server(Address address) : address_(std::move(address)), state_(std::make_unique<State>()) {
    if (address_.integrated)
        throw DbError(
            DbError::Category::Storage, 0,
            "The operating system's own login is not available on this system. Please switch it off in the configuration and give "
            "the password of the server's login " +
                address_.user + ".");
}

Server::~Server() = default;

std::unique_ptr<Session> Server::session() {
    return std::make_unique<ServerSession>(shared_from_this(), link());
}

std::unique_ptr<Link> Server::link() {
    while (std::unique_ptr<Link> idle = takeIdle())
        if (idle->stillStands())
            return idle;
    return std::make_unique<Link>(address_);
}

std::unique_ptr<Link> Server::takeIdle() {
    const std::lock_guard lock(state_->mutex);
    if (state_->idle.empty())
        return nullptr;
    std::unique_ptr<Link> link = std::move(state_->idle.back());
    state_->idle.pop_back();
    return link;
}

void Server::giveBack(std::unique_ptr<Link> link) {
    link->setWaiter(nullptr, {}); // it is the session's
    const std::lock_guard lock(state_->mutex);
    state_->idle.push_back(std::move(link));
}

bool Server::isBlocked(int process) {
    const std::lock_guard lock(state_->askingMutex);
    const std::string number = std::to_string(process);
    bool found = false;
    EachRow blocked([&](const RowView& row) { found = row.number(0) > 0; });
    try {
        if (state_->asking == nullptr)
            state_->asking = std::make_unique<Link>(address_);
        runOn(*state_->asking, "SELECT COUNT(*) FROM sys.sysprocesses WHERE spid = " + number + " AND blocked NOT IN (0, " + number + ")",
              blocked);
    } catch (const DbError&) { // not to be seen, or the server is gone, which the statement itself will tell
        state_->asking.reset();
    }
    return found;
}

void Server::closeIdle() {
    {
        const std::lock_guard lock(state_->mutex);
        state_->idle.clear();
    }
    const std::lock_guard lock(state_->askingMutex);
    state_->asking.reset();
}

ScratchStore& Server::scratch(Link& link) {
    if (state_->scratch == nullptr)
        state_->scratch = std::make_unique<ScratchStore>([&](std::string_view batch, ResultSink& sink) { runOn(link, batch, sink); });
    return *state_->scratch;
}

// A table, view or procedure may have been made since: then the scratch store is made anew.
bool Server::renewScratch(Link& link) {
    std::string now;
    EachRow stamp([&](const RowView& row) { now = row.value(0).toScriptText() + " " + row.value(1).toScriptText(); });
    runOn(link, "SELECT COUNT(*), MAX(object_id) FROM sys.objects", stamp);
    if (std::exchange(state_->stamp, now) == now)
        return false;
    state_->scratch.reset();
    return true;
}

std::vector<std::vector<Column>> Server::setsOf(Link& link, std::string_view batch, const std::vector<Parameter>& parameters) {
    const std::lock_guard lock(state_->scratchMutex);
    bool known = true;
    std::vector<std::vector<Column>> sets = scratch(link).setsOf(batch, parameters, known);
    return known || !renewScratch(link) ? sets : scratch(link).setsOf(batch, parameters, known);
}

TableShape Server::table(Link& link, std::string_view name) {
    const std::lock_guard lock(state_->scratchMutex);
    try {
        return scratch(link).table(name);
    } catch (const DbError&) {
        if (!renewScratch(link))
            throw;
        return scratch(link).table(name);
    }
}

void runOn(Link& link, std::string_view batch, ResultSink& sink) {
    std::vector<Parameter> none;
    std::vector<DbError> errors;
    link.run({batch, none}, sink, errors);
    if (errors.empty())
        return;
    if (link.isLost())
        throw NotConnected(lostError(link.address(), true));
    throw DbError(errors.front());
}

} // namespace merchantry::db::server
