#pragma once

#include <functional>
#include <string>
#include <vector>

namespace merchantry::ui {

class Form;
class FormWindow;
class QtDesk;

// Something on a window that a user would stumble over.
struct Finding {
    std::string control; // the control's name, or its text when it has none
    std::string what;    // "text is clipped", "overlaps cmdExit", "shares Alt+N with txtName", …
};

// Looks at every page of a shown form's window as it stands: clipped text, things that overlap or stick out, mnemonics that two things
// share, controls that take the focus but not by Tab. Turns pages for that and back again, without the screen noticing.
// Empty when all is well. A form without a window is one finding.
std::vector<Finding> inspect(QtDesk& desk, const Form& form);
// The same for a window that no desk of its own holds, such as those of a script's forms.
std::vector<Finding> inspect(FormWindow& window);

// Calls with each page of each tab set of the window turned up, the current ones first, and turns back; once for a window without any.
void onEveryPage(FormWindow& window, const std::function<void()>& call);

// The findings as lines, for the message of a test.
std::string toText(const std::vector<Finding>& findings);

} // namespace merchantry::ui
