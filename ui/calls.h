#pragma once

#include <string>

namespace merchantry::ui {

// An event that a procedure of the screen takes as it comes, with all its arguments:
//
//   grdPrices.beforeEdit = calls(this, &frmPrices::grdPrices_BeforeEdit);
//
// An event that leaves an argument out, or has none, is a lambda: [this] { cmdAdd_Click(); }. The screen must outlive the event.
template <class Screen, class Owner, class... Arguments> auto calls(Screen* screen, void (Owner::*procedure)(Arguments...)) {
    return [screen, procedure](Arguments... arguments) { (screen->*procedure)(arguments...); };
}

// A grid's error event that is answered by the procedure alone: it says what is wrong and puts the grid right.
template <class Screen, class Owner> auto answers(Screen* screen, void (Owner::*procedure)()) {
    return [screen, procedure](const std::string&, bool& handled) {
        handled = true;
        (screen->*procedure)();
    };
}

} // namespace merchantry::ui
