#include "base/numbers.h"

#include "base/currency.h"
#include "base/decimal.h"
#include "base/value.h"

#include <gtest/gtest.h>

namespace merchantry {
namespace {

TEST(Numbers, TakeTheLongestNumericPrefix) {
    const std::pair<const char*, double> cases[] = {
        {"12abc", 12}, {"abc", 0}, {"", 0},        {" -4.5 x", -4.5}, {"1 2", 12},  {"1e3", 1000}, {"1e", 1}, {"1,234", 1234}, {".5", 0.5},
        {"-", 0},      {"$5", 5},  {"2.5.1", 2.5}, {"1e-2z", 0.01},   {"($4)", -4}, {"- $ 2", -2}, {"$", 0},  {"12, red", 12}};
    for (const auto& [text, number] : cases)
        EXPECT_DOUBLE_EQ(numericPrefix(text), number) << text;
}

TEST(Numbers, GroupThousandsWithCommasAndTakeNoOther) {
    const std::pair<const char*, double> grouped[] = {{"1,234.50", 1234.5}, {"$12.50", 12.5},        {"$ 1,234,567 each", 1234567},
                                                      {"-1,000", -1000},    {"123,456 pcs", 123456}, {"1 234.5", 1234.5}};
    for (const auto& [text, number] : grouped) {
        EXPECT_DOUBLE_EQ(numericPrefix(text), number) << text;
        EXPECT_EQ(commaComplaint(text), "") << text;
    }
    for (const char* text : {"1,5", ",5", "-,5", "12,34.5", "1,2345", "1234,567", "1,234,5", "1.5,000", "$1,5", "1,50 each"}) {
        EXPECT_FALSE(isNumeric(text)) << text;
        EXPECT_NE(commaComplaint(text), "") << text;
        EXPECT_FALSE(amountOf(text)) << text;
    }
    for (const char* text : {"abc", "", "red, 5", "5,", "5, then 6"})
        EXPECT_EQ(commaComplaint(text), "") << text;
}

TEST(Numbers, NoCellOfAFileIsRunAsAFormula) {
    for (const char* cell : {"=1+1", "+SUM(A1)", "-cmd|x", "@today", "+49 30 1234", "-"})
        EXPECT_EQ(withoutFormula(cell), "'" + std::string(cell));
    for (const char* cell : {"", "12", "-5", "+5", "-$5.00", "A=1", "'=1", "(-5)"})
        EXPECT_EQ(withoutFormula(cell), cell);
}

TEST(Numbers, TellWhetherATextIsANumber) {
    for (const char* text : {"12", " 12 ", "-1.5", "$1,234.50", "1e5", "($3)", ".5", "5."})
        EXPECT_TRUE(isNumeric(text)) << text;
    for (const char* text : {"", " ", "abc", "12a", "1.2.3", "--1", "$", "1e", "."})
        EXPECT_FALSE(isNumeric(text)) << text;
}

TEST(Numbers, SixteenBitHalvesGoToEvenAndOverflowIsAnError) {
    EXPECT_EQ(toInt16(2.5), 2);
    EXPECT_EQ(toInt16(3.5), 4);
    EXPECT_EQ(toInt16(-2.5), -2);
    EXPECT_EQ(toInt16(32767.4), 32767);
    EXPECT_THROW(toInt16(32767.5), OverflowError);
    EXPECT_THROW(toInt16(-32769), OverflowError);
}

TEST(Numbers, ShortestDecimalReadsBack) {
    EXPECT_EQ(shortestDecimal(0.1), "0.1");
    EXPECT_EQ(shortestDecimal(2), "2");
    EXPECT_EQ(shortestDecimal(-12.5), "-12.5");
    EXPECT_EQ(shortestDecimal(123456789012.25), "123456789012.25");
}

TEST(Numbers, AnAmountKeepsAllItsDigits) {
    EXPECT_EQ(amountOf("900719925474.1233")->toText(), "900719925474.1233"); // a double would lose the last digit
    EXPECT_EQ(amountOf(" ($4.00) ")->toText(), "-4");
    EXPECT_EQ(amountOf("1.5e2")->toText(), "150");
    EXPECT_FALSE(amountOf("4 pounds"));
    EXPECT_FALSE(amountOf(""));
    EXPECT_THROW((void)amountOf("1e30"), OverflowError);
}

TEST(Decimals, KeepTheirScaleAndCompareByValue) {
    const auto number = [](const char* text) { return *Decimal::fromText(text); };
    EXPECT_EQ(number("1.50").toText(), "1.50");
    EXPECT_EQ(number("1.50"), number("1.5"));
    EXPECT_LT(number("-2"), number("-1.99"));
    EXPECT_EQ(number("1.005").rescaled(2)->toText(), "1.01");
    EXPECT_EQ(number("-0.5").rescaled(0)->toText(), "-1");
    EXPECT_EQ(number("0.001").toText(), "0.001");
    EXPECT_FALSE(number("12345678901234567890123456789012345678").rescaled(1));
    EXPECT_FALSE(Decimal::fromText("1e5"));
    EXPECT_FALSE(Decimal::fromText("123456789012345678901234567890123456789"));
}

} // namespace
} // namespace merchantry
