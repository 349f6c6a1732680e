#include "ui/textbox.h"

#include "base/characters.h"
#include "base/currency.h"
#include "base/numbers.h"
#include "ui/form.h"

#include <algorithm>

namespace merchantry::ui {

TextBox::TextBox(Form& form, std::string_view name) : Control(form, name) {}

TextBox::~TextBox() = default;

void TextBox::setText(std::string text) {
    if (text_ == text)
        return;
    text_ = std::move(text);
    const int length = static_cast<int>(characterCount(text_));
    selStart_ = std::min(selStart_, length);
    selLength_ = 0;
    changed(Aspect::Text);
    if (change)
        change();
}

std::string TextBox::shownText() const {
    if (!money || form().focused() == this || !isNumeric(text_))
        return text_;
    try {
        return Currency::fromDouble(*numberOf(text_)).toDisplay();
    } catch (const OverflowError&) { // no amount of money
        return text_;
    }
}

void TextBox::select(int start, int length) {
    const int all = static_cast<int>(characterCount(text_));
    selStart_ = std::clamp(start, 0, all);
    selLength_ = std::clamp(length, 0, all - selStart_);
    changed(Aspect::Choice);
}

void TextBox::selectAll() {
    select(0, static_cast<int>(characterCount(text_)));
}

std::string TextBox::selectedText() const {
    return std::string(characters(text_, static_cast<std::size_t>(selStart_), static_cast<std::size_t>(selLength_)));
}

void TextBox::setLocked(bool on) {
    locked_ = on;
    changed(Aspect::State);
}

void TextBox::setRevealed(bool on) {
    revealed_ = on;
    changed(Aspect::Look);
}

} // namespace merchantry::ui
