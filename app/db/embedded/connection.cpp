#include "app/db/embedded/connection.h"

#include "app/db/messages.h"
#include "app/db/tsql/errors.h"
#include "base/platform/platform.h"

#include <cctype>
#include <random>
#include <thread>

namespace merchantry::db::embedded {
namespace {

constexpr int kBloomFilters = 0x00080000; // of SQLite's optimizations
constexpr std::chrono::seconds kLongestWait{20};
constexpr int kShortestPauseUs = 1'000;
constexpr int kLongestPauseUs = 15'000;
constexpr int kStatementCacheBytes = 16 * 1024; // kibibytes of pages: 16 MiB

constexpr int kStorageSeverity = 17;

// What the file says under a number of SQLite's own.
DbError fileError(const std::string& message, int code) {
    return DbError(DbError::Category::Storage, code, message).withSeverity(kStorageSeverity, 1);
}

// A statement that came through the binder and that SQLite does not take: nothing is wrong with the file.
DbError notUnderstood(const std::string& message) {
    return tsql::unsupported("this statement (" + message + ")");
}

DbError storageError(int native, const std::string& message) {
    return serverError(native, message).withSeverity(kStorageSeverity, 1);
}

DbError notNull(const std::string& column) {
    const std::size_t point = column.find('.');
    const std::string table = column.substr(0, point);
    const std::string name = point == std::string::npos ? column : column.substr(point + 1);
    return serverMessage(Message::NullNotAllowed, {name, table, "The statement"}).withSeverity(16, 2);
}

std::string behindColon(const std::string& message) {
    const std::size_t colon = message.find(": ");
    return colon == std::string::npos ? message : message.substr(colon + 2);
}

DbError constraintError(int extended, const std::string& message) {
    const std::string what = behindColon(message);
    switch (extended) {
    case SQLITE_CONSTRAINT_NOTNULL:
        return notNull(what);
    case SQLITE_CONSTRAINT_CHECK:
        return serverError(Message::ConstraintConflict, "The statement conflicted with the CHECK constraint \"" + what + "\".")
            .withSeverity(16, 0);
    case SQLITE_CONSTRAINT_FOREIGNKEY:
    case SQLITE_CONSTRAINT_TRIGGER:
        return serverError(Message::ConstraintConflict, "The statement conflicted with a FOREIGN KEY or REFERENCE constraint.")
            .withSeverity(16, 0);
    default:
        // The session knows which key it was.
        return serverError(Message::DuplicateKey, what).withSeverity(14, 1);
    }
}

// The address of a file that is read without its locks and its log.
std::string asItStands(const std::filesystem::path& file) {
    std::string address = "file:";
    for (const char c : std::filesystem::absolute(file).string()) {
        constexpr const char* kDigits = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) != 0 || c == '/' || c == '.' || c == '-' || c == '_')
            address += c;
        else
            address += std::string("%") + kDigits[byte / 16] + kDigits[byte % 16];
    }
    return address + "?immutable=1";
}

} // namespace

// Another connection holds the lock of the writer. The lock goes to whoever asks first when it is free, so that those who ask ever more
// seldom, as SQLite's own waiting does, may starve beside a busy one: all ask often, and by chance none for ever too late.
int Connection::waitForTurn(void* connection, int asked) {
    auto& self = *static_cast<Connection*>(connection);
    const auto now = std::chrono::steady_clock::now();
    if (asked == 0)
        self.waitingSince_ = now;
    const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(now - self.waitingSince_);
    self.waiting_ = self.waiter != nullptr;
    if (self.waiter != nullptr ? !self.waiter->goOn(waited) : waited > kLongestWait)
        return 0;
    thread_local std::minstd_rand chance{std::random_device()()};
    const int pause = std::uniform_int_distribution<int>(kShortestPauseUs, kLongestPauseUs)(chance);
    std::this_thread::sleep_for(std::chrono::microseconds(pause));
    return 1;
}

void Connection::waitIsOver() {
    waiting_ = false;
    if (waiter != nullptr)
        waiter->over();
}

Statement3::Statement3(sqlite3* db, std::string_view sql, bool lasting) {
    const int code =
        sqlite3_prepare_v3(db, sql.data(), static_cast<int>(sql.size()), lasting ? SQLITE_PREPARE_PERSISTENT : 0U, &statement_, nullptr);
    if (code == SQLITE_OK)
        return;
    const std::string message = sqlite3_errmsg(db);
    if (message.find("parser stack overflow") != std::string::npos || message.find("too large") != std::string::npos ||
        message.find("too many") != std::string::npos)
        throw serverMessage(Message::NestedTooDeeply, {}, 0);
    if (code == SQLITE_ERROR)
        throw notUnderstood(message);
    throw fileError(message, code);
}

