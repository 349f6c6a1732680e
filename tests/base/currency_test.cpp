#include "base/currency.h"

#include <gtest/gtest.h>

namespace merchantry {
namespace {

TEST(Currency, ReadsWhatPeopleWrite) {
    const std::pair<const char*, std::int64_t> cases[] = {
        {"12", 120000},     {"12.3456", 123456}, {"$1,234.50", 12345000}, {"($4.00)", -40000}, {"-3", -30000},
        {"1.00005", 10000}, {"1.00015", 10002},  {"1.000150001", 10002},  {" .5 ", 5000},      {"922337203685477.5807", INT64_MAX},
    };
    for (const auto& [text, units] : cases)
        EXPECT_EQ(Currency::fromText(text).units(), units) << text;
    for (const char* text : {"", "abc", "1.2.3", "12a", "$", "--1", "1,2.3,4"})
        EXPECT_THROW(Currency::fromText(text), std::invalid_argument) << text;
    EXPECT_THROW(Currency::fromText("922337203685477.5808"), OverflowError);
}

TEST(Currency, CalculatesExactlyAndNeverWraps) {
    const auto money = [](const char* text) { return Currency::fromText(text); };
    EXPECT_EQ(money("0.1") + money("0.2"), money("0.3"));
    EXPECT_EQ(money("0.0001") * money("0.5"), money("0"));      // half to even
    EXPECT_EQ(money("0.0003") * money("0.5"), money("0.0002")); // half to even
    EXPECT_EQ(money("10") / money("3"), money("3.3333"));
    EXPECT_EQ(money("2.125").rounded(2), money("2.12"));
    EXPECT_EQ(money("-2.135").rounded(2), money("-2.14"));
    const Currency most = Currency::fromUnits(INT64_MAX);
    EXPECT_THROW(most + money("0.0001"), OverflowError);
    EXPECT_THROW(-Currency::fromUnits(INT64_MIN), OverflowError);
    EXPECT_THROW(most * money("2"), OverflowError);
    EXPECT_THROW(Currency::fromInteger(INT64_MAX), OverflowError);
    EXPECT_THROW(most / Currency(), std::domain_error);
}

TEST(Currency, ShowsItsThreeForms) {
    const Currency amount = Currency::fromText("-1234567.5");
    EXPECT_EQ(amount.toText(), "-1234567.5");
    EXPECT_EQ(amount.toFixedText(), "-1234567.5000");
    EXPECT_EQ(amount.toDisplay(), "($1,234,567.50)");
    EXPECT_EQ(Currency::fromText("0.005").toDisplay(), "$0.01");
    EXPECT_EQ(Currency::fromText("-0.001").toDisplay(), "$0.00");
}

} // namespace
} // namespace merchantry
