#include "base/text.h"

#include <algorithm>

namespace merchantry {

std::string_view trimmedRight(std::string_view text) {
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    return trimmedRight(text);
}

char32_t nextCodePoint(std::string_view text, std::size_t& at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at++);
    if (lead < 0x80)
        return lead;
    const int more = lead >= 0xF0 && lead < 0xF8 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC2 ? 1 : 0;
    if (more == 0 || lead >= 0xF8 || at + static_cast<std::size_t>(more) > text.size())
        return 0xFFFD;
    char32_t c = lead & (0x3FU >> more);
    for (int i = 0; i < more; ++i) {
        const unsigned char next = byte(at + static_cast<std::size_t>(i));
        if ((next & 0xC0U) != 0x80U)
            return 0xFFFD;
        c = (c << 6U) | (next & 0x3FU);
    }
    at += static_cast<std::size_t>(more);
    return c;
}

void appendCodePoint(std::string& text, char32_t c) {
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xC0U | (c >> 6U));
        text += static_cast<char>(0x80U | (c & 0x3FU));
    } else if (c < 0x10000) {
        text += static_cast<char>(0xE0U | (c >> 12U));
        text += static_cast<char>(0x80U | ((c >> 6U) & 0x3FU));
        text += static_cast<char>(0x80U | (c & 0x3FU));
    } else {
        text += static_cast<char>(0xF0U | (c >> 18U));
        text += static_cast<char>(0x80U | ((c >> 12U) & 0x3FU));
        text += static_cast<char>(0x80U | ((c >> 6U) & 0x3FU));
        text += static_cast<char>(0x80U | (c & 0x3FU));
    }
}

char32_t foldedCase(char32_t c) {
    if (c >= U'A' && c <= U'Z')
        return c + 32;
    if (c < 0xC0)
        return c;
    if (c <= 0xDE)
        return c == 0xD7 ? c : c + 32;
    if (c >= 0x100 && c <= 0x137)
        return c | 1U;
    if (c >= 0x139 && c <= 0x148)
        return (c & 1U) != 0 ? c + 1 : c;
    if (c >= 0x14A && c <= 0x177)
        return c | 1U;
    if (c == 0x178)
        return 0xFF;
    if (c >= 0x179 && c <= 0x17E)
        return (c & 1U) != 0 ? c + 1 : c;
    return c;
}

namespace {

char32_t raisedCase(char32_t c) {
    if (c >= U'a' && c <= U'z')
        return c - 32;
    if (c < 0xE0 || c == 0xF7)
        return c;
    if (c <= 0xFE)
        return c - 32;
    if (c == 0xFF)
        return 0x178;
    if (c <= 0x17E && c != foldedCase(c - 1))
        return c;
    return c <= 0x17E && foldedCase(c - 1) == c ? c - 1 : c;
}

template <class Change> std::string changed(std::string_view text, Change change) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();)
        appendCodePoint(result, change(nextCodePoint(text, at)));
    return result;
}

} // namespace

std::string upperCase(std::string_view text) {
    return changed(text, raisedCase);
}

std::string lowerCase(std::string_view text) {
    return changed(text, foldedCase);
}

static char asciiFolded(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool beginsWith(std::string_view text, std::string_view beginning) {
    std::size_t t = 0;
    std::size_t b = 0;
    while (b < beginning.size()) {
        if (t >= text.size())
            return false;
        if (static_cast<signed char>(text[t]) >= 0 && static_cast<signed char>(beginning[b]) >= 0) {
            if (asciiFolded(text[t++]) != asciiFolded(beginning[b++]))
                return false;
            continue;
        }
        if (foldedCase(nextCodePoint(text, t)) != foldedCase(nextCodePoint(beginning, b)))
            return false;
    }
    return true;
}

std::size_t characterCount(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); ++count)
        nextCodePoint(text, at);
    return count;
}

std::string_view characters(std::string_view text, std::size_t start, std::size_t count) {
    std::size_t at = 0;
    for (; start > 0 && at < text.size(); --start)
        nextCodePoint(text, at);
    std::size_t end = at;
    for (; count > 0 && end < text.size(); --count)
        nextCodePoint(text, end);
    return text.substr(at, end - at);
}

std::vector<std::string> split(std::string_view text, std::string_view separator) {
    std::vector<std::string> pieces;
    std::size_t at = 0;
    while (true) {
        const std::size_t next = text.find(separator, at);
        if (next == std::string_view::npos || separator.empty()) {
            pieces.emplace_back(text.substr(at));
            return pieces;
        }
        pieces.emplace_back(text.substr(at, next - at));
        at = next + separator.size();
    }
}

std::string joined(const std::vector<std::string>& pieces, std::string_view separator) {
    std::string text;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0)
            text += separator;
        text += pieces[i];
    }
    return text;
}

std::string replaced(std::string_view text, std::string_view what, std::string_view with) {
    return joined(split(text, what), with);
}

std::string asFileName(std::string_view text) {
    std::string name(text);
    std::replace_if(
        name.begin(), name.end(),
        [](unsigned char c) { return c < ' ' || std::string_view("/\\:*?\"<>|.").find(static_cast<char>(c)) != std::string_view::npos; },
        ' ');
    return std::string(trimmed(name));
}

std::string hexText(const Bytes& bytes) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text = "0x";
    for (const std::uint8_t byte : bytes) {
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 15U];
    }
    return text;
}

bool matchesLike(std::string_view text, std::string_view pattern) {
    std::size_t t = 0;
    std::size_t p = 0;
    std::size_t starText = std::string_view::npos;
    std::size_t starPattern = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '%') {
            starPattern = ++p;
            starText = t;
            continue;
        }
        std::size_t nextText = t;
        const char32_t c = foldedCase(nextCodePoint(text, nextText));
        std::size_t nextPattern = p;
        if (p < pattern.size()) {
            const char32_t wanted = foldedCase(nextCodePoint(pattern, nextPattern));
            if (wanted == U'_' || wanted == c) {
                t = nextText;
                p = nextPattern;
                continue;
            }
        }
        if (starText == std::string_view::npos)
            return false;
        nextCodePoint(text, starText);
        t = starText;
        p = starPattern;
    }
    while (p < pattern.size() && pattern[p] == '%')
        ++p;
    return p == pattern.size();
}

} // namespace merchantry
