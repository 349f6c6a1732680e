#include "base/characters.h"

namespace merchantry {

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

} // namespace merchantry
