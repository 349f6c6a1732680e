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

// The keyboard does not stay on a button that goes.
void UndoLine::leaveButton() {
    if (form_.focused() == &cmdUndoLine)
        form_.focusNext();
}

} // namespace merchantry::ui
