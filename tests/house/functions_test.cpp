#include "tests/house/sources.h"

#include <gtest/gtest.h>

#include <set>

namespace merchantry::house {
namespace {

constexpr std::size_t kMostLines = 60;

// Functions that are one table, a line for each entry.
const std::set<std::string> kTables{"pictureOf", "systemViews", "registerMathFunctions", "visit"};

// A function stands at the left edge, and so does the brace that ends it.
bool beginsFunction(const std::string& line) {
    if (line.empty() || line.front() == ' ' || line.front() == '#' || !line.ends_with("{") || line.ends_with("= {") || line.ends_with("({"))
        return false;
    for (const char* other : {"namespace", "class ", "struct ", "enum ", "union ", "extern "})
        if (line.starts_with(other))
            return false;
    return line.find('(') != std::string::npos;
}

std::string nameOf(const std::string& line) {
    const std::string anyType = "decltype(auto)";
    const std::size_t type = line.find(anyType);
    const std::size_t bracket = line.find('(', type == std::string::npos ? 0 : type + anyType.size());
    const std::vector<Word> words = wordsOf(line.substr(0, bracket));
    return words.empty() ? "" : words.back().text;
}

TEST(Functions, CanBeReadAtOneGlance) {
    for (const Source& source : sources()) {
        if (!isProduct(source))
            continue;
        std::size_t begin = 0;
        for (std::size_t i = 0; i < source.lines.size(); ++i) {
            if (begin == 0 && beginsFunction(source.lines[i]))
                begin = i + 1;
            else if (begin != 0 && source.lines[i].starts_with("}")) {
                const std::string name = nameOf(source.lines[begin - 1]);
                EXPECT_TRUE(i - begin <= kMostLines || kTables.count(name))
                    << source.name << ":" << begin << ": " << name << " has " << i - begin << " lines, more than " << kMostLines
                    << ": part it, or name it among the tables of this test if it is one";
                begin = 0;
            }
        }
    }
}

// Names that headers declare as functions: a type stands before them, a bracket behind. Those that a library calls are left out.
std::map<std::string, std::string> declaredFunctions() {
    const std::set<std::string> notTypes{"return", "else", "new", "throw", "case", "delete", "co_await"};
    std::map<std::string, std::string> declared;
    for (const Source& source : sources())
        for (const std::string& line : source.lines) {
            if (!source.isHeader() || !isProduct(source) || line.find("override") != std::string::npos)
                continue;
            const std::vector<Word> words = wordsOf(line);
            for (std::size_t i = 1; i < words.size(); ++i) {
                const std::size_t end = words[i].at + words[i].text.size();
                const std::size_t typeEnd = words[i - 1].at + words[i - 1].text.size();
                const std::string between = line.substr(typeEnd, words[i].at - typeEnd);
                if (end < line.size() && line[end] == '(' && between.find_first_not_of(" &*>") == std::string::npos && !between.empty() &&
                    notTypes.count(words[i - 1].text) == 0)
                    declared.emplace(words[i].text, source.name);
            }
        }
    return declared;
}

TEST(Functions, ThatAreDeclaredAreCalled) {
    const std::map<std::string, std::string> declared = declaredFunctions();
    std::map<std::string, int> seen;
    std::map<std::string, int> defined;
    for (const Source& source : sources())
        for (const std::string& line : source.lines)
            for (const Word& word : wordsOf(line)) {
                ++seen[word.text];
                // "void Form::close(" and "void close(" of a source file begin the function itself.
                if (!source.isHeader() && beginsFunction(line) && nameOf(line) == word.text)
                    ++defined[word.text];
            }
    for (const auto& [name, header] : declared)
        EXPECT_GT(seen[name] - 1 - defined[name], 0) << header << " declares " << name << ", which nobody calls";
}

} // namespace
} // namespace merchantry::house
