#pragma once

#include <functional>
#include <string>

namespace merchantry::ui {

class Desk;

// Runs the step again and again until it gives 100 percent; below 0 it is not known how far it is. A work that takes longer than a moment
// gets a window with its progress and a Stop, over all others, so that nothing can change under it. Each step should take a few hundredths
// of a second. False when the user stopped it. What a step throws passes through, the window gone. `words`, where given, tells anew what
// the work is at.
bool longWork(Desk& desk, const std::string& what, const std::function<int()>& step, const std::function<std::string()>& words = {});

} // namespace merchantry::ui
