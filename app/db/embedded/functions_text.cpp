#include "app/db/embedded/functions.h"
#include "base/text.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/types.h"
#include "base/characters.h"
#include "base/lettercase.h"
#include "base/numbers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace merchantry::db::embedded {
namespace {

constexpr std::int64_t kLongestText = 8000;

bool isAscii(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; });
}

// Characters from start (0-based), so many.
std::string_view part(std::string_view text, std::int64_t start, std::int64_t count) {
    if (isAscii(text)) {
        const auto size = static_cast<std::int64_t>(text.size());
        start = std::min(start, size);
        return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(std::min(count, size - start)));
    }
    return characters(text, static_cast<std::size_t>(start), static_cast<std::size_t>(count));
}

std::int64_t lengthOf(std::string_view text) {
    return static_cast<std::int64_t>(isAscii(text) ? text.size() : characterCount(text));
}

void length(const Call& call) {
    call.give(lengthOf(trimmedRight(call.text(0))));
}

DbError badLength(const char* function) {
    return serverMessage(Message::InvalidLength, {function});
}

void substring(const Call& call) {
    std::int64_t start = call.integer(1);
    std::int64_t count = call.integer(2);
    if (count < 0)
        throw badLength("LEFT or SUBSTRING");
    if (start < 1) {
        count += start - 1;
        start = 1;
    }
    call.giveText(count <= 0 ? std::string_view() : part(call.text(0), start - 1, count));
}

void left(const Call& call) {
    if (call.integer(1) < 0)
        throw badLength("LEFT or SUBSTRING");
    call.giveText(part(call.text(0), 0, call.integer(1)));
}

void right(const Call& call) {
    const std::int64_t wanted = call.integer(1);
    if (wanted < 0)
        throw badLength("RIGHT");
    const std::string_view text = call.text(0);
    const std::int64_t have = lengthOf(text);
    call.giveText(part(text, std::max<std::int64_t>(have - wanted, 0), std::min(wanted, have)));
}

void trimLeft(const Call& call) {
    std::string_view text = call.text(0);
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    call.giveText(text);
}

void trimRight(const Call& call) {
    call.giveText(trimmedRight(call.text(0)));
}

void upper(const Call& call) {
    call.giveText(upperCase(call.text(0)));
}

void lower(const Call& call) {
    call.giveText(lowerCase(call.text(0)));
}

void reverse(const Call& call) {
    const std::string_view text = call.text(0);
    std::string result;
    result.reserve(text.size());
    std::vector<std::string_view> pieces;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t from = at;
        nextCodePoint(text, at);
        pieces.push_back(text.substr(from, at - from));
    }
    for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece)
        result += *piece;
    call.giveText(result);
}

// Place of the first match without case from a byte on; npos when none.
std::size_t findCaseless(std::string_view text, std::string_view wanted, std::size_t from, std::size_t& end) {
    for (std::size_t at = from; at < text.size();) {
        std::size_t t = at;
        std::size_t w = 0;
        while (w < wanted.size() && t < text.size()) {
            std::size_t nextT = t;
            std::size_t nextW = w;
            if (foldedCase(nextCodePoint(text, nextT)) != foldedCase(nextCodePoint(wanted, nextW)))
                break;
            t = nextT;
            w = nextW;
        }
        if (w == wanted.size()) {
            end = t;
            return at;
        }
        nextCodePoint(text, at);
    }
    return std::string_view::npos;
}

void replace(const Call& call) {
    const std::string_view text = call.text(0);
    const std::string_view what = call.text(1);
    const std::string_view with = call.text(2);
    if (what.empty())
        return call.giveText(text);
    std::string result;
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t end = 0;
        const std::size_t found = findCaseless(text, what, at, end);
        if (found == std::string_view::npos)
            break;
        result += text.substr(at, found - at);
        result += with;
        at = end;
    }
    result += text.substr(std::min(at, text.size()));
    call.giveText(result);
}

void stuff(const Call& call) {
    if (call.isNull(0) || call.isNull(1) || call.isNull(2))
        return call.giveNull();
    const std::string_view text = call.text(0);
    const std::int64_t start = call.integer(1);
    const std::int64_t count = call.integer(2);
    const std::int64_t have = lengthOf(text);
    if (start < 1 || count < 0 || start > have)
        return call.giveNull();
    std::string result(part(text, 0, start - 1));
    if (!call.isNull(3))
        result += call.text(3);
    if (start - 1 + count < have)
        result += part(text, start - 1 + count, have);
    call.giveText(result);
}

