#include "base/characters.h"
#include "base/lettercase.h"
#include "base/text.h"
#include "base/textorder.h"

#include <gtest/gtest.h>

#include <vector>

namespace merchantry {
namespace {

TEST(Text, AFileNameHoldsNothingThatAFileSystemRefuses) {
    EXPECT_EQ(asFileName("Item Maintenance - 1/2\" Nut: A.B"), "Item Maintenance - 1 2  Nut  A B");
    EXPECT_EQ(asFileName("../x"), "x");
}

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

// Signs, digits, letters with their accents beside them, other alphabets. Whatever pair is taken, the earlier one is the lesser.
TEST(Text, OrdersByOneRule) {
    const std::vector<std::string> order = {
        "",          "!",         "#1",     "$DROP",   "(a)",    "-5",     "[x]",     "_x",     "~",       "\u00A3", "\u00D7",
        "\u20AC5",   "0",         "00",     "1",       "10",     "2",      "a",       "\u00C0", "\u00E1",  "a b",    "a!",
        "a-1",       "a1",        "ab",     "\u00E4b", "abc",    "adz",    "\u00C6",  "aez",    "az",      "B",      "cote",
        "cot\u00E9", "c\u00F4te", "coter",  "D",       "\u0110", "e",      "\u0141a", "lb",     "Mueller", "mulle",  "M\u00FCller",
        "mum",       "N",         "\u00D1", "n~",      "z",      "\u017D", "\u0394",  "\u0416", "\u6F22",
    };
    for (std::size_t i = 0; i < order.size(); ++i)
        for (std::size_t j = 0; j < order.size(); ++j)
            EXPECT_EQ(compareText(order[i], order[j]) < 0, i < j) << order[i] << " and " << order[j];
}

// Beside their base letter, yet never the same: a code with an accent is another code.
TEST(Text, TellsAccentsApart) {
    for (const auto& [left, right] : {std::pair{"e", "\u00E9"}, {"ss", "\u00DF"}, {"ae", "\u00E6"}, {"l", "\u0142"}, {"oe", "\u0153"}}) {
        EXPECT_FALSE(sameText(left, right)) << right;
        EXPECT_LT(compareText(left, right), 0) << right;
        EXPECT_LT(compareText(right, left + std::string("a")), 0) << right;
    }
    EXPECT_TRUE(sameText("\u0141\u00D3D\u0179 ", "\u0142\u00F3d\u017A"));
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
