#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace merchantry::db::tsql {

// Dates as texts, the server's way. Times are milliseconds since 1900-01-01.

enum class DateTextResult { Ok, NoDate, OutOfRange };

// Reads a date, a time or both in any of the forms that the language knows; what is missing is 1900-01-01 or midnight.
// The style says in which order day and month stand (103: day first); 0 is month, day, year. The result is not yet rounded to ticks.
DateTextResult readDate(std::string_view text, int style, std::int64_t& ms);

// As CONVERT writes it. False for a style that does not exist; text untouched.
bool writeDate(std::int64_t ms, int style, std::string& text);

// Rounded to the ticks of datetime (.000, .003, .007) or, small, to the minute.
std::int64_t roundedToTick(std::int64_t ms);
std::int64_t roundedToMinute(std::int64_t ms);

constexpr std::int64_t kFirstDateTime = -4'638'816'000'000;     // 1753-01-01
constexpr std::int64_t kEndOfDateTime = 255'611'289'600'000;    // 10000-01-01
constexpr std::int64_t kEndOfSmallDateTime = 5'662'310'400'000; // 2079-06-07

const char* monthName(int month); // 1 to 12
const char* dayName(int day);     // 1 Sunday to 7 Saturday

} // namespace merchantry::db::tsql
