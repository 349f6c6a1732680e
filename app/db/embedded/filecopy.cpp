#include "app/db/embedded/filecopy.h"

#include "app/db/dberror.h"
#include "app/db/embedded/connection.h"
#include "app/db/embedded/filehead.h"
#include "app/db/embedded/text_order.h"
#include "base/platform/platform.h"

#include <memory>
#include <sqlite3.h>

namespace merchantry::db {
namespace {

using Handle = std::unique_ptr<sqlite3, decltype(&sqlite3_close_v2)>;
constexpr int kBusyMs = 10'000;

constexpr int kMostTries = 6; // each waits as long as that

// What went wrong with one of the two files, as a sentence.
[[noreturn]] void failed(const std::filesystem::path& file, int code) {
    const std::string name = file.string();
    const auto sentence = [&]() -> std::string {
        switch (code & 0xFF) {
        case SQLITE_FULL:
            return "The disk is full: " + name + " was not written. Make room and try again.";
        case SQLITE_READONLY:
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
            return name + " cannot be written: its folder is not there, or this user may not write in it.";
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return "The store " + name + " is damaged and was not copied.";
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return "The store " + name + " is in use and stayed so. Close the programs that work on it and try again.";
        default:
            return name + " was not copied (" + sqlite3_errstr(code) + "). The disk may be full or failing.";
        }
    };
    throw DbError(DbError::Category::Storage, 0, sentence());
}

Handle openFile(const std::filesystem::path& file, int flags) {
    sqlite3* raw = nullptr;
    const int result = sqlite3_open_v2(std::filesystem::absolute(file).c_str(), &raw, flags, nullptr);
    Handle handle(raw, &sqlite3_close_v2);
    if (result != SQLITE_OK)
        failed(file, result);
    sqlite3_busy_timeout(raw, kBusyMs);
    return handle;
}

void run(const Handle& handle, const std::filesystem::path& file, const char* sql) {
    if (const int result = sqlite3_exec(handle.get(), sql, nullptr, nullptr, nullptr); result != SQLITE_OK)
        failed(file, result);
}

void copyPages(sqlite3* source, const std::filesystem::path& from, const Handle& target, const std::filesystem::path& to) {
    sqlite3_backup* backup = sqlite3_backup_init(target.get(), "main", source, "main");
    if (backup == nullptr)
        failed(to, sqlite3_errcode(target.get()));
    int result = SQLITE_BUSY;
    for (int tries = 0; tries < kMostTries && (result == SQLITE_BUSY || result == SQLITE_LOCKED); ++tries)
        result = sqlite3_backup_step(backup, -1);
    const int finished = sqlite3_backup_finish(backup);
    if (result != SQLITE_DONE || finished != SQLITE_OK) {
        const int code = result != SQLITE_DONE ? result : finished;
        const bool damaged = (code & 0xFF) == SQLITE_CORRUPT || (code & 0xFF) == SQLITE_NOTADB;
        failed(damaged ? from : to, code);
    }
}

// Whether another program holds the file open.
bool isHeld(const std::filesystem::path& file) {
    const Handle handle = openFile(file, SQLITE_OPEN_READWRITE);
    sqlite3_busy_timeout(handle.get(), 0);
    const char* const kTakeAll = "PRAGMA locking_mode=EXCLUSIVE; BEGIN EXCLUSIVE; SELECT COUNT(*) FROM sqlite_master; ROLLBACK";
    const int result = sqlite3_exec(handle.get(), kTakeAll, nullptr, nullptr, nullptr) & 0xFF;
    return result == SQLITE_BUSY || result == SQLITE_LOCKED;
}

void removeAll(const std::filesystem::path& file) {
    std::error_code ignored;
    for (const char* ending : {"", "-wal", "-shm", "-journal"})
        std::filesystem::remove(file.string() + ending, ignored);
}

} // namespace

void copyStore(const std::filesystem::path& from, const std::filesystem::path& to) {
    embedded::requireStoreFile(from);
    embedded::putForeignLogAside(from);
    embedded::Connection source(from, true);
    const bool isNew = !std::filesystem::exists(to);
    try {
        if (isNew)
            platform::createPrivateFile(to);
        const Handle target = openFile(to, SQLITE_OPEN_READWRITE);
        copyPages(source.handle(), from, target, to);
        if (isNew) {
            run(target, to, "PRAGMA journal_mode=DELETE");
            platform::restrictLike(to, from);
        }
        source.putToRest();
    } catch (const std::filesystem::filesystem_error& error) {
        throw DbError(DbError::Category::Storage, 0,
                      to.string() + " cannot be written (" + error.code().message() +
                          "): its folder is not there, or this user may not write in it.");
    }
}

NewStoreFile::NewStoreFile(std::filesystem::path name) : name_(std::move(name)), path_(embedded::nameInTheMaking(name_)) {
    if (std::filesystem::exists(name_))
        throw DbError(DbError::Category::Storage, 0,
                      "There is a file " + name_.string() + " already. Choose another name; nothing was changed.");
    if (std::filesystem::exists(path_) && isHeld(path_))
        throw DbError(DbError::Category::Storage, 0, "Another program is making " + name_.string() + " now. Wait for it, then look again.");
    removeAll(path_);
}

NewStoreFile::~NewStoreFile() {
    if (!finished_)
        removeAll(path_);
}

void NewStoreFile::finish() {
    std::error_code error;
    if (std::filesystem::file_size(path_.string() + "-wal", error) > 0 && !error)
        throw DbError(DbError::Category::Storage, 0,
                      name_.string() + " was not made: its last changes did not reach the disk, which may be full or failing.");
    try {
        platform::moveToNewName(path_, name_);
    } catch (const std::filesystem::filesystem_error& problem) {
        throw DbError(DbError::Category::Storage, 0, name_.string() + " was not made: " + problem.code().message() + ".");
    }
    finished_ = true;
}

namespace {

// References to tables that the file does not have: its pages may be sound, but nothing can be written to such a table.
std::vector<std::string> brokenReferences(embedded::Connection& connection) {
    std::vector<std::string> found;
    const embedded::Statement3 select(
        connection.handle(),
        "SELECT m.name, f.\"table\" FROM sqlite_master m, pragma_foreign_key_list(m.name) f WHERE m.type = 'table' AND NOT "
        "EXISTS (SELECT 1 FROM sqlite_master p WHERE p.type = 'table' AND p.name = f.\"table\" COLLATE NOCASE)");
    while (connection.step(select.get())) {
        const auto text = [&](int column) { return std::string(reinterpret_cast<const char*>(sqlite3_column_text(select.get(), column))); };
        found.push_back("The table " + text(0) + " refers to a table " + text(1) + ", which is not there: its definition is damaged.");
    }
    return found;
}

} // namespace

std::vector<std::string> damageOf(const std::filesystem::path& file) {
    embedded::requireStoreFile(file);
    embedded::putForeignLogAside(file);
    embedded::Connection connection(file, true);
    embedded::registerCollations(connection.handle(), embedded::textOrderOf(connection.handle()));
    // What a check asks (the time, the user) may be answered otherwise than when the row came; the session's functions are not known here.
    connection.run("PRAGMA ignore_check_constraints=ON");
    std::vector<std::string> found;
    const auto take = [](void* list, int, char** cells, char**) {
        const std::string line = cells[0] == nullptr ? "" : cells[0];
        if (line != "ok")
            static_cast<std::vector<std::string>*>(list)->push_back(line);
        return 0;
    };
    char* error = nullptr;
    if (sqlite3_exec(connection.handle(), "PRAGMA integrity_check(20)", take, &found, &error) != SQLITE_OK) {
        const std::string why = error == nullptr ? "cannot be read" : error;
        sqlite3_free(error);
        found.push_back(why);
    }
    if (found.empty())
        found = brokenReferences(connection);
    connection.putToRest();
    return found;
}

} // namespace merchantry::db
