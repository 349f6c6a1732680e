#include "exchange/import/cellvalue.h"

#include "base/characters.h"
#include "base/date.h"
#include "base/lettercase.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace merchantry::exchange {
namespace {

constexpr std::size_t kShownDigits = 15;
constexpr int kMostDigits = 300;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// digits without point, times ten to the power of the exponent.
struct Decimal {
    bool negative = false;
    std::string digits;
    int exponent = 0;
};

std::optional<Decimal> parsed(std::string_view text) {
    Decimal number;
    std::size_t at = 0;
    if (at < text.size() && (text[at] == '-' || text[at] == '+'))
        number.negative = text[at++] == '-';
    bool sawDigit = false;
    bool sawPoint = false;
    for (; at < text.size() && (isDigit(text[at]) || (text[at] == '.' && !sawPoint)); ++at) {
        if (text[at] == '.') {
            sawPoint = true;
            continue;
        }
        sawDigit = true;
        number.exponent -= sawPoint ? 1 : 0;
        if (text[at] != '0' || !number.digits.empty())
            number.digits += text[at];
    }
    if (!sawDigit)
        return std::nullopt;
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        if (++at < text.size() && text[at] == '+')
            ++at;
        int power = 0;
        const auto [end, error] = std::from_chars(text.data() + at, text.data() + text.size(), power);
        if (error != std::errc() || power > kMostDigits || power < -2 * kMostDigits)
            return std::nullopt;
        at = static_cast<std::size_t>(end - text.data());
        number.exponent += power;
    }
    return at == text.size() ? std::optional(number) : std::nullopt;
}

// Halves away from zero, as a spreadsheet shows them.
void roundToShown(Decimal& number) {
    if (number.digits.size() <= kShownDigits)
        return;
    const bool up = number.digits[kShownDigits] >= '5';
    number.exponent += static_cast<int>(number.digits.size() - kShownDigits);
    number.digits.resize(kShownDigits);
    std::size_t at = number.digits.size();
    for (; up && at > 0 && number.digits[at - 1] == '9'; --at)
        number.digits[at - 1] = '0';
    if (up && at > 0)
        ++number.digits[at - 1];
    else if (up)
        number.digits.insert(number.digits.begin(), '1');
}

std::string laidOut(Decimal number) {
    while (!number.digits.empty() && number.digits.back() == '0') {
        number.digits.pop_back();
        ++number.exponent;
    }
    if (number.digits.empty())
        return "0";
    const int point = static_cast<int>(number.digits.size()) + number.exponent; // digits before the point
    std::string text = number.negative ? "-" : "";
    if (point <= 0)
        return text + "0." + std::string(static_cast<std::size_t>(-point), '0') + number.digits;
    if (number.exponent >= 0)
        return text + number.digits + std::string(static_cast<std::size_t>(number.exponent), '0');
    return text + number.digits.substr(0, static_cast<std::size_t>(point)) + "." + number.digits.substr(static_cast<std::size_t>(point));
}

std::string timeOf(const Date& moment) {
    return moment.toIsoText().substr(11);
}

constexpr double kLastDay1900 = 2'958'466; // the day behind 9999-12-31
constexpr int kDays1904 = 1462;            // from the one system's first day to the other's
constexpr int kLeapDay = 60;               // 1900-02-29, which never was

// The format without what is shown as it stands: between quotes, in brackets, a backslash.
std::string placeholders(std::string_view code) {
    std::string bare;
    for (std::size_t at = 0; at < code.size(); ++at) {
        const char c = code[at];
        if (c == '\\' || c == '_' || c == '*')
            ++at;
        else if (c == '"' || c == '[')
            at = std::min(code.find(c == '"' ? '"' : ']', at + 1), code.size() - 1);
        else
            bare += c;
    }
    return lowerCase(bare);
}

} // namespace

std::optional<std::string> decimalText(std::string_view written) {
    auto number = parsed(written);
    if (!number || static_cast<int>(number->digits.size()) + number->exponent > kMostDigits || number->exponent < -kMostDigits)
        return std::nullopt;
    roundToShown(*number);
    return laidOut(std::move(*number));
}

std::optional<std::string> dateText(std::string_view decimal, bool from1904) {
    double serial = 0;
    const auto [end, error] = std::from_chars(decimal.data(), decimal.data() + decimal.size(), serial);
    if (error != std::errc() || end != decimal.data() + decimal.size() || serial < 0 || serial >= kLastDay1900)
        return std::nullopt;
    const double seconds = std::round((serial - std::floor(serial)) * 86'400);
    const auto ofDay = static_cast<std::int64_t>(seconds) * 1000;
    auto day = static_cast<std::int64_t>(std::floor(serial));
    if (day == 0 && ofDay < Date::kMsPerDay && !from1904)
        return timeOf(Date::fromMs(ofDay));
    if (!from1904 && day == kLeapDay)
        return std::nullopt;
    // Day 1 is the first of January 1900, or the second of January 1904.
    day += from1904 ? kDays1904 - 2 : day < kLeapDay ? -1 : -2;
    const Date moment = Date::fromMs(day * Date::kMsPerDay + ofDay);
    const std::string text = moment.toIsoText();
    return moment == moment.dateOnly() ? text.substr(0, 10) : text;
}

bool isDateFormat(int number) {
    return (number >= 14 && number <= 22) || (number >= 27 && number <= 36) || (number >= 45 && number <= 47) ||
           (number >= 50 && number <= 58);
}

bool isDateFormat(std::string_view code) {
    const std::string folded = lowerCase(code);
    for (const char* elapsed : {"[h", "[m", "[s"})
        if (folded.find(elapsed) != std::string::npos)
            return false;
    const std::string bare = placeholders(code);
    if (bare.find("general") != std::string::npos)
        return false;
    return bare.find_first_of("ydhms") != std::string::npos;
}

bool isPercentFormat(int number) {
    return number == 9 || number == 10;
}

bool isPercentFormat(std::string_view code) {
    return placeholders(code).find('%') != std::string::npos;
}

std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        unsigned value = 0;
        const char* const hex = text.data() + at + 2;
        const bool escape = at + 7 <= text.size() && text[at] == '_' && text[at + 1] == 'x' && text[at + 6] == '_' &&
                            std::from_chars(hex, hex + 4, value, 16).ptr == hex + 4;
        if (!escape) {
            result += text[at];
            continue;
        }
        const bool half = value >= 0xD800 && value < 0xE000; // of a pair that nobody writes so
        appendCodePoint(result, half ? 0xFFFD : value);
        at += 6;
    }
    return result;
}

} // namespace merchantry::exchange
