#include "ui/choice.h"

#include "ui/form.h"

namespace merchantry::ui {

CheckBox::CheckBox(Form& form, std::string_view name, std::string_view caption) : Control(form, name), caption_(caption) {}

CheckBox::~CheckBox() = default;

OptionButton::OptionButton(Form& form, std::string_view name, std::string_view caption, bool on)
    : Control(form, name), caption_(caption), value_(on) {}

OptionButton::~OptionButton() = default;

void CheckBox::setCaption(std::string caption) {
    caption_ = std::move(caption);
    changed(Aspect::Text);
}

void CheckBox::setValue(bool on) {
    if (value_ == on)
        return;
    value_ = on;
    changed(Aspect::Choice);
    if (click)
        click();
}

void OptionButton::setValue(bool on) {
    if (value_ == on)
        return;
    value_ = on;
    changed(Aspect::Choice);
    if (!on)
        return;
    for (Control* control : form().controls()) {
        auto* other = dynamic_cast<OptionButton*>(control);
        if (other != nullptr && other != this && other->container() == container() && other->group == group)
            other->setValue(false);
    }
    if (click)
        click();
}

} // namespace merchantry::ui
