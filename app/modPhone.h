#pragma once

#include "ui/textbox.h"

#include <string>

namespace merchantry::app {

// Phone numbers in masked fields. Any form of a number is accepted.

// Always true: no number is refused.
bool IsPhoneValid(const std::string& text, const ui::TextBox& control);
// Whether the field holds nothing but blanks and its mask's own characters.
bool IsPhoneEmpty(const ui::TextBox& control);
// Puts the text, without surrounding blanks, into the field.
void SetPhone(const std::string& text, ui::TextBox& control);
// The field's text without surrounding blanks; empty when it is empty.
std::string GetPhone(const ui::TextBox& control);

} // namespace merchantry::app
