#include "base/shown.h"

#include <gtest/gtest.h>

namespace merchantry {

TEST(Shown, ACostHasCentsAndWhatItHasBeyondThem) {
    const std::pair<const char*, const char*> costs[] = {
        {"0", "$0.00"},
        {"12.5", "$12.50"},
        {"0.0912", "$0.0912"},
        {"-0.0912", "($0.0912)"},
        {"-4", "($4.00)"},
        {"1234.565", "$1,234.5650"},
        {"1234567.8", "$1,234,567.80"},
        {"0.0001", "$0.0001"},
        {"-922337203685477.5808", "($922,337,203,685,477.5808)"},
    };
    for (const auto& [cost, shown] : costs)
        EXPECT_EQ(shownCost(Currency::fromText(cost)), shown) << cost;
}

} // namespace merchantry
