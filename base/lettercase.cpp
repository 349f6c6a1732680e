#include "base/lettercase.h"

#include "base/characters.h"

namespace merchantry {

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
        if (const auto plain = static_cast<unsigned char>(text[at]); plain < 0x80) { // stays plain in the other case
            result += static_cast<char>(change(plain));
            ++at;
        } else {
            appendCodePoint(result, change(nextCodePoint(text, at)));
        }
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
