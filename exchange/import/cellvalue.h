#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace merchantry::exchange {

// A number as a workbook's file writes it ("12.100000000000001", "1.2E-3") as the decimal text that the spreadsheet shows: at most 15
// significant digits, without exponent and without zeros that say nothing ("12.1", "0.0012"). Nothing for what is no number, or one of
// more than 300 digits.
std::optional<std::string> decimalText(std::string_view written);

// The day that a number stands for in a workbook, as SheetTable keeps dates; a number below 1 is a time of day. The system is that of 1904
// or of 1900, whose 60 is the 29th of February 1900. Nothing for a day that there is not.
std::optional<std::string> dateText(std::string_view decimal, bool from1904);

// Whether a number format shows dates: the built-in ones by their number, others by their code ("[$-409]d-mmm-yy",
// "yyyy\-mm\-dd"). A format of elapsed time ("[h]:mm") is none.
bool isDateFormat(int number);
bool isDateFormat(std::string_view code);

// Whether a number format shows percentages.
bool isPercentFormat(int number);
bool isPercentFormat(std::string_view code);

// The text of a cell with its escapes resolved: "_x000D_" is a carriage return, "_x005F_" an underscore.
std::string unescaped(std::string_view text);

} // namespace merchantry::exchange
