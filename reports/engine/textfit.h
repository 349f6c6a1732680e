#pragma once

#include "ui/page.h"

#include <string>
#include <vector>

namespace merchantry::reports {

// The text, or as much of it as has room, with … behind. Widths in twips, sizes in half points.
std::string cutToWidth(const ui::TextMeasure& measure, const std::string& text, int width, int halfPoints, bool bold);

// The text on lines that have room, at least one; a word alone may be too long.
std::vector<std::string> wrapped(const ui::TextMeasure& measure, const std::string& text, int width, int halfPoints, bool bold);

} // namespace merchantry::reports
