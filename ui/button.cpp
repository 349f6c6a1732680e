#include "ui/button.h"

namespace merchantry::ui {

Button::Button(Form& form, std::string_view name, std::string_view caption) : Control(form, name), caption_(caption) {}

Button::~Button() = default;

Image::Image(Form& form, std::string_view name, std::string_view iconName, std::string_view what) : Control(form, name), icon(iconName) {
    setToolTip(std::string(what));
}

Image::~Image() = default;

} // namespace merchantry::ui
