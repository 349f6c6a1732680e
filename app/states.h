#pragma once

#include "ui/list.h"

#include <string>

namespace merchantry::app {

// Fills a list or combo with the codes of the states, in the order in which screens of addresses offer them.
void fillStates(ui::ListBox& list);
void fillStates(ui::ComboBox& list);
// Whether the text is one of these codes, in capitals.
bool isState(const std::string& code);
// The entry of the list for a state as it is stored, whatever its case; one that the list lacks is added to it. Empty for none.
std::string stateEntry(ui::ComboBox& list, const std::string& stored);

} // namespace merchantry::app
