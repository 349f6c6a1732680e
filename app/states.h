#pragma once

#include "ui/list.h"

#include <string>

namespace merchantry::app {

// Fills a list or combo with the codes of the states, in the order in which screens of addresses offer them.
void fillStates(ui::ListBox& list);
void fillStates(ui::ComboBox& list);
// Whether the text is one of these codes, in capitals.
bool isState(const std::string& code);

} // namespace merchantry::app
