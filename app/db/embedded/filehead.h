#pragma once

#include <filesystem>
#include <string>

namespace merchantry::db::embedded {

constexpr long kApplicationId = 0x4D524331; // "MRC1", this program's mark in a store's head

// Looks at the beginning of a file without opening it as a store, which would change it: throws DbError Storage with a clear sentence when
// there is no such file, when it is no regular file or cannot be read, when it is no store, or one that was never finished. It is read
// through SQLite's file layer: on POSIX the closing of any other descriptor of the file would drop the locks that this process holds on it.
void requireStoreFile(const std::filesystem::path& file);

// A store that is at rest, closed by the last one who worked on it, or a copy, says in its head that it has no write-ahead log. A log that
// lies beside such a file is another store's, as when a backup was put in a crashed store's place by hand, and would be played into it: it
// is put aside, which takeStoreNotice tells. Throws DbError Storage when it cannot be put aside. Nothing happens to a file that anybody
// holds open. Requires: requireStoreFile found a store.
void putForeignLogAside(const std::filesystem::path& file);

// The name of a store that is being made; one that was never finished is known by it.
std::filesystem::path nameInTheMaking(const std::filesystem::path& file);

} // namespace merchantry::db::embedded

namespace merchantry::db {

// What the user must be told of the stores that this process opened, a sentence, once: empty afterwards and when there is nothing.
std::string takeStoreNotice();

} // namespace merchantry::db
