#include "app/db/embedded/blockcopy.h"

#include "app/db/embedded/connection.h"
#include "base/platform/platform.h"

#include <algorithm>
#include <vector>

namespace merchantry::db::embedded {
namespace {

constexpr sqlite3_int64 kBlock = 1 << 16; // the most that SQLite's layer takes at once
constexpr sqlite3_int64 kPart = 1 << 22;
constexpr int kWhole = 100;

std::filesystem::path logOf(const std::filesystem::path& store) {
    return store.string() + "-wal";
}

// A file in SQLite's own layer, written block by block.
class LayerFile {
public:
    explicit LayerFile(const std::filesystem::path& path, int flags)
        : layer_(sqlite3_vfs_find(nullptr)), room_(static_cast<std::size_t>(layer_->szOsFile)), name_(path.string() + '\0') {
        int given = 0;
        opened_ = layer_->xOpen(layer_, name_.c_str(), file(), flags | SQLITE_OPEN_MAIN_DB, &given);
    }
    ~LayerFile() {
        if (file()->pMethods != nullptr)
            file()->pMethods->xClose(file());
    }
    LayerFile(const LayerFile&) = delete;
    LayerFile& operator=(const LayerFile&) = delete;

    int opened() const { return opened_; }
    sqlite3_file* file() { return reinterpret_cast<sqlite3_file*>(room_.data()); }

private:
    sqlite3_vfs* layer_;
    std::vector<char> room_; // zeroed
    std::string name_;       // SQLite keeps a pointer to it, and looks behind its end
    int opened_ = SQLITE_ERROR;
};

void requireOk(int code, const std::filesystem::path& file, const BlockCopy::Failed& failed) {
    if (code != SQLITE_OK)
        failed(file, code);
}

sqlite3_int64 sizeOf(sqlite3_file* file, const std::filesystem::path& path, const BlockCopy::Failed& failed) {
    sqlite3_int64 size = 0;
    requireOk(file->pMethods->xFileSize(file, &size), path, failed);
    return size;
}

// What is behind the end of a file that became shorter meanwhile is zero, and cut off again with its log.
void copyBlocks(sqlite3_file* source, const std::filesystem::path& from, sqlite3_file* target, const std::filesystem::path& to,
                const std::function<void(int percent)>& part, const BlockCopy::Failed& failed) {
    std::vector<char> block(kBlock);
    const sqlite3_int64 size = sizeOf(source, from, failed);
    for (sqlite3_int64 at = 0; at < size; at += kBlock) {
        const int bytes = static_cast<int>(std::min(kBlock, size - at));
        const int read = source->pMethods->xRead(source, block.data(), bytes, at);
        requireOk(read == SQLITE_IOERR_SHORT_READ ? SQLITE_OK : read, from, failed);
        requireOk(target->pMethods->xWrite(target, block.data(), bytes, at), to, failed);
        if (part && (at + bytes) % kPart == 0)
            part(static_cast<int>((at + bytes) * kWhole / size));
    }
}

void copyFile(const std::filesystem::path& from, const std::filesystem::path& to, const BlockCopy::Failed& failed) {
    LayerFile source(from, SQLITE_OPEN_READONLY);
    requireOk(source.opened(), from, failed);
    LayerFile target(to, SQLITE_OPEN_READWRITE);
    requireOk(target.opened(), to, failed);
    copyBlocks(source.file(), from, target.file(), to, {}, failed);
}

bool hasLog(const std::filesystem::path& store) {
    std::error_code error;
    return std::filesystem::file_size(logOf(store), error) > 0 && !error;
}

} // namespace

BlockCopy::BlockCopy(Connection& source, Connection* other, std::filesystem::path from, std::filesystem::path to)
    : source_(source), other_(other), from_(std::move(from)), to_(std::move(to)) {}

BlockCopy::~BlockCopy() {
    sqlite3_exec(source_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    if (other_ != nullptr)
        sqlite3_exec(other_->handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

bool BlockCopy::fits(const std::filesystem::path& from) {
    std::error_code error;
    return !std::filesystem::exists(logOf(from), error) || platform::mayWrite(from);
}

// The pages that the connections see from now on.
void BlockCopy::hold() {
    for (Connection* one : {&source_, other_})
        if (one != nullptr) {
            one->run("BEGIN");
            one->single("SELECT COUNT(*) FROM sqlite_master");
        }
}

void BlockCopy::begin(const Failed& failed) {
    if (!std::filesystem::exists(logOf(from_)))
        return hold();
    Connection writer(from_, true);
    writer.run("BEGIN IMMEDIATE"); // goes with the connection
    hold();
    if (!hasLog(from_))
        return;
    platform::createPrivateFile(logOf(to_));
    copyFile(logOf(from_), logOf(to_), failed);
}

void BlockCopy::run(const std::function<void(int percent)>& part, const Failed& failed) {
    sqlite3_file* file = nullptr;
    requireOk(sqlite3_file_control(source_.handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file), from_, failed);
    LayerFile target(to_, SQLITE_OPEN_READWRITE);
    requireOk(target.opened(), to_, failed);
    copyBlocks(file, from_, target.file(), to_, part, failed);
}

} // namespace merchantry::db::embedded
