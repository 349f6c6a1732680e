#include "base/text.h"

#include <gtest/gtest.h>

namespace merchantry {
namespace {

TEST(Text, BeginsWithoutCase) {
    EXPECT_TRUE(beginsWith("4006381333931", "4006"));
    EXPECT_TRUE(beginsWith("Linen shirt", "linen S"));
    EXPECT_TRUE(beginsWith("\xC3\x89tui", "\xC3\xA9T"));
    EXPECT_TRUE(beginsWith("a", ""));
    EXPECT_FALSE(beginsWith("4006", "4006381333931"));
    EXPECT_FALSE(beginsWith(" shirt", "shirt"));
    EXPECT_FALSE(beginsWith("\xC3\x89", "\xC3"));
}

TEST(Text, ComparesWithoutCaseAndTrailingBlanks) {
    EXPECT_TRUE(sameText("Caf\xC3\x89  ", "caf\xC3\xA9"));
    EXPECT_FALSE(sameText(" a", "a"));
    EXPECT_LT(compareText("abc", "abcd"), 0);
    EXPECT_GT(compareText("b", "A"), 0);
}

TEST(Text, CountsCharactersNotBytes) {
    EXPECT_EQ(characterCount("a\xC3\xA9\xE2\x82\xAC"), 3U);
    EXPECT_EQ(characters("a\xC3\xA9z", 1, 1), "\xC3\xA9");
    EXPECT_EQ(characterCount("\xFF\xFE"), 2U); // broken bytes count, and end
    EXPECT_EQ(upperCase("stra\xC3\x9F"
                        "e \xC3\xA9"),
              "STRA\xC3\x9F"
              "E \xC3\x89");
}

TEST(Text, MatchesSimplePatterns) {
    EXPECT_TRUE(matchesLike("White heart", "%HEART"));
    EXPECT_TRUE(matchesLike("abc", "a_c"));
    EXPECT_TRUE(matchesLike("", "%"));
    EXPECT_TRUE(matchesLike("aXbXc", "a%b%c"));
    EXPECT_FALSE(matchesLike("abc", "a_"));
    EXPECT_FALSE(matchesLike("", "_"));
}

TEST(Text, SplitsAndJoins) {
    EXPECT_EQ(split("a;;b", ";"), (std::vector<std::string>{"a", "", "b"}));
    EXPECT_EQ(split("", ";").size(), 1U);
    EXPECT_EQ(replaced("a.b.c", ".", "::"), "a::b::c");
}

} // namespace
} // namespace merchantry
