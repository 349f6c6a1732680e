#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::ui::play {

// One word of a line: a bare word (click, txtName, 4, #2), a text in quotes, or a setting (server="till").
struct Word {
    enum class Kind { Bare, Text, Setting };
    Kind kind = Kind::Bare;
    std::string text; // of a text or setting with its escapes resolved
    std::string name; // of a setting
};

// A line that does something; blank lines and comments are none.
struct Line {
    int number = 0; // in its file, from 1
    std::vector<Word> words;
};

struct Script {
    std::string name; // as it was given, for messages
    std::vector<Line> lines;
};

// A script that cannot be read; what() is "SCRIPT:LINE: expected this, there was that".
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Throws ScriptError for a text without its end, an unknown escape, or a file that cannot be read.
Script parseScript(std::string name, std::string_view source);
Script readScript(const std::filesystem::path& file);

// The text as a script writes it, quotes and escapes included.
std::string inQuotes(std::string_view text);

} // namespace merchantry::ui::play
