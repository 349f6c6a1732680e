#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace merchantry {

// A date and time of day on the store's wall clock, without time zone, to the millisecond.
// Range: 0001-01-01 to 9999-12-31. The year 1900 marks "never" in the store's columns.
class Date {
public:
    static constexpr std::int64_t kMsPerDay = 86'400'000;

    constexpr Date() = default; // 1900-01-01 00:00
    // Milliseconds since 1900-01-01 00:00; negative before.
    static constexpr Date fromMs(std::int64_t ms) {
        Date d;
        d.ms_ = ms;
        return d;
    }
    // Requires nothing: nullopt when the parts are not a day of the calendar or a time of the day.
    static std::optional<Date> fromParts(int year, int month, int day, int hour = 0, int minute = 0, int second = 0, int ms = 0);
    // Reads "m/d/yyyy", "mm/dd/yyyy", "yyyy-mm-dd", each with an optional time "h:mm[:ss[.fff]]" and "AM" or "PM";
    // a two-digit year is of 1950 to 2049. nullopt for any other text.
    static std::optional<Date> fromText(std::string_view text);

    constexpr std::int64_t ms() const { return ms_; }
    int year() const;
    int month() const; // 1 to 12
    int day() const;   // 1 to 31
    int hour() const;
    int minute() const;
    int second() const;
    int millisecond() const;
    int dayOfWeek() const; // 1 Sunday to 7 Saturday
    int dayOfYear() const; // 1 to 366

    // The same day at midnight.
    Date dateOnly() const;
    Date plusDays(std::int64_t days) const { return fromMs(ms_ + days * kMsPerDay); }

    auto operator<=>(const Date&) const = default;

    std::string toStatementText() const; // "mm/dd/yyyy"
    std::string toShortText() const;     // "m/d/yyyy", with " h:mm:ss AM/PM" behind when the time is not midnight
    std::string toIsoText() const;       // "yyyy-mm-dd hh:mm:ss"
    std::string toIsoTextMs() const;     // "yyyy-mm-dd hh:mm:ss.fff"

private:
    std::int64_t ms_ = 0;
};

} // namespace merchantry
