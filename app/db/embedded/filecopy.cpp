#include "app/db/embedded/filecopy.h"

#include "app/db/dberror.h"
#include "app/db/embedded/blockcopy.h"
#include "app/db/embedded/connection.h"
#include "app/db/embedded/filecontent.h"
#include "app/db/embedded/filehead.h"
#include "app/db/embedded/text_order.h"
#include "base/guard.h"
#include "base/platform/files.h"
#include "base/platform/platform.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <sqlite3.h>
#include <utility>

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

constexpr int kMostAtOnce = 1024; // pages: 4 MB
constexpr int kLeastAtOnce = 16;
constexpr int kSteps = 20;
constexpr int kWhole = 100;

// The pages of a store on their way into another file.
class Pages {
public:
    Pages(sqlite3* source, const std::filesystem::path& from, const Handle& target, const std::filesystem::path& to)
        : from_(from), to_(to), backup_(sqlite3_backup_init(target.get(), "main", source, "main")) {
        if (backup_ == nullptr)
            failed(to, sqlite3_errcode(target.get()));
    }
    ~Pages() { sqlite3_backup_finish(backup_); }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;

    // So many more, -1 for all; false when none is left.
    bool copy(int pages) {
        const int result = sqlite3_backup_step(backup_, pages);
        const bool busy = result == SQLITE_BUSY || result == SQLITE_LOCKED;
        tries_ = busy ? tries_ + 1 : 0;
        if (result != SQLITE_OK && result != SQLITE_DONE && (!busy || tries_ >= kMostTries))
            fail(result);
        return result != SQLITE_DONE;
    }
    // How many make a step: some hundredths of a second, and some steps even of a small store.
    int part() const { return std::clamp(sqlite3_backup_pagecount(backup_) / kSteps, kLeastAtOnce, kMostAtOnce); }
    int percent() const {
        const std::int64_t all = sqlite3_backup_pagecount(backup_);
        return all == 0 ? 0 : static_cast<int>((all - sqlite3_backup_remaining(backup_)) * kWhole / all);
    }
    void finish() {
        if (const int result = sqlite3_backup_finish(std::exchange(backup_, nullptr)); result != SQLITE_OK)
            fail(result);
    }

private:
    [[noreturn]] void fail(int code) const {
        const bool damaged = (code & 0xFF) == SQLITE_CORRUPT || (code & 0xFF) == SQLITE_NOTADB;
        failed(damaged ? from_ : to_, code);
    }

    const std::filesystem::path& from_;
    const std::filesystem::path& to_;
    sqlite3_backup* backup_;
    int tries_ = 0;
};

void tell(const CopyPlan& plan, const std::filesystem::path& from, int percent) {
    if (plan.progress && !plan.progress(percent) && percent < kWhole) // then it is too late
        throw DbError(DbError::Category::Cancelled, 0, "Stopped: " + from.string() + " was not copied.");
}

void copyPages(Pages& pages, const std::filesystem::path& from, const CopyPlan& plan) {
    pages.copy(0);
    tell(plan, from, 0);
    while (pages.copy(pages.part()))
        tell(plan, from, pages.percent());
    tell(plan, from, kWhole);
}

// Holds the store as it stands now, for this connection: the pages of one moment, however long they take.
class Moment {
public:
    explicit Moment(embedded::Connection& connection) : connection_(connection) {
        connection_.run("BEGIN");
        connection_.single("SELECT COUNT(*) FROM sqlite_master");
    }
    ~Moment() { sqlite3_exec(connection_.handle(), "ROLLBACK", nullptr, nullptr, nullptr); }
    Moment(const Moment&) = delete;
    Moment& operator=(const Moment&) = delete;

private:
    embedded::Connection& connection_;
};

// A new file needs no way back: it is nothing before it is whole, and is brought to the disk at once then.
constexpr const char* kWithoutWayBack = "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF";
constexpr const char* kAtRest = "PRAGMA synchronous=OFF; PRAGMA journal_mode=DELETE";

