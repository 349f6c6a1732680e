#include "setup/secretbox.h"

namespace merchantry::setup {

void keepSecret(ui::TextBox& box, ui::Button& shows) {
    box.password = true;
    shows.setToolTip("Shows it while you hold the button or the space bar down.");
    shows.held = [&box](bool down) { box.setRevealed(down); };
    shows.lostFocus = [&box] { box.setRevealed(false); };
}

} // namespace merchantry::setup
