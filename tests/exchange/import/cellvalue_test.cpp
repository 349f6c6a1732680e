#include "exchange/import/cellvalue.h"

#include <gtest/gtest.h>

namespace merchantry::exchange {
namespace {

std::string decimal(const char* written) {
    return decimalText(written).value_or("none");
}

std::string day(const char* serial, bool from1904 = false) {
    return dateText(serial, from1904).value_or("none");
}

TEST(CellValue, NumbersAreWhatTheSpreadsheetShowsAndNeverPassThroughABinaryFraction) {
    const struct {
        const char* written;
        const char* shown;
    } kNumbers[] = {{"12.1", "12.1"},
                    {"12.100000000000001", "12.1"},
                    {"0.1", "0.1"},
                    {"2.9999999999999996", "3"},
                    {"99.999999999999999", "100"},
                    {"1.005", "1.005"},
                    {"8.8499999999999996", "8.85"},
                    {"1.2E-3", "0.0012"},
                    {"1.234567890123E12", "1234567890123"},
                    {"1E+2", "100"},
                    {"-0.0", "0"},
                    {"-00012.50", "-12.5"},
                    {".5", "0.5"},
                    {"5.", "5"},
                    {"12345678901234567", "12345678901234600"},
                    {"0.00000000000000000012345678901234567", "0.000000000000000000123456789012346"}};
    for (const auto& [written, shown] : kNumbers)
        EXPECT_EQ(decimal(written), shown) << written;
    for (const char* none : {"", "-", ".", "1,5", "1e", "1e+", "12a", "0x10", "NaN", "INF", "1E400", "1E-99999999999", " 1"})
        EXPECT_EQ(decimal(none), "none") << none;
}

TEST(CellValue, DaysFollowTheWorkbooksOwnSystemAndItsLeapDayThatNeverWas) {
    EXPECT_EQ(day("1"), "1900-01-01");
    EXPECT_EQ(day("59"), "1900-02-28");
    EXPECT_EQ(day("60"), "none");
    EXPECT_EQ(day("61"), "1900-03-01");
    EXPECT_EQ(day("46347"), "2026-11-21");
    EXPECT_EQ(day("46347.75"), "2026-11-21 18:00:00");
    EXPECT_EQ(day("46347.999999"), "2026-11-22") << "a tenth of a second before midnight";
    EXPECT_EQ(day("0.5"), "12:00:00");
    EXPECT_EQ(day("0", true), "1904-01-01");
    EXPECT_EQ(day("44885", true), "2026-11-21");
    EXPECT_EQ(day("2958465"), "9999-12-31");
    for (const char* none : {"2958466", "-1", "1e9"})
        EXPECT_EQ(day(none), "none") << none;
}

TEST(CellValue, FormatsOfDatesAreToldFromThoseOfNumbers) {
    for (const char* date : {"m/d/yyyy", "yyyy\\-mm\\-dd", "[$-409]d-mmm-yy;@", "h:mm AM/PM", "[Red]dd.mm.yy", "mmm"})
        EXPECT_TRUE(isDateFormat(std::string_view(date))) << date;
    for (const char* number : {"General", "0.00", "#,##0 \"days\"", "\\d0", "[Red]0.00", "0.00E+00", "_(\"$\"* #,##0.00_)", "[h]:mm", "@"})
        EXPECT_FALSE(isDateFormat(std::string_view(number))) << number;
    EXPECT_TRUE(isDateFormat(14));
    EXPECT_FALSE(isDateFormat(44));
}

TEST(CellValue, EscapesOfACellsTextAreResolved) {
    EXPECT_EQ(unescaped("a_x000D_\nb"), "a\r\nb");
    EXPECT_EQ(unescaped("_x005F_x000D_"), "_x000D_");
    EXPECT_EQ(unescaped("big_box_xl_"), "big_box_xl_");
    EXPECT_EQ(unescaped("_x00e9__x20AC_"), "\xC3\xA9\xE2\x82\xAC");
}

} // namespace
} // namespace merchantry::exchange