std::int64_t pagesOf(sqlite3* db) {
    const embedded::Statement3 count(db, "PRAGMA page_count");
    return sqlite3_step(count.get()) == SQLITE_ROW ? sqlite3_column_int64(count.get(), 0) : 0;
}

// Works on a connection in a thread of its own; whoever does not wait for the end stops it.
class Beside {
public:
    Beside(embedded::Connection& connection, const std::function<void(embedded::Connection&)>& work)
        : connection_(connection), done_(std::async(std::launch::async, [&connection, &work] { work(connection); })) {}
    ~Beside() {
        if (done_.valid()) {
            sqlite3_interrupt(connection_.handle());
            done_.wait();
        }
    }
    Beside(const Beside&) = delete;
    Beside& operator=(const Beside&) = delete;

    // Throws what the work threw.
    void wait(const std::function<void()>& meanwhile) {
        while (done_.wait_for(kLookEvery) != std::future_status::ready)
            meanwhile();
        done_.get();
    }

private:
    static constexpr std::chrono::milliseconds kLookEvery{50};
    embedded::Connection& connection_;
    std::future<void> done_;
};

void copyByBlocks(embedded::Connection& source, const std::filesystem::path& from, const std::filesystem::path& to, const CopyPlan& plan) {
    const auto fails = [](const std::filesystem::path& file, int code) { failed(file, code); };
    std::optional<embedded::Connection> reader;
    if (plan.sameMoment)
        reader.emplace(from, true);
    embedded::BlockCopy copy(source, reader ? &*reader : nullptr, from, to);
    const platform::WriteBehind behind(to);
    copy.begin(fails);
    std::optional<Beside> beside;
    if (reader)
        beside.emplace(*reader, plan.sameMoment);
    tell(plan, from, 0);
    const auto part = [&](int percent) {
        if (plan.lasting)
            behind.push();
        tell(plan, from, std::min(percent, kWhole - 1));
    };
    copy.run(part, fails);
    const Handle target = openFile(to, SQLITE_OPEN_READWRITE);
    run(target, to, kAtRest);
    if (pagesOf(target.get()) != pagesOf(source.handle()))
        failed(from, SQLITE_CORRUPT);
    if (beside)
        beside->wait([&] { tell(plan, from, kWhole - 1); });
    tell(plan, from, kWhole);
}

void copyByPages(embedded::Connection& source, const std::filesystem::path& from, const std::filesystem::path& to, bool isNew,
                 const CopyPlan& plan) {
    const Handle target = openFile(to, SQLITE_OPEN_READWRITE);
    if (isNew)
        run(target, to, kWithoutWayBack);
    const Moment moment(source);
    Pages pages(source.handle(), from, target, to);
    copyPages(pages, from, plan);
    pages.finish();
    if (isNew)
        run(target, to, kAtRest);
    if (plan.sameMoment)
        plan.sameMoment(source);
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

void copyStore(const std::filesystem::path& from, const std::filesystem::path& to, const CopyPlan& plan) {
    embedded::requireStoreFile(from);
    embedded::putForeignLogAside(from);
    embedded::Connection source(from, true);
    const AtEnd atRest([&] { source.putToRest(); });
    if (plan.beside && platform::mayWrite(from))
        source.readyToWrite();
    const bool isNew = !std::filesystem::exists(to);
    try {
        if (isNew)
            platform::createPrivateFile(to);
        if (isNew && embedded::BlockCopy::fits(from))
            copyByBlocks(source, from, to, plan);
        else
            copyByPages(source, from, to, isNew, plan);
        std::future<std::uint64_t> content;
        if (plan.content != nullptr)
            content = std::async(std::launch::async, contentOf, to);
        if (isNew) {
            platform::restrictLike(to, from);
            if (plan.lasting)
                platform::syncFile(to);
        }
        if (content.valid())
            *plan.content = content.get();
    } catch (const std::filesystem::filesystem_error& error) {
        throw DbError(DbError::Category::Storage, 0,
                      to.string() + " cannot be written (" + error.code().message() +
                          "): its folder is not there, this user may not write in it, or the disk fails.");
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
