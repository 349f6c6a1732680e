#include "app/profit.h"

#include <gtest/gtest.h>

namespace merchantry::app {
namespace {

TEST(Profit, IsTheMarginOnThePriceRoundedHalvesToEven) {
    struct Case {
        const char* price;
        const char* cost;
        int percent;
    };
    for (const Case& c :
         {Case{"3", "1.998", 33}, Case{"2.55", "1.42", 44}, Case{"8", "10", -25}, Case{"10", "10", 0}, Case{"200", "199", 0},
          Case{"200", "197", 2}, Case{"200", "195", 2}, Case{"200", "201", 0}, Case{"200", "203", -2}, Case{"1", "0.0001", 100}})
        EXPECT_EQ(profitPercent(Currency::fromText(c.price), Currency::fromText(c.cost)), c.percent) << c.price << " " << c.cost;
    EXPECT_THROW(profitPercent(Currency(), Currency::fromText("1")), std::domain_error);
}

} // namespace
} // namespace merchantry::app
