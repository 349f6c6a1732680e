#pragma once

#include "app/db/dberror.h"
#include "base/platform/platform.h"

#include <sql.h>
#include <sqlext.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace merchantry::db::server {

// A handle of ODBC, freed when it goes. Moves, does not copy; what it was made from must outlive it.
template <SQLSMALLINT Kind> class Handle {
public:
    Handle() = default;
    explicit Handle(SQLHANDLE from) {
        if (!SQL_SUCCEEDED(SQLAllocHandle(Kind, from, &handle_)))
            throw DbError(DbError::Category::Storage, 0, "The system's access to servers (ODBC) gives no more handles.");
    }
    ~Handle() {
        if (handle_ != nullptr)
            SQLFreeHandle(Kind, handle_);
    }
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    SQLHANDLE get() const { return handle_; }
    static constexpr SQLSMALLINT kind = Kind;

private:
    SQLHANDLE handle_ = nullptr;
};

// What the driver or the server has to say after a call, in order.
struct Diagnostic {
    std::string state; // SQLSTATE
    int native = 0;
    std::string text;
    int messageState = 1;
    int line = 0;

    // PRINT, and what else is no error.
    bool isMessage() const { return state.starts_with("01"); }
    // The line to the server is gone, and with it the connection.
    bool isLost() const;
};

std::vector<Diagnostic> diagnosticsOf(SQLSMALLINT kind, SQLHANDLE handle);

// What can be seen of the line of a connection on which nothing runs, without asking the server. Quiet for a driver that does not show it.
platform::LineState lineStateOf(SQLHANDLE connection);

// The process's own environment of ODBC, version 3.
SQLHANDLE odbcEnvironment();

// A text as the driver takes it.
inline SQLCHAR* odbcText(std::string_view text) {
    return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.data()));
}

} // namespace merchantry::db::server
