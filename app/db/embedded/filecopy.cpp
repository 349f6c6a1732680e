#include "app/db/embedded/filecopy.h"

#include "app/db/dberror.h"
#include "app/db/embedded/connection.h"

#include <memory>
#include <sqlite3.h>

namespace merchantry::db {
namespace {

using Handle = std::unique_ptr<sqlite3, decltype(&sqlite3_close_v2)>;
constexpr int kBusyMs = 10'000;

[[noreturn]] void failed(const std::filesystem::path& file, const std::string& why) {
    throw DbError(DbError::Category::Storage, 0, file.string() + ": " + why);
}

Handle openFile(const std::filesystem::path& file, int flags) {
    sqlite3* raw = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &raw, flags, nullptr);
    Handle handle(raw, &sqlite3_close_v2);
    if (result != SQLITE_OK)
        failed(file, sqlite3_errstr(result));
    sqlite3_busy_timeout(raw, kBusyMs);
    return handle;
}

} // namespace

void copyStore(const std::filesystem::path& from, const std::filesystem::path& to) {
    const Handle source = openFile(from, SQLITE_OPEN_READONLY);
    const Handle target = openFile(to, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    sqlite3_backup* backup = sqlite3_backup_init(target.get(), "main", source.get(), "main");
    if (backup == nullptr)
        failed(to, sqlite3_errmsg(target.get()));
    int result = SQLITE_OK;
    do {
        result = sqlite3_backup_step(backup, -1);
        if (result == SQLITE_BUSY || result == SQLITE_LOCKED)
            sqlite3_sleep(50);
    } while (result == SQLITE_OK || result == SQLITE_BUSY || result == SQLITE_LOCKED);
    const int finished = sqlite3_backup_finish(backup);
    if (result != SQLITE_DONE || finished != SQLITE_OK)
        failed(to, sqlite3_errstr(result != SQLITE_DONE ? result : finished));
}

std::vector<std::string> damageOf(const std::filesystem::path& file) {
    const embedded::Connection connection(file, false);
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
