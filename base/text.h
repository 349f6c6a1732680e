#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace merchantry {

// Cutting UTF-8 text and putting it together. Its characters, their case and the order of texts have headers of their own.

std::string_view trimmed(std::string_view text);      // without blanks on both sides
std::string_view trimmedRight(std::string_view text); // without trailing blanks

// Pieces between the separators; an empty text gives one empty piece.
std::vector<std::string> split(std::string_view text, std::string_view separator);
std::string joined(const std::vector<std::string>& pieces, std::string_view separator);
std::string replaced(std::string_view text, std::string_view what, std::string_view with);

// A name for a file, to be given an ending: dots and what no file system takes become blanks.
std::string asFileName(std::string_view text);

} // namespace merchantry
