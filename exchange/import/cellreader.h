#pragma once

#include "base/currency.h"
#include "base/date.h"
#include "exchange/import/fields.h"
#include "exchange/import/sheettable.h"

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

namespace merchantry::exchange {

// What is the matter with a cell, by kind, so that a user can look at one kind at a time.
enum class FindingKind { Code, Number, UnknownName, Twice, Text, Error };
const char* captionOf(FindingKind kind);

// Why a cell cannot be taken.
struct Refusal {
    FindingKind kind = FindingKind::Error;
    std::string reason; // a sentence for the user; empty while there is none
    explicit operator bool() const { return !reason.empty(); }
};

// How cells are read.
struct ReadingRules {
    bool decimalComma = false; // texts: "1.234,50"
    bool decimalsSaid = false; // by the user, and not guessed
    bool roundMoney = false;   // to cents, where a cell has more decimals
};

// Reads the cells of a file as the fields of a screen take what is typed, but without guessing: what is no number of the field's kind, or
// does not fit, is refused with the reason, never cut or rounded. Each gives false then. A text lives as long as the reader and the table.
class CellReader {
public:
    explicit CellReader(const ReadingRules& rules) : rules_(rules) {}

    // Without blanks around it; line ends and tabs within become blanks, but in notes, and are counted.
    bool text(const SheetCell& cell, int most, bool notes, std::string_view& into, Refusal& refusal);
    // An amount of at most four decimals. Counts what it rounded.
    bool money(const SheetCell& cell, Currency& into, Refusal& refusal);
    bool whole(const SheetCell& cell, int most, std::int32_t& into, Refusal& refusal) const;
    bool flag(const SheetCell& cell, bool& into, Refusal& refusal) const;
    bool day(const SheetCell& cell, Date& into, Refusal& refusal) const;
    // A text that lives as long as the reader.
    std::string_view keep(std::string text) { return kept_.emplace_back(std::move(text)); }

    std::int64_t rounded() const { return rounded_; }
    std::int64_t flattened() const { return flattened_; }

private:
    bool plainNumber(const SheetCell& cell, std::string& into, Refusal& refusal) const;

    ReadingRules rules_;
    std::deque<std::string> kept_;
    std::string number_;
    std::int64_t rounded_ = 0;
    std::int64_t flattened_ = 0;
};

// What became of a code in a spreadsheet, judged by its cell alone.
struct CodeDoubt {
    std::string mended; // what it was, where that can be told
    std::string what;   // a sentence; empty where there is nothing to doubt
};
// Refuses a code whose digits are lost ("1.23457E+12", more than 15 digits) or which became a date; tells what seems lost of others: the
// zero in front of a product code whose check digit fits, and ".0" behind a number.
CodeDoubt doubtOf(const SheetCell& cell, std::string_view code, Refusal& refusal);

// Whether the last of the digits is the check digit of a product code (UPC, EAN).
bool checkDigitFits(std::string_view digits);

} // namespace merchantry::exchange
