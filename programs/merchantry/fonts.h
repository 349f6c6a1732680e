#pragma once

namespace merchantry::programs {

// Has the system find its fonts, once for the process; may run on a thread beside the toolkit's start, whose first text waits for it. Where
// the system has no such look-up it does nothing.
void lookUpFonts();

} // namespace merchantry::programs
