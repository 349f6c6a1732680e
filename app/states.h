#pragma once

#include "ui/list.h"

namespace merchantry::app {

// Fills a list or combo with the codes of the states, in the order in which screens of addresses offer them.
void fillStates(ui::ListBox& list);
void fillStates(ui::ComboBox& list);

} // namespace merchantry::app
