#include "base/date.h"

#include <gtest/gtest.h>

namespace merchantry {
namespace {

TEST(Dates, ReadTheFormsThatScreensAndStatementsUse) {
    const std::pair<const char*, const char*> good[] = {
        {"3/1/2004", "2004-03-01 00:00:00"},
        {"03/01/2004", "2004-03-01 00:00:00"},
        {"2004-03-01 14:05:06", "2004-03-01 14:05:06"},
        {"3/1/2004 2:05:06 PM", "2004-03-01 14:05:06"},
        {"12/31/1899", "1899-12-31 00:00:00"},
        {"1/2/49", "2049-01-02 00:00:00"},
        {"1/2/50", "1950-01-02 00:00:00"},
        {"3/1/2004 12:00 AM", "2004-03-01 00:00:00"},
    };
    for (const auto& [text, iso] : good) {
        const auto date = Date::fromText(text);
        ASSERT_TRUE(date) << text;
        EXPECT_EQ(date->toIsoText(), iso) << text;
    }
    for (const char* text : {"", "13/1/2004", "2/29/2003", "3/1/2004 25:00", "x", "3/1", "3/1/2004 x", "3/1/2004 13:00 PM"})
        EXPECT_FALSE(Date::fromText(text)) << text;
}

TEST(Dates, ShowTheirForms) {
    const Date date = *Date::fromParts(2026, 1, 5, 15, 4, 9);
    EXPECT_EQ(date.toStatementText(), "01/05/2026");
    EXPECT_EQ(date.toShortText(), "1/5/2026 3:04:09 PM");
    EXPECT_EQ(date.dateOnly().toShortText(), "1/5/2026");
    EXPECT_EQ(Date::fromParts(1899, 12, 31)->toShortText(), "12/31/1899");
}

TEST(Dates, KnowTheCalendar) {
    EXPECT_EQ(Date().dayOfWeek(), 2); // 1900-01-01 was a Monday
    EXPECT_EQ(Date::fromParts(2026, 11, 21)->dayOfWeek(), 7);
    EXPECT_EQ(Date::fromParts(1899, 12, 31)->dayOfWeek(), 1);
    EXPECT_EQ(Date::fromParts(2024, 12, 31)->dayOfYear(), 366);
    EXPECT_EQ(Date::fromParts(2024, 2, 28)->plusDays(2).toShortText(), "3/1/2024");
}

} // namespace
} // namespace merchantry
