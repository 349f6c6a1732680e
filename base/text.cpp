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

} // namespace merchantry
