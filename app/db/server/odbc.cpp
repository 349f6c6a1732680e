#include "app/db/server/odbc.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace merchantry::db::server {
namespace {

// FreeTDS' fields of a server's message.
constexpr SQLSMALLINT kMessageState = -1150;
constexpr SQLSMALLINT kLine = -1154;
// FreeTDS' own question for the socket.
constexpr SQLUSMALLINT kSocket = 1301;

// FreeTDS' own numbers of a line that is gone: it could not be written to or read from, it ended, or it is dead.
constexpr std::array kLostNumbers{20004, 20006, 20017, 20047};

constexpr std::size_t kLongestMessage = 4096;

int numberField(SQLSMALLINT kind, SQLHANDLE handle, SQLSMALLINT record, SQLSMALLINT field) {
    SQLINTEGER number = 0;
    return SQL_SUCCEEDED(SQLGetDiagField(kind, handle, record, field, &number, SQL_IS_INTEGER, nullptr)) ? number : 0;
}

// "[FreeTDS][SQL Server]Invalid object name": who says it goes.
std::string withoutSpeakers(std::string text) {
    while (text.starts_with('[') && text.find(']') != std::string::npos)
        text.erase(0, text.find(']') + 1);
    return text;
}

} // namespace

bool Diagnostic::isLost() const {
    return state.starts_with("08") || std::find(kLostNumbers.begin(), kLostNumbers.end(), native) != kLostNumbers.end();
}

std::vector<Diagnostic> diagnosticsOf(SQLSMALLINT kind, SQLHANDLE handle) {
    std::vector<Diagnostic> all;
    std::array<SQLCHAR, 6> state{};
    std::string text(kLongestMessage, '\0');
    for (SQLSMALLINT record = 1;; ++record) {
        SQLINTEGER native = 0;
        SQLSMALLINT length = 0;
        if (!SQL_SUCCEEDED(
                SQLGetDiagRec(kind, handle, record, state.data(), &native, odbcText(text), static_cast<SQLSMALLINT>(text.size()), &length)))
            return all;
        Diagnostic one;
        one.state = reinterpret_cast<const char*>(state.data());
        one.native = native;
        one.text = withoutSpeakers(text.substr(0, std::min(text.size() - 1, static_cast<std::size_t>(length))));
        one.messageState = std::max(1, numberField(kind, handle, record, kMessageState));
        one.line = numberField(kind, handle, record, kLine);
        all.push_back(std::move(one));
    }
}

platform::LineState lineStateOf(SQLHANDLE connection) {
    std::uint64_t socket = 0; // as wide as on any system
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(SQLGetInfo(connection, kSocket, &socket, sizeof socket, &length)))
        return platform::LineState::Quiet;
    return platform::lineState(static_cast<int>(socket));
}

SQLHANDLE odbcEnvironment() {
    static const Handle<SQL_HANDLE_ENV> environment = [] {
        Handle<SQL_HANDLE_ENV> made(nullptr);
        SQLSetEnvAttr(made.get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
        return made;
    }();
    return environment.get();
}

} // namespace merchantry::db::server
