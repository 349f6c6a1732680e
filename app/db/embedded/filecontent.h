#pragma once

#include <cstdint>
#include <filesystem>

namespace merchantry::db {

// A fingerprint of a file's bytes: two files with the same one hold the same, whatever befell them on their ways. Throws DbError Storage
// when the file cannot be read to its end.
std::uint64_t contentOf(const std::filesystem::path& file);

} // namespace merchantry::db
