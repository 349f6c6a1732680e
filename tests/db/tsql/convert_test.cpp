#include "app/db/tsql/convert.h"
#include "app/db/tsql/datetext.h"
#include "app/db/tsql/types.h"
#include "base/decimal.h"

#include <gtest/gtest.h>

namespace merchantry::db::tsql {
namespace {

std::string castOf(const std::string& text, const SqlType& type) {
    return valueOf(converted(Cell::ofText(text), varcharType(100), type), type).toText();
}

int errorOf(const std::string& text, const SqlType& type) {
    try {
        converted(Cell::ofText(text), varcharType(100), type, ConvertFor::Column);
    } catch (const DbError& error) {
        return error.native();
    }
    return 0;
}

TEST(Convert, readsTextsAsTheTypeSays) {
    EXPECT_EQ(castOf(" +7 ", simpleType(TypeKind::Int)), "7");
    EXPECT_EQ(castOf("-.5", decimalType(9, 2)), "-0.50");
    EXPECT_EQ(castOf("12.345", decimalType(9, 2)), "12.35");
    EXPECT_EQ(castOf("12345678901234567890.5", decimalType(30, 3)), "12345678901234567890.500");
    EXPECT_EQ(castOf("$1,234.5", simpleType(TypeKind::Money)), "1234.5");
    EXPECT_EQ(castOf("TRUE", simpleType(TypeKind::Bit)), "True");
    EXPECT_EQ(castOf("1e3", simpleType(TypeKind::Float)), "1000");
}

TEST(Convert, readsMoneyFromTextsLikeMoneyFromNumbers) {
    const std::pair<const char*, const char*> kCases[] = {
        {"", "0"},
        {"-", "0"},
        {"$", "0"},
        {" + ", "0"},
        {".", "0"},
        {"-$1,234.5", "-1234.5"},
        {"$-7", "-7"},
        {"- \u00A3 3", "-3"},
        {"\u20AC5", "5"},
        {"\u00A55.", "5"},
        {"\uFFE65", "5"},
        {"0.00005", "0.0001"},
        {"0.00015", "0.0002"},
        {"-0.00025", "-0.0003"},
        {"0.000049999999999999999999999999999999999999", "0"},
        {"922337203685477.58074", "922337203685477.5807"},
        {"1,2,3", "123"},
    };
    const SqlType money = simpleType(TypeKind::Money);
    for (const auto& [text, amount] : kCases) {
        EXPECT_EQ(castOf(text, money), amount) << text;
        if (const auto number = Decimal::fromText(text); number && number->scale < 30) {
            EXPECT_EQ(valueOf(converted(decimalCell(number->digits, 38), decimalType(38, number->scale), money), money).toText(), amount)
                << text;
        }
    }
    for (const char* text : {"1e5", "5-", "$$5", "--5", "(5)", "1.2.3", "1.2,3", "5\u20AC", "5 5", "\u00E45"})
        EXPECT_EQ(errorOf(text, money), 235) << text;
    EXPECT_EQ(errorOf("922337203685477.58075", money), 8115);
}

TEST(Convert, failsWithTheNumberOfTheType) {
    struct Bad {
        const char* text;
        SqlType type;
        int number;
    };
    const Bad kBad[] = {
        {"x", simpleType(TypeKind::Int), 245},
        {"42.0", simpleType(TypeKind::Int), 245},
        {"2147483648", simpleType(TypeKind::Int), 248},
        {"40000", simpleType(TypeKind::SmallInt), 244},
        {"x", simpleType(TypeKind::BigInt), 8114},
        {"", decimalType(9, 2), 8114},
        {"1e3", decimalType(9, 2), 8114},
        {"12345678", decimalType(9, 2), 8115},
        {"x", simpleType(TypeKind::Money), 235},
        {"999999999999999", simpleType(TypeKind::SmallMoney), 8115},
        {"abc", simpleType(TypeKind::DateTime), 241},
        {"2023-02-29", simpleType(TypeKind::DateTime), 242},
        {"abcdef", varcharType(5), 8152},
        {"not a guid", simpleType(TypeKind::UniqueIdentifier), 8169},
    };
    for (const Bad& bad : kBad)
        EXPECT_EQ(errorOf(bad.text, bad.type), bad.number) << bad.text;
}

TEST(Convert, cutsOnlyWhereItMay) {
    const Cell text = Cell::ofText("abcdef");
    EXPECT_EQ(converted(text, varcharType(6), varcharType(3)).bytes, "abc");
    EXPECT_EQ(converted(Cell::ofText("abc   "), varcharType(6), varcharType(3), ConvertFor::Column).bytes, "abc");
    EXPECT_EQ(converted(Cell::ofText("\xC3\xA4\xC3\xB6"), varcharType(6), {TypeKind::Char, 3, 0, 0}).bytes, "\xC3\xA4\xC3\xB6 ");
    EXPECT_EQ(converted(Cell::ofInteger(12345), simpleType(TypeKind::Int), varcharType(3)).bytes, "*");
}

TEST(Convert, ordersWideDecimalsAsBytes) {
    const SqlType type = decimalType(30, 2);
    std::string before;
    for (const char* text : {"-99999999999999999999.99", "-1.00", "-0.01", "0", "0.01", "5", "123456789012345678901.5"}) {
        const Cell cell = converted(Cell::ofText(text), varcharType(40), type);
        EXPECT_LT(before, cell.bytes) << text;
        before = cell.bytes;
    }
}

TEST(DateText, readsItsManyForms) {
    struct Good {
        const char* text;
        const char* iso;
    };
    const Good kGood[] = {
        {"20040301", "2004-03-01 00:00:00.000"},
        {"3/1/2004", "2004-03-01 00:00:00.000"},
        {"2004-03-01 13:04:05.5", "2004-03-01 13:04:05.500"},
        {"1 March 2004", "2004-03-01 00:00:00.000"},
        {"Mar 1, 2004 1:04 PM", "2004-03-01 13:04:00.000"},
        {"03/01/04 12:00AM", "2004-03-01 00:00:00.000"},
        {"2004-03-01T23:59:59", "2004-03-01 23:59:59.000"},
        {"11:30", "1900-01-01 11:30:00.000"},
        {"", "1900-01-01 00:00:00.000"},
        {"01/02/49", "2049-01-02 00:00:00.000"},
        {"01/02/50", "1950-01-02 00:00:00.000"},
    };
    for (const Good& good : kGood) {
        std::int64_t ms = 0;
        ASSERT_EQ(readDate(good.text, 0, ms), DateTextResult::Ok) << good.text;
        EXPECT_EQ(Date::fromMs(ms).toIsoTextMs(), good.iso) << good.text;
    }
    std::int64_t ms = 0;
    for (const char* text : {"yesterday", "3/1", "2004-03-01 25:00", "1:99", "3-1/2004", "20040301 20040302"})
        EXPECT_EQ(readDate(text, 0, ms), DateTextResult::NoDate) << text;
    for (const char* text : {"13/01/2004", "20040231", "17521231"})
        EXPECT_EQ(readDate(text, 0, ms), DateTextResult::OutOfRange) << text;
}

TEST(DateText, roundsToTicks) {
    const int kTicks[][2] = {{0, 0}, {1, 0}, {2, 3}, {4, 3}, {5, 7}, {8, 7}, {9, 10}, {998, 997}, {999, 1000}};
    for (const auto& [given, rounded] : kTicks) {
        EXPECT_EQ(roundedToTick(given), rounded);
        EXPECT_EQ(roundedToTick(given - Date::kMsPerDay), rounded - Date::kMsPerDay);
    }
}

} // namespace
} // namespace merchantry::db::tsql
