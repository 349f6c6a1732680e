#pragma once

#include "ui/button.h"
#include "ui/textbox.h"

namespace merchantry::setup {

// Makes the box one for passwords, shown as dots; the button shows what is in it while it is held down, by the mouse or the space bar.
// Borrows both.
void keepSecret(ui::TextBox& box, ui::Button& shows);

} // namespace merchantry::setup
