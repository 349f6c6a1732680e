#pragma once

#include "ui/button.h"
#include "ui/frame.h"
#include "ui/label.h"
#include "ui/layout.h"

#include <functional>
#include <string>

namespace merchantry::ui {

// The line at the foot of a screen that says what was just deleted or changed without a question, and offers to put it back for a minute. A
// member of the screen, one each; its room on the window is kept while it is empty, so that nothing moves as it comes and goes. What is
// offered next takes the place of what was.
class UndoLine {
public:
    static constexpr int kOfferedMs = 60'000;

    explicit UndoLine(Form& form);

    Item item();
    // Says what went ("Substitute 1001 removed.") and offers to put it back. `putBack` gives why it could not, or an empty text when it was
    // done; it may throw and then has said why itself. It must hold until the line is dismissed or the form is gone.
    void offer(const std::string& sentence, std::function<std::string()> putBack);
    // The screen turns to something else: what was offered is final.
    void dismiss();
    bool offered() const { return static_cast<bool>(putBack_); }

private:
    void undo();
    void leaveButton();

    Form& form_;
    Label lblUndoLine;
    Button cmdUndoLine;
    Timer tmrUndoLine;
    std::function<std::string()> putBack_;
    Control* before_ = nullptr; // had the keyboard when it was offered
};

} // namespace merchantry::ui
