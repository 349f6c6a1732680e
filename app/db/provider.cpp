#include "app/db/provider.h"

#include "app/db/embedded/store.h"
#include "base/text.h"

namespace merchantry::db {

std::map<std::string, std::string> connectionParts(const std::string& connectionString) {
    std::map<std::string, std::string> parts;
    constexpr std::string_view kSource = "; Data Source=";
    const std::size_t catalogue = connectionString.rfind("; Initial Catalog=");
    const std::size_t source = catalogue == std::string::npos ? catalogue : connectionString.rfind(kSource, catalogue);
    for (const std::string& piece : split(connectionString.substr(0, source), ";")) {
        const std::size_t sign = piece.find('=');
        if (sign != std::string::npos)
            parts[lowerCase(trimmed(piece.substr(0, sign)))] = std::string(trimmed(piece.substr(sign + 1)));
    }
    if (source != std::string::npos)
        parts["data source"] = std::string(trimmed(connectionString.substr(source + kSource.size(), catalogue - source - kSource.size())));
    return parts;
}

std::unique_ptr<Session> Provider::open(const std::string& connectionString) {
    if (connectionString.empty()) // of a connection that was closed and let go
        throw DbError(DbError::Category::Storage, 0, "There is no connection to the store.").withHresult(kClosedObject);
    const auto parts = connectionParts(connectionString);
    const auto source = parts.find("data source");
    if (source == parts.end() || source->second.empty())
        throw DbError(DbError::Category::Storage, 0, "The configuration names no server and no store file.");
    if (source->second.find('/') == std::string::npos && !source->second.ends_with(".store"))
        throw DbError(DbError::Category::Storage, 0,
                      "\"" + source->second +
                          "\" is not the path of a store file. Stores on a server cannot be opened by this version yet.");
    auto session = Store::open(source->second)->session();
    session->setClock(clock_);
    session->setWaiter(waiter);
    return session;
}

} // namespace merchantry::db
