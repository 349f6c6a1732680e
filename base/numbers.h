#pragma once

#include "base/currency.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace merchantry {

// How the program reads numbers that people type: one place, so that every field reads alike.

// The number that the longest numeric prefix of the text stands for; 0 when there is none: "12abc" is 12, "abc" is 0. Blanks and a currency
// sign are skipped, commas that group thousands, too: "$1,234.50 each" is 1234.5. A text that isNumeric has its number.
double numericPrefix(std::string_view text);

// What is wrong with a comma that groups no thousands, in a sentence for the user: "1,5" is neither 1 nor 15. Empty for any other text.
std::string commaComplaint(std::string_view text);

// Whether the whole text is a number: blanks around it, a sign, "$", commas that group thousands, a point and an exponent allowed.
bool isNumeric(std::string_view text);

// The number of such a text; nullopt exactly when isNumeric is false.
std::optional<double> numberOf(std::string_view text);

// The amount of such a text with all its digits; only what is written with an exponent goes by its number. nullopt exactly when isNumeric
// is false; throws OverflowError for what money cannot hold.
std::optional<Currency> amountOf(std::string_view text);

// The nearest 16-bit number, halves to even. Throws OverflowError ("Overflow") outside -32768 to 32767.
std::int16_t toInt16(double number);
// The same with 32 bits: keys and the numbers that the store gives.
std::int32_t toInt32(double number);

// A cell for a file that other programs read as a table: a text that begins like a formula and is no number gets an apostrophe in front, so
// that nobody's spreadsheet runs it.
std::string withoutFormula(std::string_view cell);

// "1,234,567".
std::string withThousands(std::int64_t number);

} // namespace merchantry
