#include "app/db/ado/provider.h"

#include "app/db/embedded/store.h"
#include "app/db/server/server.h"
#include "base/lettercase.h"
#include "base/text.h"

namespace merchantry::db {
namespace {

void addParts(std::map<std::string, std::string>& parts, const std::string& text) {
    for (const std::string& piece : split(text, ";")) {
        const std::size_t sign = piece.find('=');
        if (sign != std::string::npos)
            parts[lowerCase(trimmed(piece.substr(0, sign)))] = std::string(trimmed(piece.substr(sign + 1)));
    }
}

} // namespace

std::map<std::string, std::string> connectionParts(const std::string& connectionString) {
    std::map<std::string, std::string> parts;
    constexpr std::string_view kSource = "; Data Source=";
    const std::size_t catalogue = connectionString.rfind("; Initial Catalog=");
    const std::size_t source = catalogue == std::string::npos ? catalogue : connectionString.rfind(kSource, catalogue);
    addParts(parts, connectionString.substr(0, source));
    if (source != std::string::npos) {
        addParts(parts, connectionString.substr(catalogue + 1));
        parts["data source"] = std::string(trimmed(connectionString.substr(source + kSource.size(), catalogue - source - kSource.size())));
    }
    return parts;
}

bool isStoreFile(const std::string& dataSource) {
    return dataSource.find('/') != std::string::npos || dataSource.ends_with(".store");
}

std::shared_ptr<server::Server> serverOf(const std::string& connectionString) {
    return std::make_shared<server::Server>(server::addressOf(connectionParts(connectionString)));
}

std::shared_ptr<server::Server> Provider::server(const std::string& connectionString) {
    const std::lock_guard lock(mutex_);
    std::shared_ptr<server::Server>& known = servers_[connectionString];
    if (known == nullptr)
        known = serverOf(connectionString);
    return known;
}

bool Provider::isFar(const std::string& connectionString) const {
    const auto parts = connectionParts(connectionString);
    const auto source = parts.find("data source");
    return sessionOpened != nullptr || (source != parts.end() && !isStoreFile(source->second));
}

void Provider::closeIdle() {
    const std::lock_guard lock(mutex_);
    for (const auto& [string, server] : servers_)
        server->closeIdle();
}

std::unique_ptr<Session> Provider::open(const std::string& connectionString) {
    if (connectionString.empty()) // of a connection that was closed and let go
        throw DbError(DbError::Category::Storage, 0, "There is no connection to the store.").withHresult(kClosedObject);
    const auto parts = connectionParts(connectionString);
    const auto source = parts.find("data source");
    if (source == parts.end() || source->second.empty())
        throw DbError(DbError::Category::Storage, 0, "The configuration names no server and no store file.");
    auto session = isStoreFile(source->second) ? Store::open(source->second)->session() : server(connectionString)->session();
    if (sessionOpened)
        session = sessionOpened(std::move(session));
    session->setClock(clock_);
    session->setWaiter(waiter);
    return session;
}

} // namespace merchantry::db
