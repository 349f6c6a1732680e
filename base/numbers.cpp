#include "base/numbers.h"

#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string>

namespace merchantry {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

double numericPrefix(std::string_view text) {
    std::string kept;
    std::size_t at = 0;
    const auto blanks = [&] {
        while (at < text.size() && (text[at] == ' ' || text[at] == '\t' || text[at] == '\n' || text[at] == '\r'))
            ++at;
    };
    blanks();
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) {
        if (text[at] == '-')
            kept = "-";
        ++at;
    }
    bool point = false;
    for (blanks(); at < text.size(); ++at) {
        if (isDigit(text[at])) {
            kept += text[at];
        } else if (text[at] == '.' && !point) {
            point = true;
            kept += '.';
        } else if (text[at] == 'e' || text[at] == 'E') {
            std::size_t next = at + 1;
            if (next < text.size() && (text[next] == '-' || text[next] == '+'))
                ++next;
            if (next >= text.size() || !isDigit(text[next]) || kept.empty() || !isDigit(kept.back()))
                break;
            kept += 'e';
            if (text[at + 1] == '-')
                kept += '-';
            for (; next < text.size() && isDigit(text[next]); ++next)
                kept += text[next];
            break;
        } else if (text[at] != ' ') {
            break;
        }
    }
    double number = 0;
    const auto [end, error] = std::from_chars(kept.data(), kept.data() + kept.size(), number);
    return error == std::errc{} ? number : 0;
}

std::optional<double> numberOf(std::string_view text) {
    std::string kept;
    bool sign = false;
    bool dollar = false;
    bool bracket = false;
    std::size_t at = 0;
    std::size_t end = text.size();
    while (at < end && text[at] == ' ')
        ++at;
    while (end > at && text[end - 1] == ' ')
        --end;
    if (end > at + 1 && text[at] == '(' && text[end - 1] == ')') {
        bracket = sign = true;
        kept = "-";
        ++at;
        --end;
    }
    for (; at < end && !isDigit(text[at]) && text[at] != '.'; ++at) {
        if ((text[at] == '-' || text[at] == '+') && !sign) {
            sign = true;
            if (text[at] == '-')
                kept = "-";
        } else if (text[at] == '$' && !dollar) {
            dollar = true;
        } else if (text[at] != ' ' || bracket) {
            return std::nullopt;
        }
    }
    bool point = false;
    bool digit = false;
    for (; at < end; ++at) {
        const char c = text[at];
        if (isDigit(c)) {
            kept += c;
            digit = true;
        } else if (c == '.' && !point) {
            point = true;
            kept += c;
        } else if ((c == 'e' || c == 'E') && digit) {
            kept += text.substr(at, end - at);
            break;
        } else if (c != ',' || point) {
            return std::nullopt;
        }
    }
    if (!digit)
        return std::nullopt;
    double number = 0;
    std::string_view view = kept;
    // from_chars takes no plus sign behind the exponent mark on its own, but does with digits behind it.
    const auto [stop, error] = std::from_chars(view.data(), view.data() + view.size(), number);
    if (error != std::errc{} || stop != view.data() + view.size())
        return std::nullopt;
    return number;
}

std::optional<Currency> amountOf(std::string_view text) {
    const auto number = numberOf(text);
    if (!number)
        return std::nullopt;
    try {
        return Currency::fromText(text);
    } catch (const std::invalid_argument&) { // with an exponent
        return Currency::fromDouble(*number);
    }
}

bool isNumeric(std::string_view text) {
    return numberOf(text).has_value();
}

std::int16_t toInt16(double number) {
    const double rounded = std::nearbyint(number);
    if (!(rounded >= -32768 && rounded <= 32767))
        throw OverflowError("Overflow");
    return static_cast<std::int16_t>(rounded);
}

std::string withThousands(std::int64_t number) {
    std::string text = std::to_string(number);
    const int first = number < 0 ? 1 : 0;
    for (int at = static_cast<int>(text.size()) - 3; at > first; at -= 3)
        text.insert(static_cast<std::size_t>(at), ",");
    return text;
}

double roundHalfEven(double number, int decimals) {
    const double factor = std::pow(10.0, decimals);
    return std::nearbyint(number * factor) / factor;
}

} // namespace merchantry
