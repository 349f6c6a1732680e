#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace merchantry {

// The characters (code points) of UTF-8 text.

// Their number; bytes that are no UTF-8 count as one each.
std::size_t characterCount(std::string_view text);
// The part from character start (0-based) of so many characters.
std::string_view characters(std::string_view text, std::size_t start, std::size_t count);
// The code point at byte position at, which moves behind it; U+FFFD for a byte that is no UTF-8.
char32_t nextCodePoint(std::string_view text, std::size_t& at);
void appendCodePoint(std::string& text, char32_t c);

} // namespace merchantry
