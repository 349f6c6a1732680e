#pragma once

#include <filesystem>
#include <functional>

namespace merchantry::db::embedded {

class Connection;

// Copies a store into a new file in large blocks, as fast as the disk, while others write to it. For a moment nobody may write: the
// connection's transaction begins, and the log as it is then is copied. From then on nothing comes into the file but what the log had:
// while the transaction lasts, SQLite takes no newer pages into the file, nor begins the log anew. File and log make that moment's store,
// which SQLite puts together as after a crash; pages that changed while they were read stand in the log.
class BlockCopy {
public:
    // The connection, and the other one where given, hold the moment until the object goes. Throws DbError.
    BlockCopy(Connection& source, Connection* other, std::filesystem::path from, std::filesystem::path to);
    ~BlockCopy();
    BlockCopy(const BlockCopy&) = delete;
    BlockCopy& operator=(const BlockCopy&) = delete;

    // Whether a store can be copied so: one with a log, by whoever may write to it.
    static bool fits(const std::filesystem::path& from);

    // Takes SQLite's code for one of the two files, and throws.
    using Failed = std::function<void(const std::filesystem::path& file, int code)>;
    // The moment: its log. The target is there and empty.
    void begin(const Failed& failed);
    // All the rest; `part` is called now and then with the percent done.
    void run(const std::function<void(int percent)>& part, const Failed& failed);

private:
    void hold();

    Connection& source_;
    Connection* other_;
    std::filesystem::path from_;
    std::filesystem::path to_;
};

} // namespace merchantry::db::embedded
