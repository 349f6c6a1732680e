#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace merchantry::db {

// Copies a store file as it stands at one moment, also while others write to it; the target becomes that copy as a whole or stays as it
// was. Throws DbError (category Storage) with a sentence.
void copyStore(const std::filesystem::path& from, const std::filesystem::path& to);

// What the file's own check finds damaged, a sentence each; empty for a sound file. Throws DbError when it cannot be read at all.
std::vector<std::string> damageOf(const std::filesystem::path& file);

} // namespace merchantry::db
