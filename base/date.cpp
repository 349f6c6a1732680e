#include "base/date.h"

#include <array>
#include <cctype>
#include <chrono>
#include <cstdio>

namespace merchantry {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days kEpoch = std::chrono::year{1900} / 1 / 1;

std::int64_t floorDays(std::int64_t ms) {
    return ms >= 0 ? ms / Date::kMsPerDay : -((-ms + Date::kMsPerDay - 1) / Date::kMsPerDay);
}

year_month_day calendarDay(std::int64_t ms) {
    return year_month_day{kEpoch + days{floorDays(ms)}};
}

std::int64_t msOfDay(std::int64_t ms) {
    return ms - floorDays(ms) * Date::kMsPerDay;
}

// Reads numbers and separators off the front of a text.
class Scanner {
public:
    explicit Scanner(std::string_view text) : text_(text) {}
    std::optional<int> number(int maxDigits, int* digits = nullptr) {
        int value = 0;
        int count = 0;
        while (count < maxDigits && at_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[at_])) != 0) {
            value = value * 10 + (text_[at_++] - '0');
            ++count;
        }
        if (digits != nullptr)
            *digits = count;
        return count == 0 ? std::nullopt : std::optional<int>(value);
    }
    bool take(char c) {
        if (at_ < text_.size() && text_[at_] == c) {
            ++at_;
            return true;
        }
        return false;
    }
    void blanks() {
        while (take(' ')) {
        }
    }
    bool takeWord(std::string_view word) {
        if (text_.size() - at_ < word.size())
            return false;
        for (std::size_t i = 0; i < word.size(); ++i)
            if (std::toupper(static_cast<unsigned char>(text_[at_ + i])) != word[i])
                return false;
        at_ += word.size();
        return true;
    }
    bool atEnd() const { return at_ == text_.size(); }

private:
    std::string_view text_;
    std::size_t at_ = 0;
};

struct TimeOfDay {
    int hour = 0;
    int minute = 0;
    int second = 0;
    int ms = 0;
};

std::optional<TimeOfDay> scanTime(Scanner& in) {
    TimeOfDay time;
    const auto hour = in.number(2);
    if (!hour || !in.take(':'))
        return std::nullopt;
    const auto minute = in.number(2);
    if (!minute)
        return std::nullopt;
    time.hour = *hour;
    time.minute = *minute;
    if (in.take(':')) {
        const auto second = in.number(2);
        if (!second)
            return std::nullopt;
        time.second = *second;
        if (in.take('.')) {
            int digits = 0;
            const auto fraction = in.number(3, &digits);
            if (!fraction)
                return std::nullopt;
            static constexpr std::array<int, 4> kFactor{1000, 100, 10, 1};
            time.ms = *fraction * kFactor[static_cast<std::size_t>(digits)];
        }
    }
    in.blanks();
    const bool am = in.takeWord("AM");
    const bool pm = !am && in.takeWord("PM");
    if ((am || pm) && (time.hour < 1 || time.hour > 12))
        return std::nullopt;
    if (am && time.hour == 12)
        time.hour = 0;
    if (pm && time.hour != 12)
        time.hour += 12;
    return time;
}

} // namespace

std::optional<Date> Date::fromParts(int year, int month, int day, int hour, int minute, int second, int ms) {
    if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 || hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 ||
        second > 59 || ms < 0 || ms > 999)
        return std::nullopt;
    const year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                              std::chrono::day{static_cast<unsigned>(day)}};
    if (!date.ok())
        return std::nullopt;
    const std::int64_t count = (sys_days{date} - kEpoch).count();
    return fromMs(count * kMsPerDay + ((hour * 60 + minute) * 60 + second) * std::int64_t{1000} + ms);
}

std::optional<Date> Date::fromText(std::string_view text) {
    Scanner in(text);
    in.blanks();
    int digits = 0;
    const auto first = in.number(4, &digits);
    if (!first)
        return std::nullopt;
    int year = 0;
    int month = 0;
    int day = 0;
    const bool iso = digits == 4;
    const char separator = in.take('/') ? '/' : (in.take('-') ? '-' : '\0');
    if (separator == '\0')
        return std::nullopt;
    const auto second = in.number(2);
    if (!second || !in.take(separator))
        return std::nullopt;
    const auto third = in.number(iso ? 2 : 4, &digits);
    if (!third)
        return std::nullopt;
    if (iso) {
        year = *first;
        month = *second;
        day = *third;
    } else {
        month = *first;
        day = *second;
        year = *third;
        if (digits == 2)
            year += year < 50 ? 2000 : 1900;
        else if (digits != 4)
            return std::nullopt;
    }
    in.blanks();
    TimeOfDay time;
    if (!in.atEnd()) {
        if (iso && in.take('T'))
            in.blanks();
        const auto scanned = scanTime(in);
        if (!scanned)
            return std::nullopt;
        time = *scanned;
        in.blanks();
        if (!in.atEnd())
            return std::nullopt;
    }
    return fromParts(year, month, day, time.hour, time.minute, time.second, time.ms);
}

int Date::year() const {
    return static_cast<int>(calendarDay(ms_).year());
}
int Date::month() const {
    return static_cast<int>(static_cast<unsigned>(calendarDay(ms_).month()));
}
int Date::day() const {
    return static_cast<int>(static_cast<unsigned>(calendarDay(ms_).day()));
}
int Date::hour() const {
    return static_cast<int>(msOfDay(ms_) / 3'600'000);
}
int Date::minute() const {
    return static_cast<int>(msOfDay(ms_) / 60'000 % 60);
}
int Date::second() const {
    return static_cast<int>(msOfDay(ms_) / 1000 % 60);
}
int Date::millisecond() const {
    return static_cast<int>(msOfDay(ms_) % 1000);
}

int Date::dayOfWeek() const {
    const std::int64_t sinceMonday = floorDays(ms_); // 1900-01-01 was a Monday
    return static_cast<int>(((sinceMonday + 1) % 7 + 7) % 7) + 1;
}

int Date::dayOfYear() const {
    const sys_days firstDay = calendarDay(ms_).year() / 1 / 1;
    return static_cast<int>(floorDays(ms_) - (firstDay - kEpoch).count()) + 1;
}

Date Date::dateOnly() const {
    return fromMs(floorDays(ms_) * kMsPerDay);
}

std::string Date::toStatementText() const {
    std::array<char, 32> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%02d/%02d/%04d", month(), day(), year());
    return buffer.data();
}

std::string Date::toShortText() const {
    std::string text = std::to_string(month()) + "/" + std::to_string(day()) + "/" + std::to_string(year());
    if (msOfDay(ms_) / 1000 == 0)
        return text;
    std::array<char, 32> buffer{};
    const int hours = hour();
    std::snprintf(buffer.data(), buffer.size(), " %d:%02d:%02d %s", hours % 12 == 0 ? 12 : hours % 12, minute(), second(),
                  hours < 12 ? "AM" : "PM");
    return text + buffer.data();
}

std::string Date::toIsoText() const {
    std::array<char, 48> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d %02d:%02d:%02d", year(), month(), day(), hour(), minute(), second());
    return buffer.data();
}

std::string Date::toIsoTextMs() const {
    std::array<char, 8> buffer{};
    std::snprintf(buffer.data(), buffer.size(), ".%03d", millisecond());
    return toIsoText() + buffer.data();
}

} // namespace merchantry
