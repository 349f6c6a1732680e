#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace merchantry::db {

namespace embedded {
class Connection;
} // namespace embedded

// How a copy of a store is made, and who looks on.
struct CopyPlan {
    // Others go on writing to the original: it gets its log at once, so that nobody waits for the copy. Otherwise the original's file stays
    // as it is, byte for byte.
    bool beside = false;
    // Takes how much is copied, in percent; false stops the copy, which throws DbError Cancelled, but for 100, when it is done. None: it is
    // not divided.
    std::function<bool(int percent)> progress{};
    // A new target is brought to the disk; not so for one that is of no use after the process.
    bool lasting = true;
    // Called with the original as it was at the moment that was copied, for reading only; mostly in a thread of its own while the copy is
    // made, which does not end before it.
    std::function<void(embedded::Connection& original)> sameMoment{};
    // Where given, gets the fingerprint of the copy, see contentOf; taken while the copy is brought to the disk.
    std::uint64_t* content = nullptr;
};

// Copies a store file as it stands at one moment, also while others write to it; the target becomes that copy as a whole or stays as it
// was. A new target is readable by its owner only, never more than the original, is on the disk when this returns, and keeps no
// write-ahead log beside it, so that one which lies where it is put is known as another store's; half of one that failed may be left, see
// NewStoreFile. Throws DbError (category Storage, or Cancelled) with a sentence.
void copyStore(const std::filesystem::path& from, const std::filesystem::path& to, const CopyPlan& plan = {});

// What the file's own check finds damaged, a sentence each; empty for a sound file. Throws DbError when it cannot be read at all.
std::vector<std::string> damageOf(const std::filesystem::path& file);

// A store file in the making, beside the name that it will have: a program that is ended half-way leaves nothing that could be taken for a
// store, and what it left is replaced at the next try. Whatever is not finished is removed with the object.
class NewStoreFile {
public:
    // Throws DbError Storage with a sentence when there is a file of that name, or when another program is making it.
    explicit NewStoreFile(std::filesystem::path name);
    ~NewStoreFile();
    NewStoreFile(const NewStoreFile&) = delete;
    NewStoreFile& operator=(const NewStoreFile&) = delete;

    // Where to make it; nothing is there yet.
    const std::filesystem::path& path() const { return path_; }
    // Gives it its name. Requires: it is complete and nobody holds it open. Throws DbError Storage when its last changes did not reach the
    // disk.
    void finish();

private:
    std::filesystem::path name_;
    std::filesystem::path path_;
    bool finished_ = false;
};

} // namespace merchantry::db
