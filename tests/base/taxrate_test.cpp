#include "base/taxrate.h"

#include <gtest/gtest.h>

namespace merchantry {
namespace {

Currency money(const char* text) {
    return Currency::fromText(text);
}

TEST(TaxRate, IsExactAndRoundsCentsHalvesAwayFromZero) {
    const struct {
        double percent;
        const char* price;
        const char* onTop;
        const char* within;
    } cases[] = {
        {0, "10", "0", "0"},           {6.875, "10", "0.69", "0.64"}, {25, "10", "2.5", "2"},
        {20, "10", "2", "1.67"},       {7.25, "10", "0.73", "0.68"},                           // 0.725 on top
        {0.05, "10", "0.01", "0"},     {100, "10", "10", "5"},        {5, "0.1", "0.01", "0"}, // 0.005
        {-5, "10", "-0.5", "0"},       {1.0005, "100", "1", "0.99"},                           // the third decimal of a rate is the last
        {1e300, "10", "100000", "10"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(TaxRate::fromPercent(one.percent).on(money(one.price)), money(one.onTop)) << one.percent;
        EXPECT_EQ(TaxRate::fromPercent(one.percent).within(money(one.price)), money(one.within)) << one.percent;
    }
}

} // namespace
} // namespace merchantry