void replicate(const Call& call) {
    const std::int64_t count = call.integer(1);
    if (count < 0)
        return call.giveNull();
    const std::string_view text = call.text(0);
    std::string result;
    for (std::int64_t i = 0; i < count && static_cast<std::int64_t>(result.size()) < kLongestText && !text.empty(); ++i)
        result += text;
    if (static_cast<std::int64_t>(result.size()) > kLongestText)
        result.resize(static_cast<std::size_t>(kLongestText));
    call.giveText(result);
}

void space(const Call& call) {
    const std::int64_t count = call.integer(0);
    if (count < 0)
        return call.giveNull();
    call.giveText(std::string(static_cast<std::size_t>(std::min(count, kLongestText)), ' '));
}

void charIndex(const Call& call) {
    const std::string_view wanted = call.text(0);
    const std::string_view text = call.text(1);
    const std::int64_t start = call.count > 2 ? std::max<std::int64_t>(call.integer(2), 1) : 1;
    if (wanted.empty())
        return call.give(std::int64_t{0});
    const std::string_view skipped = part(text, 0, start - 1);
    std::size_t end = 0;
    const std::size_t found = findCaseless(text, wanted, skipped.size(), end);
    call.give(found == std::string_view::npos ? std::int64_t{0} : lengthOf(text.substr(0, found)) + 1);
}

void str(const Call& call) {
    const double number = call.real(0);
    const std::int64_t width = call.count > 1 ? call.integer(1) : 10;
    const std::int64_t decimals = call.count > 2 ? call.integer(2) : 0;
    if (width < 1 || width > kLongestText || decimals < 0)
        return call.giveNull();
    const auto printed = [&](std::int64_t places) {
        std::array<char, 512> buffer{};
        const double factor = std::pow(10.0, static_cast<double>(places));
        const double rounded = std::fabs(number) < 1e15 ? std::round(number * factor) / factor : number;
        std::snprintf(buffer.data(), buffer.size(), "%.*f", static_cast<int>(places), rounded);
        return std::string(buffer.data());
    };
    std::int64_t places = std::min<std::int64_t>(decimals, 16);
    std::string text = printed(places);
    const auto whole = static_cast<std::int64_t>(text.find('.') == std::string::npos ? text.size() : text.find('.'));
    if (static_cast<std::int64_t>(text.size()) > width && whole <= width) {
        places = std::max<std::int64_t>(width - whole - 1, 0);
        text = printed(places);
    }
    if (static_cast<std::int64_t>(text.size()) > width)
        return call.giveText(std::string(static_cast<std::size_t>(width), '*'));
    call.giveText(std::string(static_cast<std::size_t>(width) - text.size(), ' ') + text);
}

void ascii(const Call& call) {
    const std::string_view text = call.text(0);
    std::size_t at = 0;
    call.give(text.empty() ? std::int64_t{0} : static_cast<std::int64_t>(nextCodePoint(text, at)));
}

void character(const Call& call) {
    const std::int64_t code = call.integer(0);
    if (code < 0 || code > 255)
        return call.giveNull();
    std::string text;
    appendCodePoint(text, static_cast<char32_t>(code));
    call.giveText(text);
}

void wideCharacter(const Call& call) {
    const std::int64_t code = call.integer(0);
    if (code < 0 || code > 0xFFFF)
        return call.giveNull();
    std::string text;
    appendCodePoint(text, static_cast<char32_t>(code));
    call.giveText(text);
}

void quoteName(const Call& call) {
    const std::string_view quote = call.count > 1 ? call.text(1) : "[";
    const char first = quote.empty() ? '[' : quote[0];
    std::string open(1, first);
    std::string close(1, first);
    if (first == '[' || first == ']') {
        open = "[";
        close = "]";
    } else if (first == '(' || first == ')') {
        open = "(";
        close = ")";
    } else if (first == '{' || first == '}') {
        open = "{";
        close = "}";
    } else if (first == '<' || first == '>') {
        open = "<";
        close = ">";
    } else if (first != '\'' && first != '"' && first != '`') {
        return call.giveNull();
    }
    call.giveText(open + replaced(call.text(0), close, close + close) + close);
}