Connection::Connection(const std::filesystem::path& file, bool durable) : file_(file) {
    openFile(std::filesystem::absolute(file).string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE); // "file:a.store" is a name, too
    try {
        setUp(durable);
    } catch (const DbError&) {
        if (!standsStill())
            throw;
        openFile(asItStands(file), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    }
}

// Nothing is written to a file that this user may only read; without a log beside it nobody else is at work on it, either.
bool Connection::standsStill() const {
    return !platform::mayWrite(file_) && !std::filesystem::exists(file_.string() + "-wal");
}

void Connection::openFile(const std::string& name, int flags) {
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(name.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    db_.reset(opened);
    if (code != SQLITE_OK) {
        const std::string message = opened ? sqlite3_errmsg(opened) : "out of memory";
        throw fileError("The store file " + file_.string() + " cannot be opened: " + message + ".", code);
    }
    sqlite3_busy_handler(opened, &Connection::waitForTurn, this);
    // A name in double quotes is a name: never a text, should the column be gone.
    sqlite3_db_config(opened, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    // SQLite's Bloom filters go by the length of a text, but texts of the store that differ in trailing blanks only are equal.
    sqlite3_test_control(SQLITE_TESTCTRL_OPTIMIZATIONS, opened, kBloomFilters);
}

// SQLite asks nobody to wait for the log, since two who take it at once would wait for each other.
void Connection::takeLog() {
    int code = SQLITE_BUSY;
    for (int asked = 0; (code & 0xFF) == SQLITE_BUSY; ++asked) {
        code = sqlite3_exec(handle(), "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
        if ((code & 0xFF) == SQLITE_BUSY && waitForTurn(this, asked) == 0)
            break;
    }
    if (waiting_)
        waitIsOver();
    if (code != SQLITE_OK)
        throw errorOf(code);
    hasLog_ = true;
}

void Connection::setUp(bool durable) {
    run(durable ? "PRAGMA synchronous=FULL" : "PRAGMA synchronous=OFF");
    run("PRAGMA foreign_keys=ON");
    run("PRAGMA temp_store=MEMORY");
    run("PRAGMA recursive_triggers=OFF");
    run("PRAGMA cache_size=-" + std::to_string(kStatementCacheBytes));
}

void Connection::putToRest() {
    if (!hasLog_)
        return;
    sqlite3_busy_timeout(handle(), 0);
    sqlite3_exec(handle(), "PRAGMA journal_mode=DELETE", nullptr, nullptr, nullptr); // refused while others are at work, who will do it
}

void Connection::run(const char* sql) {
    const int code = sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr);
    if (waiting_)
        waitIsOver();
    if (code != SQLITE_OK)
        throw errorOf(code);
}

void Connection::setReadOnly(bool readOnly) {
    if (readOnly_ == readOnly)
        return;
    run(readOnly ? "PRAGMA query_only=ON" : "PRAGMA query_only=OFF");
    readOnly_ = readOnly;
}

tsql::Cell Connection::single(const std::string& sql) {
    const Statement3 statement(handle(), sql);
    return step(statement.get()) ? tsql::columnCell(statement.get(), 0) : tsql::Cell();
}

bool Connection::step(sqlite3_stmt* statement) {
    const int code = sqlite3_step(statement);
    if (waiting_)
        waitIsOver();
    if (code == SQLITE_ROW)
        return true;
    if (code == SQLITE_DONE)
        return false;
    throw errorOf(code, statement);
}

// What can be said for certain after a statement could not be carried out by the disk: while a transaction is being committed, its last
// page may have reached the disk or not.
std::string Connection::consequence(sqlite3_stmt* statement) const {
    if (statement == nullptr)
        return " This change was not saved.";
    const std::string_view text = sqlite3_sql(statement);
    const bool commits = text.starts_with("COMMIT") || (sqlite3_stmt_readonly(statement) == 0 && sqlite3_get_autocommit(handle()) != 0);
    if (commits)
        return " This change may not have been saved; look before you repeat it.";
    return sqlite3_stmt_readonly(statement) != 0 ? "" : " This change was not saved.";
}

DbError Connection::errorOf(int code, sqlite3_stmt* statement) {
    const std::string message = sqlite3_errmsg(handle());
    if (host && host->failure) {
        DbError failure = *host->failure;
        host->failure.reset();
        return failure;
    }
    switch (code & 0xFF) {
    case SQLITE_CONSTRAINT:
        return constraintError(sqlite3_extended_errcode(handle()), message);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return serverError(1205,
                           "Another program is saving to this store and has not finished. Nothing was changed here; try again in a moment.")
            .withSeverity(13, 1);
    case SQLITE_INTERRUPT:
        return DbError(DbError::Category::Cancelled, 0, "The statement was cancelled.");
    case SQLITE_FULL:
        return storageError(1105,
                            "The disk of the store " + file_.string() + " is full. This change was not saved. Make room and try again.");
    case SQLITE_READONLY:
        if (readOnly_)
            return serverMessage(Message::SessionOnlyReads).withSeverity(16, 1);
        return storageError(3906, "The store " + file_.string() + " or its folder is read-only for this user. This change was not saved.");
    case SQLITE_CANTOPEN:
        return storageError(5120, "The store " + file_.string() +
                                      " cannot be opened: this user may not write in its folder, or the folder is gone.");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return storageError(824,
                            "The store " + file_.string() + " is damaged (" + message + "). Keep the file, and restore the newest backup.");
    case SQLITE_NOMEM:
        return storageError(701, "Out of memory.");
    case SQLITE_ERROR:
    case SQLITE_MISMATCH:
    case SQLITE_RANGE:
        return notUnderstood(message);
    case SQLITE_TOOBIG:
        return fileError("A value or statement is too large: " + message + ".", 0);
    default:
        return storageError(823, "The store " + file_.string() + " cannot be read or written (" + message + ")." + consequence(statement) +
                                     " The disk may be full or failing.");
    }
}

} // namespace merchantry::db::embedded
