#include "base/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <string>

namespace merchantry {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

template <class Integer> Integer nearest(double number) {
    const double rounded = std::nearbyint(number);
    if (!(rounded >= std::numeric_limits<Integer>::min() && rounded <= std::numeric_limits<Integer>::max()))
        throw OverflowError("Overflow");
    return static_cast<Integer>(rounded);
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Whether the comma at that place has three digits behind it and no fourth, and before it one to three, or such a group.
bool groupsThousands(std::string_view text, std::size_t comma) {
    std::size_t before = 0;
    while (before < comma && isDigit(text[comma - 1 - before]))
        ++before;
    const bool grouped = before < comma && text[comma - 1 - before] == ',';
    if (before == 0 || before > 3 || (grouped && before != 3))
        return false;
    std::size_t behind = 0;
    while (comma + 1 + behind < text.size() && isDigit(text[comma + 1 + behind]))
        ++behind;
    return behind == 3;
}

// The longest part of a text, from its beginning, that reads as a number.
struct Prefix {
    std::string digits; // as from_chars takes them
    bool badComma = false;

    explicit Prefix(std::string_view typed) {
        std::string text;
        std::copy_if(typed.begin(), typed.end(), std::back_inserter(text), [](char c) { return !isBlank(c); });
        std::size_t at = 0;
        bool sign = false;
        for (bool dollar = false; at < text.size(); ++at) {
            if (text[at] == '$' && !dollar)
                dollar = true;
            else if ((text[at] == '-' || text[at] == '+') && !sign)
                sign = true;
            else
                break;
            if (text[at] == '-')
                digits = "-";
        }
        for (bool point = false; at < text.size(); ++at) {
            if (isDigit(text[at])) {
                digits += text[at];
            } else if (text[at] == '.' && !point) {
                point = true;
                digits += '.';
            } else if (text[at] == ',' && at + 1 < text.size() && isDigit(text[at + 1])) {
                badComma = point || !groupsThousands(text, at);
                if (badComma)
                    return;
            } else {
                break;
            }
        }
        takeExponent(text, at);
    }

private:
    void takeExponent(std::string_view text, std::size_t at) {
        if (at >= text.size() || (text[at] != 'e' && text[at] != 'E') || digits.empty() || !isDigit(digits.back()))
            return;
        std::string exponent = "e";
        if (++at < text.size() && (text[at] == '-' || text[at] == '+'))
            exponent += text[at++] == '-' ? "-" : "";
        if (at >= text.size() || !isDigit(text[at]))
            return;
        while (at < text.size() && isDigit(text[at]))
            exponent += text[at++];
        digits += exponent;
    }
};

double toDouble(const std::string& digits) {
    double number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc{} ? number : 0;
}

} // namespace

double numericPrefix(std::string_view text) {
    if (const auto whole = numberOf(text))
        return *whole;
    return toDouble(Prefix(text).digits);
}

std::string commaComplaint(std::string_view text) {
    if (numberOf(text) || !Prefix(text).badComma)
        return "";
    return "\"" + std::string(text) + "\" is no number: a comma only groups thousands, as in 1,234.50.";
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
        } else if (c != ',' || point || !groupsThousands(text, at)) {
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
    return nearest<std::int16_t>(number);
}

std::int32_t toInt32(double number) {
    return nearest<std::int32_t>(number);
}

std::string withoutFormula(std::string_view cell) {
    const bool formula = !cell.empty() && std::string_view("=+-@\t\r").find(cell.front()) != std::string_view::npos && !isNumeric(cell);
    return (formula ? "'" : "") + std::string(cell);
}

std::string withThousands(std::int64_t number) {
    std::string text = std::to_string(number);
    const int first = number < 0 ? 1 : 0;
    for (int at = static_cast<int>(text.size()) - 3; at > first; at -= 3)
        text.insert(static_cast<std::size_t>(at), ",");
    return text;
}

} // namespace merchantry
