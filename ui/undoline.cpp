#include "ui/undoline.h"

#include "ui/desk.h"
#include "ui/form.h"

#include <utility>

namespace merchantry::ui {

UndoLine::UndoLine(Form& form)
    : form_(form), lblUndoLine(form, "lblUndoLine"), cmdUndoLine(form, "cmdUndoLine", "Und&o"),
      tmrUndoLine(form, "tmrUndoLine", kOfferedMs) {
    lblUndoLine.oneLine = true;
    cmdUndoLine.isQuiet = true;
    cmdUndoLine.setVisible(false);
    cmdUndoLine.setToolTip("Puts it back as it was. Offered for a minute");
    cmdUndoLine.click = [this] { undo(); };
    tmrUndoLine.fire = [this] { dismiss(); };
}

Item UndoLine::item() {
    return foot({at(lblUndoLine).stretched(), at(cmdUndoLine)});
}

void UndoLine::offer(const std::string& sentence, std::function<std::string()> putBack) {
    putBack_ = std::move(putBack);
    before_ = form_.focused();
    lblUndoLine.setCaption(sentence);
    cmdUndoLine.setVisible(true);
    tmrUndoLine.stop(); // the minute begins anew
    tmrUndoLine.start();
}

void UndoLine::dismiss() {
    putBack_ = nullptr;
    tmrUndoLine.stop();
    lblUndoLine.setCaption("");
    leaveButton();
    cmdUndoLine.setVisible(false);
}

void UndoLine::undo() {
    if (!offered())
        return;
    const auto putBack = std::exchange(putBack_, nullptr);
    dismiss();
    const std::string refused = putBack();
    if (!refused.empty())
        form_.desk().message(refused, form_.caption(), MessageIcon::Exclamation);
}

// The keyboard goes back to where it was, but not to the button that deletes: to the first field, often the list.
void UndoLine::leaveButton() {
    if (form_.focused() != &cmdUndoLine)
        return;
    const auto* const button = dynamic_cast<const Button*>(before_);
    if (before_ == nullptr || before_ == &cmdUndoLine || (button != nullptr && button->isDanger) || !form_.focus(before_))
        form_.focusFirst();
}

} // namespace merchantry::ui
