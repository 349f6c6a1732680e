#include "app/db/embedded/filecopy.h"

#include "app/db/dberror.h"
#include "app/db/embedded/connection.h"
#include "app/db/embedded/store.h"

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
    const int result = sqlite3_open_v2(file.c_str(), &raw, flags, nullptr);
    Handle handle(raw, &sqlite3_close_v2);
    if (result != SQLITE_OK)
        failed(file, result);
    sqlite3_busy_timeout(raw, kBusyMs);
    return handle;
}

} // namespace

void copyStore(const std::filesystem::path& from, const std::filesystem::path& to) {
    embedded::requireStoreFile(from);
    const Handle source = openFile(from, SQLITE_OPEN_READONLY);
    const Handle target = openFile(to, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    sqlite3_backup* backup = sqlite3_backup_init(target.get(), "main", source.get(), "main");
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

std::vector<std::string> damageOf(const std::filesystem::path& file) {
    embedded::requireStoreFile(file);
    const embedded::Connection connection(file, true);
    embedded::registerCollations(connection.handle());
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
    return found;
}

} // namespace merchantry::db