std::string soundexOf(std::string_view text) {
    static constexpr std::string_view kCodes = "01230120022455012623010202"; // of A to Z
    std::string result;
    char last = '0';
    for (const char c : text) {
        const char upperC = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
        if (upperC < 'A' || upperC > 'Z')
            break;
        const char code = kCodes[static_cast<std::size_t>(upperC - 'A')];
        if (result.empty())
            result += upperC;
        else if (code != '0' && code != last)
            result += code;
        if (upperC != 'H' && upperC != 'W')
            last = code;
        if (result.size() == 4)
            break;
    }
    result.resize(4, '0');
    return result;
}

void soundex(const Call& call) {
    call.giveText(soundexOf(call.text(0)));
}

void difference(const Call& call) {
    const std::string a = soundexOf(call.text(0));
    const std::string b = soundexOf(call.text(1));
    std::int64_t same = 0;
    for (std::size_t i = 0; i < 4; ++i)
        same += a[i] == b[i] ? 1 : 0;
    call.give(same);
}

void parseName(const Call& call) {
    std::vector<std::string> parts = split(call.text(0), ".");
    const auto which = static_cast<std::size_t>(std::max<std::int64_t>(call.integer(1), 0));
    if (which < 1 || which > parts.size() || parts.size() > 4)
        return call.giveNull();
    std::string name = parts[parts.size() - which];
    if (name.size() > 1 && name.front() == '[' && name.back() == ']')
        name = name.substr(1, name.size() - 2);
    call.giveText(name);
}

// The bytes that the value takes on the server: one a character, two in wide texts.
void dataLength(const Call& call) {
    const SqlType type = tsql::typeOfCode(call.integer(1));
    if (type.isText()) {
        const std::int64_t count = lengthOf(call.text(0));
        const bool wide = type.kind == TypeKind::NChar || type.kind == TypeKind::NVarChar || type.kind == TypeKind::NText;
        return call.give(wide ? count * 2 : count);
    }
    if (type.isBinary())
        return call.give(static_cast<std::int64_t>(sqlite3_value_bytes(call.values[0])));
    call.give(static_cast<std::int64_t>(tsql::storedLength(type)));
}

void isNumericText(const Call& call) {
    if (call.isNull(0))
        return call.give(std::int64_t{0});
    // A server does not look at where the commas stand, and takes a sign or a currency sign alone for money.
    std::string text = replaced(std::string(trimmed(call.text(0))), ",", "");
    for (const char* sign : {"€", "£", "¥", "¢"})
        text = replaced(text, sign, "$");
    const bool signAlone = text == "$" || text == "-" || text == "+" || text == "." || text == "-$" || text == "$-";
    call.give(std::int64_t{signAlone || isNumeric(text) ? 1 : 0});
}

std::int64_t sumOf(std::string_view text) {
    std::uint32_t sum = 0;
    for (const char c : text)
        sum = (sum << 4U | sum >> 28U) ^ static_cast<unsigned char>(c);
    return static_cast<std::int32_t>(sum);
}

// Texts that are equal have equal sums.
void checksum(const Call& call) {
    call.give(sumOf(lowerCase(trimmedRight(call.text(0)))));
}

void binaryChecksum(const Call& call) {
    call.give(sumOf(call.text(0)));
}

} // namespace

void registerTextFunctions(sqlite3* db, FunctionHost& host) {
    static constexpr auto kEntries = std::to_array<FunctionEntry>({
        {"ts_len", 1, length},
        {"ts_substring", 3, substring},
        {"ts_left", 2, left},
        {"ts_right", 2, right},
        {"ts_ltrim", 1, trimLeft},
        {"ts_rtrim", 1, trimRight},
        {"ts_upper", 1, upper},
        {"ts_lower", 1, lower},
        {"ts_reverse", 1, reverse},
        {"ts_replace", 3, replace},
        {"ts_stuff", 4, stuff, true, false},
        {"ts_replicate", 2, replicate},
        {"ts_space", 1, space},
        {"ts_charindex", -1, charIndex},
        {"ts_str", -1, str},
        {"ts_ascii", 1, ascii},
        {"ts_unicode", 1, ascii},
        {"ts_char", 1, character},
        {"ts_nchar", 1, wideCharacter},
        {"ts_quotename", -1, quoteName},
        {"ts_soundex", 1, soundex},
        {"ts_difference", 2, difference},
        {"ts_parsename", 2, parseName},
        {"ts_datalength", 2, dataLength},
        {"ts_isnumeric", 1, isNumericText, true, false},
        {"ts_checksum", 1, checksum},
        {"ts_binary_checksum", 1, binaryChecksum},
    });
    registerEntries(db, host, kEntries.data(), kEntries.size());
}

} // namespace merchantry::db::embedded
