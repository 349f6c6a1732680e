#pragma once

#include "base/currency.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace merchantry {

// How the program reads numbers that people type: one place, so that every field reads alike.

// The number that the longest numeric prefix of the text stands for, blanks skipped; 0 when there is none: "12abc" is 12, "abc" is 0.
double numericPrefix(std::string_view text);

// Whether the whole text is a number: blanks around it, a sign, "$", thousands commas, a point and an exponent allowed.
bool isNumeric(std::string_view text);

// The number of such a text; nullopt exactly when isNumeric is false.
std::optional<double> numberOf(std::string_view text);

// The amount of such a text with all its digits; only what is written with an exponent goes by its number. nullopt exactly when isNumeric
// is false; throws OverflowError for what money cannot hold.
std::optional<Currency> amountOf(std::string_view text);

// The nearest 16-bit number, halves to even. Throws OverflowError ("Overflow") outside -32768 to 32767.
std::int16_t toInt16(double number);

// "1,234,567".
std::string withThousands(std::int64_t number);

// Rounded to so many decimals, halves to even.
double roundHalfEven(double number, int decimals);

} // namespace merchantry
