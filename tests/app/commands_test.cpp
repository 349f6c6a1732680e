#include "app/commands.h"

#include <gtest/gtest.h>

#include <set>

namespace merchantry::app {
namespace {

// The main window builds its menu from top to bottom; a report's file names its menu.
TEST(Commands, StandInMenusThatComeBeforeThemAndHaveNamesOfTheirOwn) {
    std::set<std::string> menus{""};
    std::set<std::string> names;
    for (const CommandRow& command : commandTable()) {
        EXPECT_TRUE(menus.count(command.parent)) << command.name << " wants to stand in " << command.parent;
        EXPECT_TRUE(names.insert(command.name).second) << command.name << " stands there twice";
        if (command.kind == CommandKind::Menu)
            menus.insert(command.name);
    }
}

} // namespace
} // namespace merchantry::app
