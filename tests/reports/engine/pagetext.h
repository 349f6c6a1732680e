#pragma once

#include "ui/page.h"

#include <algorithm>
#include <map>
#include <string>

namespace merchantry::reports {

// A page as lines of text: each text in the column where it begins or ends, a rule as dashes. 120 twips are a letter.
inline std::string pageText(const ui::Page& page) {
    constexpr int kLetter = 120;
    std::map<int, std::string> lines;
    for (const ui::PageItem& item : page.items) {
        std::string& line = lines[item.y];
        if (item.kind == ui::PageItem::Kind::Line) {
            line += line.empty() ? "----" : "";
            continue;
        }
        if (item.kind != ui::PageItem::Kind::Text)
            continue;
        int at = item.x / kLetter;
        const int length = static_cast<int>(item.text.size());
        if (item.align == ui::PageAlign::Right)
            at = (item.x + item.width) / kLetter - length;
        if (item.align == ui::PageAlign::Center)
            at = (item.x + item.width / 2) / kLetter - length / 2;
        const auto end = static_cast<std::size_t>(std::max(0, at + length));
        if (line.size() < end)
            line.resize(end, ' ');
        line.replace(static_cast<std::size_t>(std::max(0, at)), item.text.size(), item.text);
    }
    std::string text;
    for (auto& [y, line] : lines) {
        line.erase(line.find_last_not_of(' ') + 1);
        if (!line.empty())
            text += line + "\n";
    }
    return text;
}

} // namespace merchantry::reports
