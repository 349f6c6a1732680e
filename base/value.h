#pragma once

#include "base/currency.h"
#include "base/date.h"
#include "base/decimal.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace merchantry {

struct Null {
    bool operator==(const Null&) const = default;
};
using Bytes = std::vector<std::uint8_t>;

// One cell of the store: null, flag, integer, double, money, exact decimal, date, text (UTF-8) or bytes.
// Null is not the empty text. A Value knows its kind and converts only where a name says so.
class Value {
public:
    Value() = default;
    Value(Null) {}
    Value(bool flag) : held_(flag) {}
    Value(int number) : held_(static_cast<std::int64_t>(number)) {}
    Value(std::int64_t number) : held_(number) {}
    Value(double number) : held_(number) {}
    Value(Currency amount) : held_(amount) {}
    Value(Decimal number) : held_(number) {}
    Value(Date date) : held_(date) {}
    Value(std::string text) : held_(std::move(text)) {}
    Value(std::string_view text) : held_(std::string(text)) {}
    Value(const char* text) : held_(std::string(text)) {}
    Value(Bytes bytes) : held_(std::move(bytes)) {}

    bool isNull() const { return std::holds_alternative<Null>(held_); }
    template <class T> bool is() const { return std::holds_alternative<T>(held_); }
    // Requires: is<T>().
    template <class T> const T& as() const { return std::get<T>(held_); }
    const auto& held() const { return held_; }

    // The value as a screen shows it: null as "", flags "True" and "False", money and doubles in shortest decimal form,
    // decimals with their scale, dates as Date::toShortText, bytes as 0x and capital digits.
    std::string toText() const;
    // The value as scripts and recorded answers show it: null as "NULL", flags 1 and 0, money with up to four decimals
    // and no trailing zeros, dates as yyyy-mm-dd hh:mm:ss.
    std::string toScriptText() const;

    // The number that stands for this value; text by its longest numeric prefix; null and empty text 0; dates as days since 1899-12-30.
    double toNumber() const;
    // toNumber, halves to even; throws OverflowError outside 64 bits.
    std::int64_t toInteger() const;
    // toNumber, halves to even; throws OverflowError outside 16 bits.
    std::int16_t toInt16() const;
    // The same with 32 bits.
    std::int32_t toInt32() const;
    // Money; text as Currency::fromText. Null is 0. Throws OverflowError or std::invalid_argument.
    Currency toCurrency() const;
    // A flag; numbers other than zero are true; text "True" is true, otherwise by its number.
    bool toFlag() const;

    bool operator==(const Value&) const = default;

private:
    std::variant<Null, bool, std::int64_t, double, Currency, Decimal, Date, std::string, Bytes> held_;
};

std::string hexText(const Bytes& bytes); // "0x0AFF"

// Shortest decimal text that reads back as the same double, without exponent between 1e-7 and 1e15.
std::string shortestDecimal(double number);

} // namespace merchantry
