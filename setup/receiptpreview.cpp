#include "setup/receiptpreview.h"

#include "base/characters.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::setup {
namespace {

constexpr int kNarrowest = 40;

struct Printer {
    const char* type;
    int columns;
};
constexpr Printer kPrinters[] = {{"Impact", kNarrowest}, {"Thermal", 48}, {"Epson Thermal", 42}, {"Epson Impact", kNarrowest}};

std::size_t lengthOf(std::string_view text) {
    return characterCount(text);
}

// Where a line of that width ends within the text: at a blank, or within a word that is longer than a line.
std::size_t breakAt(std::string_view text, std::size_t width) {
    if (lengthOf(text) <= width)
        return text.size();
    const std::size_t full = characters(text, 0, width).size();
    const std::size_t blank = text.substr(0, full + 1).find_last_of(' ');
    return blank == std::string_view::npos || blank == 0 ? full : blank;
}

void addWrapped(std::vector<std::string>& lines, std::string_view text, std::size_t width) {
    do {
        const std::size_t end = breakAt(text, width);
        lines.emplace_back(trimmedRight(text.substr(0, end)));
        text.remove_prefix(end);
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    } while (!text.empty());
}

// "- - - cut here - - -" over the whole width.
std::string edge(const std::string& word, int columns) {
    const int rest = columns - static_cast<int>(lengthOf(word)) - 2;
    std::string left;
    while (static_cast<int>(left.size()) < rest / 2)
        left += left.size() % 2 == 0 ? '-' : ' ';
    std::string right;
    while (static_cast<int>(right.size()) < rest - rest / 2)
        right += right.size() % 2 == 0 ? '-' : ' ';
    std::reverse(right.begin(), right.end());
    return left + " " + word + " " + right;
}

} // namespace

const std::vector<std::string>& printerTypes() {
    static const std::vector<std::string> types = [] {
        std::vector<std::string> all;
        for (const Printer& printer : kPrinters)
            all.emplace_back(printer.type);
        return all;
    }();
    return types;
}

int receiptColumns(const std::string& printerType) {
    for (const Printer& printer : kPrinters)
        if (printerType == printer.type)
            return printer.columns;
    return kNarrowest;
}

std::string receiptPreview(const std::string& message, const std::string& printerType, const std::string& cutCode) {
    const int columns = receiptColumns(printerType);
    std::vector<std::string> lines;
    const std::string text = replaced(message, "\r\n", "\n");
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        addWrapped(lines, std::string_view(text).substr(at, end - at), static_cast<std::size_t>(columns));
        at = end + 1;
    }
    lines.emplace_back();
    lines.push_back(edge(trimmed(cutCode).empty() ? "tear off here" : "cut here", columns));
    std::string preview;
    for (const std::string& line : lines)
        preview += line + "\n";
    return preview;
}

} // namespace merchantry::setup
