#include "inventory/adjustment.h"

#include "base/currency.h"

#include <gtest/gtest.h>

namespace merchantry::inventory {
namespace {

TEST(Adjustments, RoundHalvesToTheEvenNumber) {
    struct Case {
        const char* typed;
        int quantity;
    };
    for (const Case& c : {Case{"2.5", 2}, Case{"3.5", 4}, Case{"-2.5", -2}, Case{"-3.5", -4}, Case{"0.4", 0}, Case{".5", 0},
                          Case{"1.5x", 2}, Case{" 12 boxes", 12}, Case{"1e2", 100}, Case{"-32768", -32768}}) {
        EXPECT_EQ(complaintAbout(c.typed, ""), "") << c.typed;
        EXPECT_EQ(readAdjustment(c.typed, "").quantity, c.quantity) << c.typed;
    }
    for (const char* typed : {"32767.5", "32768", "-32769", "1e300"})
        EXPECT_THROW(readAdjustment(typed, "1"), OverflowError) << typed;
}

TEST(Adjustments, AreRefusedWithoutAQuantityOrWithANegativeCost) {
    for (const char* typed : {"", "abc", "0", "-0", "0.0", "$"})
        EXPECT_EQ(complaintAbout(typed, "1"), "Please enter a valid Quantity!") << typed;
    EXPECT_EQ(complaintAbout("x", "-1"), "Please enter a valid Quantity!");
    EXPECT_EQ(complaintAbout("1", "-0.01"), "Negative cost can not be entered, please enter a positive cost amount!");
    for (const char* cost : {"", "abc", "0", "2.50"})
        EXPECT_EQ(complaintAbout("1", cost), "") << cost;
    EXPECT_EQ(readAdjustment("1", "2.50 each").cost, 2.5);
    EXPECT_EQ(readAdjustment("$1,500", "$2.50").quantity, 1500);
    for (const auto& [quantity, cost] : {std::pair{"1,5", "1"}, std::pair{"1", "2,50"}})
        EXPECT_NE(complaintAbout(quantity, cost).find("a comma only groups thousands"), std::string::npos) << quantity;
}

TEST(Adjustments, MoveTheStockWithinSixteenBits) {
    EXPECT_EQ(adjusted(10, -30), -20);
    EXPECT_EQ(adjusted(32000, 767), 32767);
    EXPECT_THROW(adjusted(32000, 768), OverflowError);
    EXPECT_THROW(adjusted(-32768, -1), OverflowError);
    EXPECT_THROW(adjusted(40000, -10000), OverflowError); // the stock itself is too large
}

} // namespace
} // namespace merchantry::inventory
