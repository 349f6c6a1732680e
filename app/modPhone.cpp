#include "app/modPhone.h"

#include "app/titles.h"
#include "base/characters.h"
#include "base/text.h"
#include "ui/form.h"

#include <algorithm>
#include <cctype>
#include <memory>
#include <utility>

namespace merchantry::app {
namespace {

constexpr std::size_t kRoom = 30; // of the store's columns, in characters

void refuseTooLong(ui::TextBox& control, bool& cancel) {
    const std::size_t typed = characterCount(trimmed(control.text()));
    if (typed <= kRoom)
        return;
    control.form().desk().message("A phone or fax number has room for " + std::to_string(kRoom) + " characters; these are " +
                                      std::to_string(typed) + ". Please shorten it.",
                                  kProduct);
    cancel = true;
}

} // namespace

std::string phoneLaidOut(const std::string& text) {
    if (text.size() != 10 || !std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; }))
        return text;
    return "(" + text.substr(0, 3) + ") " + text.substr(3, 3) + "-" + text.substr(6);
}

void takePhones(ui::TextBox& control) {
    control.maxLength = 0; // nothing typed is dropped
    control.validate = [&control](bool& cancel) { refuseTooLong(control, cancel); };
    const auto before = std::make_shared<std::string>();
    control.gotFocus = [&control, before, also = std::move(control.gotFocus)] {
        *before = control.text();
        if (also)
            also();
    };
    control.lostFocus = [&control, before, also = std::move(control.lostFocus)] {
        if (control.text() != *before)
            control.setText(phoneLaidOut(std::string(trimmed(control.text()))));
        if (also)
            also();
    };
}

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

bool phoneRefused(ui::TextBox& control, const char* message, ui::MessageIcon icon) {
    if (IsPhoneValid(control.text(), control) || IsPhoneEmpty(control))
        return false;
    control.form().desk().message(message, kProduct, icon);
    control.setFocus();
    return true;
}

void SetPhone(const std::string& text, ui::TextBox& control) {
    if (IsPhoneValid(text, control))
        control.setText(std::string(trimmed(text)));
}

std::string GetPhone(const ui::TextBox& control) {
    return IsPhoneEmpty(control) ? std::string() : std::string(trimmed(control.text()));
}

} // namespace merchantry::app
