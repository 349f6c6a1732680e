#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace merchantry::db {

// A procedure, trigger, view, function or table as the store keeps it.
struct StoredText {
    std::string kind; // "procedure", "trigger", "view", "function", "table"
    std::string name;
    std::string text;
    std::string damage; // why it cannot be compiled, a sentence; empty for a sound one
};

// Reads them without running anything, so that a damaged one does not stand in the way of the others. Throws DbError Storage when the file
// cannot be read.
std::vector<StoredText> storedTexts(const std::filesystem::path& file);

} // namespace merchantry::db
