#include "reports/engine/textfit.h"

#include "base/characters.h"
#include "base/text.h"

namespace merchantry::reports {

std::string cutToWidth(const ui::TextMeasure& measure, const std::string& text, int width, int halfPoints, bool bold) {
    if (measure.width(text, halfPoints, bold) <= width)
        return text;
    std::size_t low = 0;
    std::size_t high = characterCount(text);
    while (low < high) {
        const std::size_t middle = (low + high + 1) / 2;
        if (measure.width(std::string(characters(text, 0, middle)) + "…", halfPoints, bold) <= width)
            low = middle;
        else
            high = middle - 1;
    }
    return low == 0 ? "" : std::string(trimmed(characters(text, 0, low))) + "…";
}

std::vector<std::string> wrapped(const ui::TextMeasure& measure, const std::string& text, int width, int halfPoints, bool bold) {
    std::vector<std::string> lines;
    for (const std::string& paragraph : split(text, "\n")) {
        std::string line;
        for (const std::string& word : split(paragraph, " ")) {
            const std::string longer = line.empty() ? word : line + " " + word;
            if (!line.empty() && measure.width(longer, halfPoints, bold) > width) {
                lines.push_back(line);
                line = word;
            } else {
                line = longer;
            }
        }
        lines.push_back(line);
    }
    return lines;
}

} // namespace merchantry::reports
