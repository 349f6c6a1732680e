#include "tests/house/sources.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>

namespace merchantry::house {
namespace {

const char* const kProductFolders[] = {"app",      "base",       "catalog", "customers", "exchange", "inventory",
                                       "programs", "purchasing", "reports", "setup",     "ui"};

bool isText(const std::filesystem::path& file) {
    const std::string kind = file.extension().string();
    return kind == ".h" || kind == ".cpp" || kind == ".sql" || kind == ".rpt" || kind == ".txt";
}

bool holdsWord(const std::filesystem::path& file, const std::string& word) {
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);)
        for (const Word& one : wordsOf(line))
            if (one.text == word)
                return true;
    return false;
}

std::set<std::string> filesWith(const std::string& word) {
    std::set<std::string> files;
    for (const char* folder : kProductFolders)
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            if (entry.is_regular_file() && isText(entry.path()) && holdsWord(entry.path(), word))
                files.insert(entry.path().generic_string());
    return files;
}

// Who follows the table of CONTRIBUTING.md has been everywhere: its examples stand in the files that it names, and in no other.
TEST(Places, OfAFunctionAFieldAProcedureAndAReportAreThoseThatContributorsAreTold) {
    std::ifstream page("CONTRIBUTING.md");
    int rows = 0;
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with("| a "))
            continue;
        ++rows;
        std::vector<std::string> names;
        for (std::size_t at = line.find('`'); at != std::string::npos; at = line.find('`', at + 1)) {
            const std::size_t end = line.find('`', at + 1);
            names.push_back(line.substr(at + 1, end - at - 1));
            at = end;
        }
        ASSERT_GE(names.size(), 2U) << line;
        EXPECT_EQ(filesWith(names.front()), std::set<std::string>(names.begin() + 1, names.end())) << names.front();
    }
    EXPECT_GE(rows, 5);
}

} // namespace
} // namespace merchantry::house
