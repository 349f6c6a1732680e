#include "exchange/import/cellreader.h"

#include "base/characters.h"
#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/text.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace merchantry::exchange {
namespace {

constexpr int kMoneyDecimals = 4;
constexpr int kCents = 2;
constexpr std::size_t kSpreadsheetDigits = 15;
constexpr std::size_t kMostShown = 40; // characters of a value in a sentence

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool allDigits(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

std::string quoted(std::string_view text) {
    return "\"" + std::string(characters(text, 0, kMostShown)) + (characterCount(text) > kMostShown ? "...\"" : "\"");
}

bool refuse(Refusal& refusal, FindingKind kind, std::string reason) {
    refusal = {kind, std::move(reason)};
    return false;
}

bool refuseError(const SheetCell& cell, Refusal& refusal) {
    return refuse(refusal, FindingKind::Error, "The cell holds an error of the spreadsheet: " + std::string(cell.text) + ".");
}

// "-12.50" as units, when it is digits with at most one point; nothing for any other text.
std::optional<Currency> exactAmount(std::string_view text, std::size_t& decimals) {
    const bool negative = text.starts_with('-');
    text.remove_prefix(negative ? 1 : 0);
    const std::size_t point = std::min(text.find('.'), text.size());
    const std::string_view fraction = point < text.size() ? text.substr(point + 1) : std::string_view();
    if (point > 12 || (point == 0 ? fraction.empty() : !allDigits(text.substr(0, point))) || (!fraction.empty() && !allDigits(fraction)))
        return std::nullopt;
    decimals = fraction.find_last_not_of('0') == std::string_view::npos ? 0 : fraction.find_last_not_of('0') + 1;
    std::int64_t units = 0;
    std::from_chars(text.data(), text.data() + point, units);
    for (int i = 0; i < kMoneyDecimals; ++i)
        units = units * 10 + (static_cast<std::size_t>(i) < fraction.size() ? fraction[static_cast<std::size_t>(i)] - '0' : 0);
    return Currency::fromUnits(negative ? -units : units);
}

// Halves away from zero, as a spreadsheet shows them. Requires: a number with at least three decimals.
Currency toCents(const std::string& number) {
    const std::size_t third = number.find('.') + kCents + 1;
    std::size_t decimals = 0;
    const Currency cut = exactAmount(std::string_view(number).substr(0, third), decimals).value_or(Currency());
    const Currency cent = Currency::fromUnits(Currency::kUnitsPerOne / 100);
    if (number[third] < '5')
        return cut;
    return number.starts_with('-') ? cut - cent : cut + cent;
}

// The sign of another currency, as it stands before or behind an amount.
std::string withoutCurrencySign(std::string_view text) {
    std::string bare(text);
    for (const char* sign : {"\xE2\x82\xAC", "\xC2\xA3", "EUR", "USD", "\xC2\xA0"})
        bare = replaced(bare, sign, "");
    return std::string(trimmed(bare));
}

// "1.234,50" as "1234.50"; nothing when a point does not group thousands.
std::optional<std::string> withPoint(std::string_view text) {
    const std::size_t comma = text.find(',');
    const std::string_view whole = text.substr(0, comma);
    if (text.find(',', comma == std::string_view::npos ? comma : comma + 1) != std::string_view::npos ||
        (comma != std::string_view::npos && text.find('.', comma) != std::string_view::npos))
        return std::nullopt;
    const std::vector<std::string> groups = split(whole, ".");
    for (std::size_t i = 1; i < groups.size(); ++i)
        if (groups[i].size() != 3)
            return std::nullopt;
    return replaced(whole, ".", "") + (comma == std::string_view::npos ? "" : "." + std::string(text.substr(comma + 1)));
}

bool looksScientific(std::string_view text) {
    const std::size_t e = text.find_first_of("eE");
    if (e == std::string_view::npos || e + 2 >= text.size() || (text[e + 1] != '+' && text[e + 1] != '-') || !allDigits(text.substr(e + 2)))
        return false;
    const std::size_t point = std::min(text.find_first_of(".,"), e);
    return allDigits(text.substr(0, point)) && (point == e || allDigits(text.substr(point + 1, e - point - 1)));
}

// The product code that a number was before it lost zeros in front; empty when no check digit fits.
std::string withZeros(std::string_view digits) {
    constexpr std::size_t kShort = 8;
    constexpr std::size_t kUsual = 12;
    const std::size_t length = digits.size() == kShort - 1 ? kShort : digits.size() > kShort && digits.size() < kUsual ? kUsual : 0;
    if (length == 0 || digits[0] == '0')
        return "";
    const std::string code = std::string(length - digits.size(), '0') + std::string(digits);
    return checkDigitFits(code) ? code : "";
}

} // namespace

const char* captionOf(FindingKind kind) {
    switch (kind) {
    case FindingKind::Code:
        return "Codes";
    case FindingKind::Number:
        return "Numbers and dates";
    case FindingKind::UnknownName:
        return "Names that the store does not have";
    case FindingKind::Twice:
        return "Rows that come twice";
    case FindingKind::Text:
        return "Texts";
    case FindingKind::Error:
        break;
    }
    return "Errors of the spreadsheet";
}

bool CellReader::text(const SheetCell& cell, int most, bool notes, std::string_view& into, Refusal& refusal) {
    if (cell.kind == CellKind::Error)
        return refuseError(cell, refusal);
    into = trimmed(cell.text);
    if (cell.kind == CellKind::Date)
        if (const auto date = Date::fromText(cell.text))
            into = keep(date->toShortText());
    if (!notes && into.find_first_of("\r\n\t") != std::string_view::npos) {
        into = keep(replaced(replaced(replaced(replaced(into, "\r\n", " "), "\n", " "), "\r", " "), "\t", " "));
        ++flattened_;
    }
    const std::size_t length = into.size() <= static_cast<std::size_t>(most) ? 0 : characterCount(into);
    if (length > static_cast<std::size_t>(most))
        return refuse(refusal, FindingKind::Text,
                      "The text has " + withThousands(static_cast<std::int64_t>(length)) + " characters; the field takes " +
                          withThousands(most) + ".");
    return true;
}

bool CellReader::plainNumber(const SheetCell& cell, std::string& into, Refusal& refusal) const {
    if (cell.kind == CellKind::Error)
        return refuseError(cell, refusal);
    if (cell.kind == CellKind::Date)
        return refuse(refusal, FindingKind::Number, "The cell is a date, and a number is wanted.");
    if (cell.kind == CellKind::Flag)
        return refuse(refusal, FindingKind::Number, "The cell is true or false, and a number is wanted.");
    if (trimmed(cell.text).ends_with('%'))
        return refuse(refusal, FindingKind::Number, quoted(cell.text) + " is a percentage, and a number is wanted.");
    into.assign(cell.text);
    if (cell.kind == CellKind::Number)
        return true;
    into = withoutCurrencySign(into);
    if (rules_.decimalComma) {
        auto point = withPoint(into);
        if (!point)
            return refuse(refusal, FindingKind::Number, quoted(cell.text) + " is no number with a decimal comma.");
        into = std::move(*point);
    }
    if (const std::string wrong = commaComplaint(into); !wrong.empty())
        return refuse(refusal, FindingKind::Number, wrong + (rules_.decimalComma ? "" : " Is the decimal sign of the file a comma?"));
    if (looksScientific(into) || !isNumeric(into))
        return refuse(refusal, FindingKind::Number, quoted(cell.text) + " is no number.");
    into = replaced(replaced(into, ",", ""), "$", "");
    into.erase(0, into.find_first_not_of(" +"));
    return true;
}

bool CellReader::money(const SheetCell& cell, Currency& into, Refusal& refusal) {
    if (!plainNumber(cell, number_, refusal))
        return false;
    std::size_t decimals = 0;
    const auto exact = exactAmount(number_, decimals);
    if (!exact)
        return refuse(refusal, FindingKind::Number, quoted(cell.text) + " is no amount that the store can keep.");
    if (decimals > kMoneyDecimals && !rules_.roundMoney)
        return refuse(refusal, FindingKind::Number,
                      quoted(cell.text) + " has more than four decimals, which is all that money has. A tick on page 2 takes it rounded.");
    into = *exact;
    if (rules_.roundMoney && decimals > kCents) {
        into = toCents(number_);
        ++rounded_;
    }
    return true;
}

bool CellReader::whole(const SheetCell& cell, int most, std::int32_t& into, Refusal& refusal) const {
    std::string number;
    if (!plainNumber(cell, number, refusal))
        return false;
    std::size_t decimals = 0;
    const auto exact = exactAmount(number, decimals);
    if (!exact || decimals > 0)
        return refuse(refusal, FindingKind::Number, quoted(cell.text) + " is no whole number.");
    const std::int64_t found = exact->units() / Currency::kUnitsPerOne;
    if (found > most || found < -most - 1)
        return refuse(refusal, FindingKind::Number, quoted(cell.text) + " is beyond what the field takes, " + withThousands(most) + ".");
    into = static_cast<std::int32_t>(found);
    return true;
}

bool CellReader::flag(const SheetCell& cell, bool& into, Refusal& refusal) const {
    if (cell.kind == CellKind::Error)
        return refuseError(cell, refusal);
    const std::string word = lowerCase(trimmed(cell.text));
    for (const char* yes : {"true", "yes", "y", "1", "x", "on", "-1", "ja", "j"})
        if (word == yes)
            return into = true;
    for (const char* no : {"false", "no", "n", "0", "off", "nein"})
        if (word == no) {
            into = false;
            return true;
        }
    return refuse(refusal, FindingKind::Text, quoted(cell.text) + " is neither yes nor no.");
}

bool CellReader::day(const SheetCell& cell, Date& into, Refusal& refusal) const {
    if (cell.kind == CellKind::Error)
        return refuseError(cell, refusal);
    const auto date = cell.kind == CellKind::Number ? std::nullopt : Date::fromText(trimmed(cell.text));
    if (!date || date->year() < 1900)
        return refuse(refusal, FindingKind::Number, quoted(cell.text) + " is no date. Dates are written like 11/21/2026 or 2026-11-21.");
    into = *date;
    return true;
}

bool checkDigitFits(std::string_view digits) {
    if (!allDigits(digits))
        return false;
    int sum = 0;
    for (std::size_t i = 0; i < digits.size(); ++i)
        sum += (digits[i] - '0') * ((digits.size() - i) % 2 == 0 ? 3 : 1);
    return sum % 10 == 0;
}

CodeDoubt doubtOf(const SheetCell& cell, std::string_view code, Refusal& refusal) {
    if (cell.kind == CellKind::Date) {
        refuse(refusal, FindingKind::Code,
               "The spreadsheet turned this code into a date; what it was is lost. Please type it anew in the file.");
        return {};
    }
    if ((cell.kind == CellKind::Number && allDigits(code) && code.size() > kSpreadsheetDigits) || looksScientific(code)) {
        refuse(refusal, FindingKind::Code,
               "The spreadsheet turned this code into a number, and digits of it are lost. Please type it anew in the file, as a text.");
        return {};
    }
    if (code.ends_with(".0") && allDigits(code.substr(0, code.size() - 2)))
        return {std::string(code.substr(0, code.size() - 2)), "The \".0\" looks like a spreadsheet's."};
    if (allDigits(code))
        if (std::string whole = withZeros(code); !whole.empty())
            return {whole, "This looks like the product code " + whole + ", whose zeros in front a spreadsheet dropped."};
    return {};
}

} // namespace merchantry::exchange
