#include "reports/engine/celltext.h"
#include "reports/engine/expression.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace merchantry::reports {
namespace {

Figure number(const char* text) {
    return *Figure::fromText(text);
}

TEST(Figures, AreExactAndRoundHalvesToEven) {
    EXPECT_EQ((number("0.1") + number("0.2")).toText(8), "0.30000000");
    EXPECT_EQ((number("1") - number("2.5")).toShortText(), "-1.5");
    EXPECT_EQ((number("19.99") * number("3")).toText(2), "59.97");
    EXPECT_EQ(number("1").over(number("3"))->toText(8), "0.33333333");
    EXPECT_FALSE(number("1").over(number("0")));
    for (const auto& [text, cents] : std::map<const char*, const char*>{{"0.125", "0.12"},
                                                                        {"0.135", "0.14"},
                                                                        {"-0.125", "-0.12"},
                                                                        {"-0.135", "-0.14"},
                                                                        {"2.675", "2.68"},
                                                                        {"0.005", "0.00"},
                                                                        {"-0.001", "0.00"}})
        EXPECT_EQ(number(text).toText(2), cents) << text;
    EXPECT_EQ(Figure::ofDouble(-2.5).toShortText(), "-2.5");
    EXPECT_EQ(Figure::ofMoney(-12345).toShortText(), "-1.2345");
    EXPECT_FALSE(Figure::of(Value("12")));
    EXPECT_FALSE(Figure::of(Value()));
    EXPECT_THROW(number("99999999999999999999") * number("99999999999999999999"), OverflowError);
    EXPECT_THROW(Figure::ofDouble(1e300), OverflowError);
}

TEST(Figures, AMillionAmountsAddUpToTheCent) {
    std::mt19937 random(7);
    std::int64_t units = 0;
    Figure sum;
    for (int i = 0; i < 1'000'000; ++i) {
        const auto amount = static_cast<std::int64_t>(random() % 2'000'001) - 1'000'000;
        units += amount;
        sum = sum + Figure::ofMoney(amount);
    }
    EXPECT_TRUE(sum == Figure::ofMoney(units));
}

TEST(CellTexts, ShowWhatTheirFormatSays) {
    struct Case {
        Value value;
        Format format;
        const char* text;
    };
    const Date noon = *Date::fromText("2026-11-21 12:05:09");
    const Case cases[] = {
        {Currency::fromText("1234.5"), Format::Money, "$1,234.50"},
        {Currency::fromText("-1234567.899"), Format::Money, "($1,234,567.90)"},
        {Currency::fromText("0.125"), Format::Cost, "$0.1250"},
        {Currency::fromText("12.5"), Format::Cost, "$12.50"},
        {std::int64_t{-1234567}, Format::Integer, "-1,234,567"},
        {std::int64_t{999}, Format::Quantity, "999"},
        {2.5, Format::Quantity, "2.5"},
        {0.25, Format::Percent, "25.0%"},
        {-1.0, Format::Percent, "-100.0%"},
        {1234.5, Format::Number, "1234.5"},
        {noon, Format::Date, "11/21/2026"},
        {noon, Format::DateTime, "11/21/2026 12:05 PM"},
        {noon, Format::Time, "12:05 PM"},
        {*Date::fromText("2026-11-21 00:30:00"), Format::Time, "12:30 AM"},
        {true, Format::Flag, "Yes"},
        {false, Format::Flag, ""},
        {std::int64_t{1}, Format::Flag, "Yes"},
        {std::int64_t{7}, Format::Text, "7"},
        {"1234", Format::Money, "1234"}, // a text stays what it is
        {Value(), Format::Money, ""},
    };
    for (const Case& test : cases)
        EXPECT_EQ(cellText(test.value, test.format), test.text);
    EXPECT_EQ(kindOf(Currency(), Format::Auto).format, Format::Money);
    EXPECT_FALSE(kindOf(Date(), Format::Auto).isNumber);
}

TEST(Expressions, AreReadAsTheyStand) {
    const std::map<std::string, Figure> fields{{"Sold", number("200")}, {"Cost", number("150")}, {"Nil", Figure()}};
    const auto valueOf = [&](const Expression& expression) {
        return expression.value([&](std::size_t field) -> std::optional<Figure> {
            const auto found = fields.find(expression.fields()[field]);
            return found == fields.end() ? std::nullopt : std::optional<Figure>(found->second);
        });
    };
    const std::pair<const char*, const char*> good[] = {
        {"Sold - Cost", "50"},      {"(Sold - Cost) / Sold", "0.25"},
        {"Sold - Cost - 10", "40"}, {"2 + 3 * 4", "14"},
        {"(2 + 3) * 4", "20"},      {"-Sold + 1", "-199"},
        {"Sold / 8 / 5", "5"},      {"  1.5*Sold ", "300"},
        {"Sold * -1", "-200"},
    };
    for (const auto& [text, result] : good)
        EXPECT_EQ(valueOf(Expression(text))->toShortText(), result) << text;
    for (const char* empty : {"Sold / Nil", "Sold / (Cost - 150)", "Missing + 1"})
        EXPECT_FALSE(valueOf(Expression(empty))) << empty;
    for (const char* wrong : {"", "Sold +", "(Sold", "Sold)", "1.2.3", "Sold Cost", "* 2", "Sold % 2"})
        EXPECT_THROW(Expression{wrong}, std::invalid_argument) << wrong;
    EXPECT_THROW(Expression(std::string(5000, '(') + "1" + std::string(5000, ')')), std::invalid_argument);
    EXPECT_EQ(Expression("Sold / Cost + Sold").fields(), (std::vector<std::string>{"Sold", "Cost"}));
}

} // namespace
} // namespace merchantry::reports
