#pragma once

#include "ui/menu.h"
#include "ui/play/step.h"

#include <optional>
#include <string>
#include <vector>

// What a user sees of a control: the one place where expectations and the transcript read screens.
namespace merchantry::ui {
class Grid;
}

namespace merchantry::ui::play {

// The text that the control shows: a box's text, a caption, the selected entry. Nothing for kinds that show none (grid, timer, image).
std::optional<std::string> shownText(const Target& target);
// The same as it may be written down: dots for a password.
std::optional<std::string> tellableText(const Target& target);
// On or off; nothing for kinds that are neither.
std::optional<bool> shownFlag(const Control& control);
// The entries of a list, the captions of pages or of a submenu. Nothing for other kinds.
std::optional<std::vector<std::string>> shownEntries(const Control& control);
// Neither it nor what holds it is hidden, its page is turned up, and its form is open.
bool isVisible(const Control& control);
// Neither it nor what holds it is disabled.
bool isEnabled(const Control& control);
// Every text that stands on the form for reading: labels, headings and the captions of fields.
std::vector<std::string> visibleTexts(const Form& form);
std::string kindOf(const Control& control);
// The first column that a user sees; 0 when there is none.
int firstVisibleColumn(const Grid& grid);

} // namespace merchantry::ui::play
