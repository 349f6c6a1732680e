#include "base/value.h"

#include "base/numbers.h"
#include "base/textorder.h"

#include <array>
#include <charconv>
#include <cmath>

namespace merchantry {
namespace {

template <class... Ts> struct Overloaded : Ts... { using Ts::operator()...; };
template <class... Ts> Overloaded(Ts...) -> Overloaded<Ts...>;

constexpr std::int64_t kDaysFrom1899 = 2; // 1899-12-30 to 1900-01-01

} // namespace

std::string hexText(const Bytes& bytes) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text = "0x";
    for (const std::uint8_t byte : bytes) {
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 15U];
    }
    return text;
}

std::string shortestDecimal(double number) {
    if (number == 0)
        return "0";
    std::array<char, 400> buffer{};
    const double size = std::fabs(number);
    const auto format = size >= 1e-7 && size < 1e15 ? std::chars_format::fixed : std::chars_format::general;
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, format);
    return error == std::errc{} ? std::string(buffer.data(), end) : std::string("0");
}

std::string Value::toText() const {
    return std::visit(Overloaded{
                          [](Null) { return std::string(); },
                          [](bool flag) { return std::string(flag ? "True" : "False"); },
                          [](std::int64_t number) { return std::to_string(number); },
                          [](double number) { return shortestDecimal(number); },
                          [](Currency amount) { return amount.toText(); },
                          [](const Decimal& number) { return number.toText(); },
                          [](Date date) { return date.toShortText(); },
                          [](const std::string& text) { return text; },
                          [](const Bytes& bytes) { return hexText(bytes); },
                      },
                      held_);
}

std::string Value::toScriptText() const {
    if (isNull())
        return "NULL";
    if (is<bool>())
        return as<bool>() ? "1" : "0";
    if (is<Date>())
        return as<Date>().toIsoText();
    return toText();
}

double Value::toNumber() const {
    return std::visit(Overloaded{
                          [](Null) { return 0.0; },
                          [](bool flag) { return flag ? 1.0 : 0.0; },
                          [](std::int64_t number) { return static_cast<double>(number); },
                          [](double number) { return number; },
                          [](Currency amount) { return amount.toDouble(); },
                          [](const Decimal& number) { return number.toDouble(); },
                          [](Date date) { return static_cast<double>(date.ms()) / Date::kMsPerDay + kDaysFrom1899; },
                          [](const std::string& text) { return numericPrefix(text); },
                          [](const Bytes&) { return 0.0; },
                      },
                      held_);
}

std::int64_t Value::toInteger() const {
    if (is<std::int64_t>())
        return as<std::int64_t>();
    const double number = std::nearbyint(toNumber());
    if (!(number >= -9.2233720368547758e18 && number < 9.2233720368547758e18))
        throw OverflowError("The number is too large.");
    return static_cast<std::int64_t>(number);
}

std::int16_t Value::toInt16() const {
    return merchantry::toInt16(toNumber());
}

std::int32_t Value::toInt32() const {
    return merchantry::toInt32(toNumber());
}

Currency Value::toCurrency() const {
    if (is<Currency>())
        return as<Currency>();
    if (is<std::int64_t>())
        return Currency::fromInteger(as<std::int64_t>());
    if (is<Decimal>())
        return Currency::fromText(as<Decimal>().toText());
    if (is<std::string>())
        return Currency::fromText(as<std::string>());
    return Currency::fromDouble(toNumber());
}

bool Value::toFlag() const {
    if (is<bool>())
        return as<bool>();
    if (is<std::string>() && sameText(as<std::string>(), "True"))
        return true;
    return toNumber() != 0;
}

} // namespace merchantry
