#include "app/db/embedded/functions.h"

#include "app/db/messages.h"
#include "app/db/tsql/datetext.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/functions.h"
#include "app/db/tsql/types.h"
#include "base/date.h"

#include <algorithm>
#include <array>

namespace merchantry::db::embedded {
namespace {

using tsql::DatePart;
using Wide = __int128;

constexpr std::int64_t kMsPerHour = 3'600'000;
constexpr std::int64_t kMsPerMinute = 60'000;
constexpr std::int64_t kMsPerSecond = 1000;

DbError dateOverflow() {
    return serverMessage(Message::DateOverflow).withSeverity(16, 1);
}

void giveDate(const Call& call, Wide ms) {
    if (ms < tsql::kFirstDateTime || ms >= tsql::kEndOfDateTime)
        throw dateOverflow();
    call.give(tsql::roundedToTick(static_cast<std::int64_t>(ms)));
}

// The same day of another month, or its last day.
void addMonths(const Call& call, Date date, std::int64_t months) {
    const std::int64_t all = static_cast<std::int64_t>(date.year()) * 12 + date.month() - 1 + months;
    const std::int64_t year = all >= 0 ? all / 12 : -1;
    if (year < 1753 || year > 9999)
        throw dateOverflow();
    const int month = static_cast<int>(all % 12) + 1;
    std::optional<Date> day;
    for (int number = date.day(); !day; --number)
        day = Date::fromParts(static_cast<int>(year), month, number);
    giveDate(call, day->ms() + (date.ms() - date.dateOnly().ms()));
}

void dateAdd(const Call& call) {
    const std::int64_t number = call.integer(1);
    const Date date = Date::fromMs(call.integer(2));
    const auto plus = [&](std::int64_t unit) { giveDate(call, static_cast<Wide>(date.ms()) + static_cast<Wide>(number) * unit); };
    switch (static_cast<DatePart>(call.integer(0))) {
    case DatePart::Year:
        return addMonths(call, date, number * 12);
    case DatePart::Quarter:
        return addMonths(call, date, number * 3);
    case DatePart::Month:
        return addMonths(call, date, number);
    case DatePart::Week:
        return plus(Date::kMsPerDay * 7);
    case DatePart::Hour:
        return plus(kMsPerHour);
    case DatePart::Minute:
        return plus(kMsPerMinute);
    case DatePart::Second:
        return plus(kMsPerSecond);
    case DatePart::Millisecond:
        return plus(1);
    default:
        return plus(Date::kMsPerDay);
    }
}

std::int64_t floorTo(std::int64_t ms, std::int64_t unit) {
    return ms >= 0 ? ms / unit : -((-ms + unit - 1) / unit);
}

std::int64_t borders(DatePart part, Date from, Date to) {
    const auto units = [&](std::int64_t unit) { return floorTo(to.ms(), unit) - floorTo(from.ms(), unit); };
    switch (part) {
    case DatePart::Year:
        return to.year() - from.year();
    case DatePart::Quarter:
        return (to.year() * 4 + (to.month() - 1) / 3) - (from.year() * 4 + (from.month() - 1) / 3);
    case DatePart::Month:
        return (to.year() * 12 + to.month()) - (from.year() * 12 + from.month());
    case DatePart::Week: // weeks begin on Sunday; 1900-01-01 was a Monday
        return floorTo(to.ms() + Date::kMsPerDay, Date::kMsPerDay * 7) - floorTo(from.ms() + Date::kMsPerDay, Date::kMsPerDay * 7);
    case DatePart::Hour:
        return units(kMsPerHour);
    case DatePart::Minute:
        return units(kMsPerMinute);
    case DatePart::Second:
        return units(kMsPerSecond);
    case DatePart::Millisecond:
        return to.ms() - from.ms();
    default:
        return units(Date::kMsPerDay);
    }
}

void dateDiff(const Call& call) {
    const std::int64_t result =
        borders(static_cast<DatePart>(call.integer(0)), Date::fromMs(call.integer(1)), Date::fromMs(call.integer(2)));
    if (result > INT32_MAX || result < INT32_MIN)
        throw serverMessage(Message::DateDiffOverflow).withSeverity(16, 1);
    call.give(result);
}

std::int64_t weekday(Date date, std::int64_t first) {
    return (date.dayOfWeek() - 1 - first % 7 + 14) % 7 + 1;
}

std::int64_t partOf(DatePart part, Date date, std::int64_t first) {
    switch (part) {
    case DatePart::Year:
        return date.year();
    case DatePart::Quarter:
        return (date.month() - 1) / 3 + 1;
    case DatePart::Month:
        return date.month();
    case DatePart::DayOfYear:
        return date.dayOfYear();
    case DatePart::Day:
        return date.day();
    case DatePart::Week: {
        const std::optional<Date> newYear = Date::fromParts(date.year(), 1, 1);
        return (date.dayOfYear() - 1 + weekday(*newYear, first) - 1) / 7 + 1;
    }
    case DatePart::Weekday:
        return weekday(date, first);
    case DatePart::Hour:
        return date.hour();
    case DatePart::Minute:
        return date.minute();
    case DatePart::Second:
        return date.second();
    case DatePart::Millisecond:
        return date.millisecond();
    }
    return 0;
}

void datePart(const Call& call) {
    call.give(partOf(static_cast<DatePart>(call.integer(0)), Date::fromMs(call.integer(1)), call.integer(2)));
}

void dateName(const Call& call) {
    const auto part = static_cast<DatePart>(call.integer(0));
    const Date date = Date::fromMs(call.integer(1));
    if (part == DatePart::Month)
        return call.giveText(tsql::monthName(date.month()));
    if (part == DatePart::Weekday)
        return call.giveText(tsql::dayName(date.dayOfWeek()));
    call.giveText(std::to_string(partOf(part, date, call.integer(2))));
}

void day(const Call& call) {
    call.give(std::int64_t{Date::fromMs(call.integer(0)).day()});
}

void month(const Call& call) {
    call.give(std::int64_t{Date::fromMs(call.integer(0)).month()});
}

void year(const Call& call) {
    call.give(std::int64_t{Date::fromMs(call.integer(0)).year()});
}

void endOfMonth(const Call& call) {
    const Date date = Date::fromMs(call.integer(0));
    const std::int64_t months = date.year() * 12 + date.month() - 1 + (call.count > 1 ? call.integer(1) : 0) + 1;
    const std::optional<Date> next = Date::fromParts(static_cast<int>(months / 12), static_cast<int>(months % 12) + 1, 1);
    if (!next)
        throw dateOverflow();
    call.give(next->plusDays(-1).ms());
}

void isDate(const Call& call) {
    std::int64_t ms = 0;
    const bool blank = call.isNull(0) || call.text(0).find_first_not_of(' ') == std::string_view::npos;
    call.give(std::int64_t{!blank && tsql::readDate(call.text(0), 0, ms) == tsql::DateTextResult::Ok ? 1 : 0});
}

void addDates(const Call& call) {
    const Wide sum = static_cast<Wide>(call.integer(0)) + call.integer(1);
    if (sum < tsql::kFirstDateTime || sum >= tsql::kEndOfDateTime)
        throw serverMessage(Message::ArithmeticOverflow, {"expression", "datetime"});
    call.give(static_cast<std::int64_t>(sum));
}

void subtractDates(const Call& call) {
    const Wide difference = static_cast<Wide>(call.integer(0)) - call.integer(1);
    if (difference < tsql::kFirstDateTime || difference >= tsql::kEndOfDateTime)
        throw serverMessage(Message::ArithmeticOverflow, {"expression", "datetime"});
    call.give(static_cast<std::int64_t>(difference));
}

} // namespace

void registerDateFunctions(sqlite3* db, FunctionHost& host) {
    static constexpr auto kEntries = std::to_array<FunctionEntry>({
        {"ts_dateadd", 3, dateAdd},
        {"ts_datediff", 3, dateDiff},
        {"ts_datepart", 3, datePart},
        {"ts_datename", 3, dateName},
        {"ts_day", 1, day},
        {"ts_month", 1, month},
        {"ts_year", 1, year},
        {"ts_eomonth", -1, endOfMonth},
        {"ts_isdate", 1, isDate, true, false},
        {"ts_add_date", 2, addDates},
        {"ts_sub_date", 2, subtractDates},
    });
    registerEntries(db, host, kEntries.data(), kEntries.size());
}

} // namespace merchantry::db::embedded
