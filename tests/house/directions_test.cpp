#include "tests/house/sources.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <set>

namespace merchantry::house {
namespace {

using Arrows = std::map<std::string, std::set<std::string>>; // from a folder to those that it includes

// Of each arrow in the sources one file and what it includes.
std::map<std::pair<std::string, std::string>, std::string> sourceArrows() {
    std::map<std::pair<std::string, std::string>, std::string> arrows;
    for (const Source& source : sources()) {
        if (!isProduct(source))
            continue;
        for (const std::string& line : source.lines) {
            const std::string included = includeOf(line);
            const std::string folder = included.substr(0, included.rfind('/'));
            if (!included.empty() && folder != source.folder())
                arrows.emplace(std::pair(source.folder(), folder), source.name + " includes " + included);
        }
    }
    return arrows;
}

// The table in docs/architecture.md: lines "| `folder` | what it is | `folder`, `folder` |".
Arrows drawnArrows() {
    Arrows arrows;
    std::ifstream page("docs/architecture.md");
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with("| `"))
            continue;
        std::vector<std::string> names;
        for (std::size_t at = line.find('`'); at != std::string::npos; at = line.find('`', at + 1)) {
            const std::size_t end = line.find('`', at + 1);
            names.push_back(line.substr(at + 1, end - at - 1));
            at = end;
        }
        std::set<std::string>& to = arrows[names.front()];
        to.insert(names.begin() + 1, names.end());
    }
    return arrows;
}

TEST(Directions, AreThoseOfTheDrawing) {
    Arrows drawn = drawnArrows();
    ASSERT_FALSE(drawn.empty()) << "docs/architecture.md has no table of folders";
    for (const auto& [arrow, says] : sourceArrows())
        EXPECT_EQ(drawn[arrow.first].erase(arrow.second), 1U)
            << says << "; the row of " << arrow.first << " in docs/architecture.md does not have " << arrow.second;
    for (const auto& [from, to] : drawn)
        for (const std::string& folder : to)
            ADD_FAILURE() << "docs/architecture.md draws " << from << " to " << folder << ", which no file does";
}

// Every folder can be read before those that include it.
TEST(Directions, HaveNoCircle) {
    Arrows arrows;
    for (const auto& [arrow, says] : sourceArrows())
        arrows[arrow.first].insert(arrow.second);
    std::set<std::string> done;
    std::vector<std::string> road;
    const std::function<void(const std::string&)> walk = [&](const std::string& folder) {
        if (const auto before = std::find(road.begin(), road.end(), folder); before != road.end()) {
            std::string circle;
            for (auto at = before; at != road.end(); ++at)
                circle += *at + " -> ";
            ADD_FAILURE() << "a circle: " << circle << folder;
            return;
        }
        if (done.count(folder))
            return;
        road.push_back(folder);
        for (const std::string& next : arrows[folder])
            walk(next);
        road.pop_back();
        done.insert(folder);
    };
    for (const Source& source : sources())
        if (isProduct(source))
            walk(source.folder());
}

// A column knows those below it, and none of its neighbours.
TEST(Directions, OfColumnsGoDownOnly) {
    const std::set<std::string> columns{"catalog", "customers", "exchange", "inventory", "purchasing", "reports", "setup"};
    const std::set<std::string> below{"app", "base", "ui"};
    for (const auto& [arrow, says] : sourceArrows()) {
        const std::string from = arrow.first.substr(0, arrow.first.find('/'));
        const std::string to = arrow.second.substr(0, arrow.second.find('/'));
        EXPECT_TRUE(columns.count(from) == 0 || from == to || below.count(to) == 1) << says;
    }
}

} // namespace
} // namespace merchantry::house
