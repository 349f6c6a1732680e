#include "app/db/embedded/filehead.h"

#include "app/db/dberror.h"

#include <sqlite3.h>

#include <array>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

namespace merchantry::db::embedded {
namespace {

constexpr std::string_view kMaking = ".making";
// The words that every file of SQLite begins with, which way it is written (1: with a journal, 2: with a write-ahead log), and the mark
// of the program, its highest byte first.
constexpr std::string_view kWords("SQLite format 3\0", 16);
constexpr std::size_t kWriteVersionAt = 18;
constexpr char kAtRest = 1;
constexpr std::size_t kMarkAt = 68;
using Head = std::array<char, kMarkAt + 4>;

[[noreturn]] void refuse(const std::string& sentence) {
    throw DbError(DbError::Category::Storage, 0, sentence).withSeverity(17, 1);
}

// Sentences that wait for somebody to tell them.
class Notices {
public:
    void add(const std::string& sentence) {
        const std::lock_guard lock(mutex_);
        text_ += (text_.empty() ? "" : " ") + sentence;
    }
    std::string take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(text_, "");
    }

private:
    std::mutex mutex_;
    std::string text_;
};

Notices& notices() {
    static Notices all;
    return all;
}

// A file open in SQLite's own layer, which waits with closing its descriptor while this process holds locks on the file.
class LayerFile {
public:
    // Access: SQLITE_OPEN_READONLY or SQLITE_OPEN_READWRITE.
    LayerFile(const std::filesystem::path& path, int access) : layer_(sqlite3_vfs_find(nullptr)), room_(layer_->szOsFile), name_(path) {
        int given = 0;
        opened_ = layer_->xOpen(layer_, name_.c_str(), file(), access | SQLITE_OPEN_MAIN_DB, &given) == SQLITE_OK;
    }
    ~LayerFile() {
        if (file()->pMethods == nullptr)
            return;
        if (opened_)
            file()->pMethods->xUnlock(file(), SQLITE_LOCK_NONE);
        file()->pMethods->xClose(file());
    }
    LayerFile(const LayerFile&) = delete;
    LayerFile& operator=(const LayerFile&) = delete;

    // False when the file cannot be read; what lies behind its end is zero.
    bool read(Head& head) {
        if (!opened_)
            return false;
        const int result = file()->pMethods->xRead(file(), head.data(), static_cast<int>(head.size()), 0);
        return result == SQLITE_OK || result == SQLITE_IOERR_SHORT_READ;
    }

    // Takes the file for this process alone until the object goes; false when another connection is at work on it.
    bool lockAlone() {
        const auto lock = [&](int level) { return file()->pMethods->xLock(file(), level) == SQLITE_OK; };
        return opened_ && lock(SQLITE_LOCK_SHARED) && lock(SQLITE_LOCK_RESERVED) && lock(SQLITE_LOCK_EXCLUSIVE);
    }

private:
    sqlite3_file* file() { return reinterpret_cast<sqlite3_file*>(room_.data()); }

    sqlite3_vfs* layer_;
    std::vector<char> room_; // zeroed
    std::string name_;       // SQLite keeps a pointer to it
    bool opened_ = false;
};

bool isStore(const Head& head) {
    long mark = 0;
    for (std::size_t i = kMarkAt; i < head.size(); ++i)
        mark = mark * 256 + static_cast<unsigned char>(head[i]);
    return std::string_view(head.data(), kWords.size()) == kWords && mark == kApplicationId;
}

bool isAtRest(const std::filesystem::path& file) {
    Head head{};
    return LayerFile(file, SQLITE_OPEN_READONLY).read(head) && head[kWriteVersionAt] == kAtRest;
}

// The file behind links, absolute: below SQLite a link is not followed.
std::filesystem::path followed(const std::filesystem::path& file) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::weakly_canonical(file, error);
    return error ? std::filesystem::absolute(file) : real;
}

// "shop.store-wal.aside", or with a number when there is one already.
std::filesystem::path freeName(const std::filesystem::path& wanted) {
    std::filesystem::path name = wanted;
    for (int number = 2; std::filesystem::exists(name); ++number)
        name = wanted.string() + "." + std::to_string(number);
    return name;
}

} // namespace

std::filesystem::path nameInTheMaking(const std::filesystem::path& file) {
    return file.string() + std::string(kMaking);
}

void requireStoreFile(const std::filesystem::path& file) {
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (!std::filesystem::exists(status))
        refuse(error && status.type() == std::filesystem::file_type::none
                   ? "The store " + file.string() + " cannot be reached: " + error.message() + "."
                   : "There is no store file " + file.string() + ".");
    if (!std::filesystem::is_regular_file(status))
        refuse(file.string() + " is no file: a store is a regular file.");
    if (file.string().ends_with(kMaking))
        refuse("The store " + file.string() + " was never finished. Make it again under its name without " + std::string(kMaking) + ".");
    Head head{};
    if (!LayerFile(followed(file), SQLITE_OPEN_READONLY).read(head))
        refuse("The store " + file.string() + " may not be read by this user.");
    if (!isStore(head))
        refuse("The file " + file.string() + " is no Merchantry store, or its beginning is damaged. It was not changed.");
}

void putForeignLogAside(const std::filesystem::path& named) {
    const std::filesystem::path file = followed(named);
    const std::filesystem::path log = file.string() + "-wal";
    std::error_code error;
    const auto hasLog = [&] { return std::filesystem::file_size(log, error) > 0 && !error; };
    // Whoever works with a log writes so in the head first, and takes it out last: asked for in this order, and again once alone.
    if (!hasLog() || !isAtRest(file))
        return;
    LayerFile alone(file, SQLITE_OPEN_READWRITE);
    Head head{};
    if (!alone.lockAlone() || !alone.read(head) || head[kWriteVersionAt] != kAtRest || !hasLog())
        return;
    const std::filesystem::path aside = freeName(log.string() + ".aside");
    std::filesystem::rename(log, aside, error);
    if (error)
        refuse("Beside the store " + file.string() + " lies the log of another one, " + log.string() +
               ", which would damage it. Move it away and try again.");
    std::filesystem::remove(file.string() + "-shm", error);
    notices().add("Beside the store " + file.string() + " lay the log of the store that was there before. It was not used and is kept as " +
                  aside.string() + ".");
}

} // namespace merchantry::db::embedded

namespace merchantry::db {

std::string takeStoreNotice() {
    return embedded::notices().take();
}

} // namespace merchantry::db
