#pragma once

#include <string>
#include <string_view>

namespace merchantry {

// UTF-8 text without regard to case, which is folded for ASCII and for the Latin letters up to U+024F: what the store's collation compares.

char32_t foldedCase(char32_t c);
std::string upperCase(std::string_view text);
std::string lowerCase(std::string_view text);

// Whether the text begins with the other one, without case; blanks count. An empty beginning fits every text.
bool beginsWith(std::string_view text, std::string_view beginning);
// LIKE of screens and lists: % any text, _ one character, without case. (The engine has its own with sets and escapes.)
bool matchesLike(std::string_view text, std::string_view pattern);

} // namespace merchantry
