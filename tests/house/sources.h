#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace merchantry::house {

// One source file of the tree: its name from the root ("app/modMain.cpp") and its text without comments.
struct Source {
    std::string name;
    std::vector<std::string> lines;
    bool isHeader() const { return name.ends_with(".h"); }
    std::string folder() const { return name.substr(0, name.rfind('/')); }
};

// All of the tree, by name; tests run at its root.
const std::vector<Source>& sources();

// Whether a file is the program's, and not of its tests and benchmarks.
bool isProduct(const Source& source);

// What a line includes of the tree, "base/text.h"; empty for any other line.
std::string includeOf(const std::string& line);

// The names in a line: letters, digits and underscores, each with the column where it begins.
struct Word {
    std::string text;
    std::size_t at = 0;
};
std::vector<Word> wordsOf(const std::string& line);

} // namespace merchantry::house
