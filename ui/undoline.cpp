#include "ui/undoline.h"

#include "ui/choice.h"
#include "ui/desk.h"
#include "ui/form.h"

#include <cctype>
#include <utility>

namespace merchantry::ui {
namespace {

// The letter behind the caption's "&", small; 0 for none.
char mnemonicOf(const std::string& caption) {
    const std::size_t at = caption.find('&');
    return at + 1 < caption.size() && at != std::string::npos ? static_cast<char>(std::tolower(static_cast<unsigned char>(caption[at + 1])))
                                                              : '\0';
}

void collectMnemonics(const Item& item, std::string& letters) {
    letters += mnemonicOf(item.text());
    for (const Item& child : item.children())
        collectMnemonics(child, letters);
}

// "Undo" with a letter that leads nowhere else on the form, "o" where that is free.
std::string undoCaption(const Form& form, const Button& own) {
    std::string taken;
    collectMnemonics(form.layout(), taken);
    for (const Control* control : form.controls()) {
        if (const auto* button = dynamic_cast<const Button*>(control); button != nullptr && button != &own)
            taken += mnemonicOf(button->caption());
        if (const auto* label = dynamic_cast<const Label*>(control))
            taken += mnemonicOf(label->caption());
        if (const auto* box = dynamic_cast<const CheckBox*>(control))
            taken += mnemonicOf(box->caption());
        if (const auto* option = dynamic_cast<const OptionButton*>(control))
            taken += mnemonicOf(option->caption());
    }
    for (const char* caption : {"Und&o", "&Undo", "U&ndo", "Un&do"})
        if (taken.find(mnemonicOf(caption)) == std::string::npos)
            return caption;
    return "Undo";
}

} // namespace

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
    cmdUndoLine.setCaption(undoCaption(form_, cmdUndoLine));
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
