#include "setup/managers.h"

#include <gtest/gtest.h>

namespace merchantry::setup {
namespace {

const Login kManager{5, "manager", "manager", true};
const Login kTill{6, "Ann", "1234", false};
const Login kSecond{7, "Bea", "secret", true};

} // namespace

TEST(Managers, OnlyALoginThatTheLoginScreenTakesLetsIn) {
    EXPECT_TRUE(letsIn(kManager));
    EXPECT_TRUE(letsIn({1, "Ann ", "x ", true})); // blanks at the end do not count in the store
    for (const Login& shut : {kTill, Login{1, "", "x", true}, Login{1, "x", "  ", true}, Login{1, " Ann", "x", true},
                              Login{1, "O'Brien", "x", true}, Login{1, "Ann", "it's", true}})
        EXPECT_FALSE(letsIn(shut)) << shut.name << "/" << shut.password;
}

TEST(Managers, TheLastLoginIsNamedBeforeItIsLost) {
    EXPECT_NE(lastManagerWarning({kManager, kTill}, 5, Login{5, "manager", "manager", false}).find("\"manager\""), std::string::npos);
    EXPECT_NE(lastManagerWarning({kManager, kTill}, 5, Login{5, "manager", "", true}), "");
    EXPECT_NE(lastManagerWarning({kManager, kTill}, 5, {}), "");
    EXPECT_NE(lastManagerWarning({{5, "manager", "manager", false}, kSecond}, 7, {}).find("\"Bea\""), std::string::npos);
}

TEST(Managers, NothingIsAskedWhileSomebodyCanStillLogIn) {
    EXPECT_EQ(lastManagerWarning({kManager, kSecond}, 5, Login{5, "manager", "manager", false}), "");
    EXPECT_EQ(lastManagerWarning({kManager, kSecond}, 7, {}), "");
    EXPECT_EQ(lastManagerWarning({kManager}, 5, Login{5, "boss", "new", true}), ""); // another name is another login, and it works
    EXPECT_EQ(lastManagerWarning({kManager, kTill}, 6, {}), "");
    EXPECT_EQ(lastManagerWarning({kTill}, 6, {}), ""); // nobody could before
}

} // namespace merchantry::setup
