#include "catalog/pricerule.h"

#include <gtest/gtest.h>

namespace merchantry::catalog {
namespace {

Currency money(const char* text) {
    return Currency::fromText(text);
}

PriceRounding rounding(const std::string& caption) {
    for (const PriceRounding& choice : priceRoundings())
        if (caption == choice.caption)
            return choice;
    ADD_FAILURE() << "no rounding " << caption;
    return priceRoundings()[0];
}

} // namespace

TEST(PriceRule, RoundsToTheNearestPriceAllowedTheHigherOfTwo) {
    struct Case {
        const char* rounding;
        const char* price;
        const char* rounded;
    };
    for (const Case& c : {Case{"no rounding", "2.5499", "2.5499"},
                          {"to 0.01", "2.5450", "2.55"},
                          {"to 0.01", "2.5449", "2.54"},
                          {"to 0.05", "2.5250", "2.55"},
                          {"to 0.05", "2.5249", "2.5"},
                          {"to 0.05", "0.02", "0"},
                          {"to 0.10", "2.55", "2.6"},
                          {"to 0.50", "2.24", "2"},
                          {"to 1.00", "2.5", "3"},
                          {"to end in 9", "2.54", "2.59"},
                          {"to end in 9", "2.5399", "2.49"},
                          {"to end in .49 or .99", "2.24", "2.49"},
                          {"to end in .49 or .99", "2.2399", "1.99"},
                          {"to end in .95", "10.2", "9.95"},
                          {"to end in .99", "10.49", "10.99"},
                          {"to end in .99", "10.48", "9.99"},
                          {"to end in .99", "0.1", "0.99"},
                          {"to end in .99", "99", "98.99"},
                          {"to end in .99", "922337203685476", "922337203685475.99"}})
        EXPECT_EQ(roundedPrice(money(c.price), rounding(c.rounding)).toText(), c.rounded) << c.price << " " << c.rounding;
}

TEST(PriceRule, ChangesByPercentAndAmountWithoutLosingAFraction) {
    struct Case {
        bool percent;
        const char* change;
        const char* old;
        const char* now;
    };
    for (const Case& c : {Case{true, "5", "2.55", "2.6775"},
                          {true, "-10", "19.99", "17.991"},
                          {true, "0.01", "0.5", "0.5"},    // 0.50005: halves to even
                          {true, "0.01", "1.5", "1.5002"}, // 1.50015
                          {true, "2.25", "1234.56", "1262.3376"},
                          {true, "100", "0.0001", "0.0002"},
                          {false, "0.5", "2.55", "3.05"},
                          {false, "-0.0001", "2.55", "2.5499"}}) {
        const NewPrice price = changedPrice(money(c.old), {c.percent, money(c.change), rounding("no rounding")});
        EXPECT_EQ(price.price.toText(), c.now) << c.old << " by " << c.change;
    }
    EXPECT_THROW(changedPrice(money("900000000000000"), {true, money("100"), rounding("no rounding")}), OverflowError);
}

TEST(PriceRule, LeavesAloneWhatWouldBeNoPrice) {
    using Remark = NewPrice::Remark;
    const auto remark = [](const char* old, const char* change, const char* how) {
        const NewPrice price = changedPrice(money(old), {false, money(change), rounding(how)});
        EXPECT_TRUE(price.remark == Remark::None || price.price == money(old)) << old;
        return price.remark;
    };
    EXPECT_EQ(remark("0", "1", "no rounding"), Remark::NoPrice);
    EXPECT_EQ(remark("2", "-2", "no rounding"), Remark::NotAboveZero);
    EXPECT_EQ(remark("2", "-3", "to end in .99"), Remark::NotAboveZero);
    EXPECT_EQ(remark("0.05", "-0.03", "to 0.05"), Remark::NotAboveZero);
    EXPECT_EQ(remark("2.55", "0.01", "to 0.05"), Remark::Unchanged);
    EXPECT_EQ(remark("2.55", "0.03", "to 0.05"), Remark::None);
}

TEST(PriceRule, ReadsTheUsersNumberOrNothing) {
    for (const char* good : {"5", "+5", " 5 ", "5%", "5 %", "-2.5", "0.25"})
        EXPECT_TRUE(changeFromText(good, true)) << good;
    for (const char* bad : {"", "five", "5.125", "5%%", "%", "--5", "99999999999999999999"})
        EXPECT_FALSE(changeFromText(bad, true)) << bad;
    EXPECT_EQ(changeFromText("5.125", false), money("5.125"));
    for (const char* bad : {"5%", "0.00001", "x"})
        EXPECT_FALSE(changeFromText(bad, false)) << bad;
    EXPECT_EQ(wordsFor({true, money("-2.5"), rounding("to end in .99")}), "-2.5%, to end in .99");
    EXPECT_EQ(wordsFor({false, money("0.5"), rounding("no rounding")}), "+$0.50");
}

} // namespace merchantry::catalog
