#include "purchasing/othercosts.h"

#include <gtest/gtest.h>

#include <random>

namespace merchantry::purchasing {
namespace {

Currency subtotalOf(const std::vector<ReceivedQuantity>& lines) {
    Currency sum;
    for (const ReceivedQuantity& line : lines)
        sum += line.Cost * line.RecvQty;
    return sum;
}

std::vector<Currency> spread(const std::vector<ReceivedQuantity>& lines, Currency other) {
    return SpreadOtherCosts(lines, subtotalOf(lines), other);
}

ReceivedQuantity line(int quantity, const char* cost) {
    return {static_cast<std::int16_t>(quantity), Currency::fromText(cost)};
}

// Worked out by hand.
TEST(OtherCosts, GoByValueAndWhereThereIsNoneByQuantity) {
    struct Case {
        const char* amount;
        std::vector<ReceivedQuantity> lines;
        std::vector<const char*> shares;
    };
    const Case cases[] = {
        {"0.10", {line(1, "5"), line(1, "5"), line(1, "5")}, {"0.03", "0.04", "0.03"}},
        {"30", {line(10, "2"), line(5, "8"), line(4, "10")}, {"6", "12", "12"}},
        {"1", {line(0, "9"), line(3, "1"), line(0, "9"), line(1, "1")}, {"0", "0.75", "0", "0.25"}}, // what did not come bears nothing
        {"10", {line(1, "0"), line(2, "0"), line(7, "0")}, {"1", "2", "7"}},                         // all free
        {"1", {line(1, "0"), line(1, "0"), line(1, "0")}, {"0.33", "0.34", "0.33"}},
        {"6", {line(5, "0"), line(1, "3"), line(2, "0")}, {"0", "6", "0"}},  // what has value bears all of it
        {"0.05", {line(1, "1"), line(1, "1")}, {"0.02", "0.03"}},            // a half to the even cent
        {"0.35", {line(1, "1"), line(1, "9")}, {"0.04", "0.31"}},            // a half that doubles miss
        {"1.15", {line(1, "1"), line(1, "1")}, {"0.58", "0.57"}},            // another
        {"-1", {line(1, "1"), line(3, "1")}, {"-0.25", "-0.75"}},            // a rebate
        {"0", {line(1, "1"), line(3, "1")}, {"0", "0"}},                     //
        {"0.01", {line(32767, "0.0001"), line(1, "0.0001")}, {"0.01", "0"}}, // less than a cent to share
        {"5", {}, {}},
    };
    for (const Case& test : cases) {
        std::vector<Currency> wanted;
        for (const char* share : test.shares)
            wanted.push_back(Currency::fromText(share));
        EXPECT_EQ(spread(test.lines, Currency::fromText(test.amount)), wanted) << test.amount << " over " << test.lines.size();
    }
}

TEST(OtherCosts, AddUpToTheAmountWhateverTheLinesAre) {
    std::mt19937_64 random(20261121);
    const auto upTo = [&](std::int64_t most) { return static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(most + 1)); };
    for (int run = 0; run < 20000; ++run) {
        const bool free = run % 7 == 0;
        std::vector<ReceivedQuantity> lines;
        bool any = false;
        for (std::int64_t i = upTo(12); i >= 0; --i) {
            const auto quantity = static_cast<std::int16_t>(upTo(3) == 0 ? 0 : upTo(run % 2 == 0 ? 9 : 32767));
            lines.push_back({quantity, Currency::fromUnits(free || upTo(4) == 0 ? 0 : upTo(run % 3 == 0 ? 9 : 99'999'999))});
            any = any || quantity > 0;
        }
        const Currency other = Currency::fromUnits(upTo(run % 5 == 0 ? 99 : 99'999'999) * 100);
        const auto shares = spread(lines, other);
        Currency sum;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            sum += shares[i];
            EXPECT_EQ(shares[i].units() % 100, 0) << "run " << run;
            EXPECT_GE(shares[i], Currency()) << "run " << run;
            EXPECT_TRUE(lines[i].RecvQty > 0 || shares[i] == Currency()) << "run " << run;
        }
        ASSERT_EQ(sum, any ? other : Currency()) << "run " << run;
    }
}

TEST(OtherCosts, ThatNoShareCanHoldAreRefused) {
    // A negative cost leaves little value in the whole, of which the other line is many times as much.
    const std::vector<ReceivedQuantity> lines{line(32767, "28000000000"), line(1, "-917475999999999.9999")};
    EXPECT_THROW(spread(lines, Currency::fromText("900000000000000")), OverflowError);
}

} // namespace
} // namespace merchantry::purchasing
