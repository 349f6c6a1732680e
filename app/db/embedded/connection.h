#pragma once

#include "app/db/dberror.h"
#include "app/db/embedded/functions.h"
#include "app/db/session.h"
#include "app/db/tsql/plan.h"

#include <sqlite3.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace merchantry::db::embedded {

class Connection;

// A prepared statement of SQLite. Moves, does not copy; it must not outlive its connection.
class Statement3 {
public:
    Statement3() = default;
    // Lasting: it will be run many times.
    Statement3(sqlite3* db, std::string_view sql, bool lasting = false);
    ~Statement3() { sqlite3_finalize(statement_); }
    Statement3(Statement3&& other) noexcept : statement_(other.statement_) { other.statement_ = nullptr; }
    Statement3& operator=(Statement3&& other) noexcept {
        std::swap(statement_, other.statement_);
        return *this;
    }
    Statement3(const Statement3&) = delete;
    Statement3& operator=(const Statement3&) = delete;

    sqlite3_stmt* get() const { return statement_; }
    explicit operator bool() const { return statement_ != nullptr; }
    bool busy() const { return sqlite3_stmt_busy(statement_) != 0; }

private:
    sqlite3_stmt* statement_ = nullptr;
};

// Resets a statement when it goes, so that it holds no rows and no read lock.
class ResetGuard {
public:
    explicit ResetGuard(sqlite3_stmt* statement) : statement_(statement) {}
    ~ResetGuard() { sqlite3_reset(statement_); }
    ResetGuard(const ResetGuard&) = delete;
    ResetGuard& operator=(const ResetGuard&) = delete;

private:
    sqlite3_stmt* statement_;
};

// One open store file: the SQLite handle with the settings that all of them have.
class Connection {
public:
    // Opens the file; throws DbError Storage when it cannot be opened or is no store of SQLite. One that this user may only read, in a
    // folder where he may not write, is read as it stands.
    Connection(const std::filesystem::path& file, bool durable);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    sqlite3* handle() const { return db_.get(); }
    // Runs SQL without rows; throws what errorOf gives.
    void run(const char* sql);
    void run(const std::string& sql) { run(sql.c_str()); }
    // A store at rest gets its write-ahead log from the first who writes: who only looks at it changes nothing. Called before each write.
    void readyToWrite() {
        if (!hasLog_)
            takeLog();
    }
    // Takes the log into the file again and says in its head that there is none, if this connection has written and nobody else works on
    // the file. Requires: no statement runs. The connection is of no use afterwards.
    void putToRest();
    // Refuses every change with error 3906 until it is taken back.
    void setReadOnly(bool readOnly);
    // The first cell of the first row; null when there is none.
    tsql::Cell single(const std::string& sql);
    // Steps; true for a row, false at the end; throws what errorOf gives.
    bool step(sqlite3_stmt* statement);
    // The error of the last call as the server's: busy, full, constraint, interrupted, and the failure of a function. The statement tells
    // what is certain to be lost by it; without one it is taken for a change.
    DbError errorOf(int code, sqlite3_stmt* statement = nullptr);

    FunctionHost* host = nullptr;
    // Asked while another connection writes; null for the twenty seconds that all wait.
    Waiter* waiter = nullptr;

private:
    static int waitForTurn(void* connection, int asked);
    void waitIsOver();
    void openFile(const std::string& name, int flags);
    void setUp(bool durable);
    void takeLog();
    bool standsStill() const;
    std::string consequence(sqlite3_stmt* statement) const;

    std::filesystem::path file_;
    struct Close {
        void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
    };
    std::unique_ptr<sqlite3, Close> db_;
    bool readOnly_ = false;
    std::chrono::steady_clock::time_point waitingSince_;
    bool hasLog_ = false;
    bool waiting_ = false; // somebody was asked whether to go on
};

} // namespace merchantry::db::embedded
