#pragma once

#include "ui/control.h"

#include <string>

namespace merchantry::ui::play {

std::string wordFor(Color color);
// "yellow", "green", "red", "none" or "#RRGGBB".
bool isColorWord(const std::string& word);
// Whether the word means this colour; "#FFFF00" means yellow, and so on.
bool isColor(Color color, const std::string& word);

} // namespace merchantry::ui::play
