#include "app/modPhone.h"

#include "base/text.h"

#include <algorithm>
#include <cctype>

namespace merchantry::app {

bool IsPhoneValid(const std::string& /*text*/, const ui::TextBox& /*control*/) {
    return true;
}

bool IsPhoneEmpty(const ui::TextBox& control) {
    const std::string text(trimmed(control.text()));
    if (text.empty())
        return true;
    // An untouched mask shows its own signs and blanks only.
    return !control.mask.empty() &&
           std::none_of(text.begin(), text.end(), [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; });
}

void SetPhone(const std::string& text, ui::TextBox& control) {
    if (IsPhoneValid(text, control))
        control.setText(std::string(trimmed(text)));
}

std::string GetPhone(const ui::TextBox& control) {
    return IsPhoneEmpty(control) ? std::string() : std::string(trimmed(control.text()));
}

} // namespace merchantry::app
