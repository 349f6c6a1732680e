#include "tests/house/sources.h"

#include <algorithm>
#include <cctype>
#include <fstream>

namespace merchantry::house {
namespace {

const char* const kFolders[] = {"app",      "base",       "bench",   "catalog", "customers", "demo",  "exchange", "inventory",
                                "programs", "purchasing", "reports", "setup",   "tests",     "tools", "ui"};

bool isNameCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

// Without the comment at its end; a "//" within a text is one when an odd number of quotes stands before it.
std::string withoutComment(const std::string& line) {
    for (std::size_t at = line.find("//"); at != std::string::npos; at = line.find("//", at + 1))
        if (std::count(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(at), '"') % 2 == 0)
            return line.substr(0, at);
    return line;
}

Source read(const std::filesystem::path& path) {
    Source source{path.generic_string(), {}};
    std::ifstream stream(path);
    for (std::string line; std::getline(stream, line);)
        source.lines.push_back(withoutComment(line));
    return source;
}

} // namespace

const std::vector<Source>& sources() {
    static const std::vector<Source> all = [] {
        std::vector<Source> found;
        for (const char* folder : kFolders)
            for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
                if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp")
                    found.push_back(read(entry.path()));
        std::sort(found.begin(), found.end(), [](const Source& a, const Source& b) { return a.name < b.name; });
        return found;
    }();
    return all;
}

bool isProduct(const Source& source) {
    return !source.name.starts_with("tests/") && !source.name.starts_with("bench/");
}

std::string includeOf(const std::string& line) {
    const std::string begin = "#include \"";
    const std::size_t end = line.starts_with(begin) ? line.find('"', begin.size()) : std::string::npos;
    const std::string name = end == std::string::npos ? "" : line.substr(begin.size(), end - begin.size());
    return name.find('/') == std::string::npos ? "" : name;
}

std::vector<Word> wordsOf(const std::string& line) {
    std::vector<Word> words;
    for (std::size_t at = 0; at < line.size();) {
        std::size_t end = at;
        while (end < line.size() && isNameCharacter(line[end]))
            ++end;
        if (end > at)
            words.push_back({line.substr(at, end - at), at});
        at = std::max(end, at + 1);
    }
    return words;
}

} // namespace merchantry::house
