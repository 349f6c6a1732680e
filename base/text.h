#pragma once

#include "base/value.h"

#include <string>
#include <string_view>
#include <vector>

namespace merchantry {

// Helpers for UTF-8 text. Case is folded for ASCII and for the Latin letters up to U+024F, which is what the store's collation compares.

std::string_view trimmed(std::string_view text);      // without blanks on both sides
std::string_view trimmedRight(std::string_view text); // without trailing blanks
std::string upperCase(std::string_view text);
std::string lowerCase(std::string_view text);

// Order of two texts as the store compares them: without case and without trailing blanks, signs before digits before letters, letters with
// accents beside their base letter. Negative, 0 or positive; 0 only where the letters have the same accents.
int compareText(std::string_view left, std::string_view right);
inline bool sameText(std::string_view left, std::string_view right) {
    return compareText(left, right) == 0;
}
// Whether the text begins with the other one, without case; blanks count. An empty beginning fits every text.
bool beginsWith(std::string_view text, std::string_view beginning);

// Number of characters (code points); bytes that are no UTF-8 count as one each.
std::size_t characterCount(std::string_view text);
// The part from character start (0-based) of so many characters.
std::string_view characters(std::string_view text, std::size_t start, std::size_t count);
// The code point at byte position at, which moves behind it; U+FFFD for a byte that is no UTF-8.
char32_t nextCodePoint(std::string_view text, std::size_t& at);
void appendCodePoint(std::string& text, char32_t c);
char32_t foldedCase(char32_t c);

// Pieces between the separators; an empty text gives one empty piece.
std::vector<std::string> split(std::string_view text, std::string_view separator);
std::string joined(const std::vector<std::string>& pieces, std::string_view separator);
std::string replaced(std::string_view text, std::string_view what, std::string_view with);

// A name for a file, to be given an ending: dots and what no file system takes become blanks.
std::string asFileName(std::string_view text);

std::string hexText(const Bytes& bytes); // "0x0AFF"

// LIKE of screens and lists: % any text, _ one character, without case. (The engine has its own with sets and escapes.)
bool matchesLike(std::string_view text, std::string_view pattern);

} // namespace merchantry
