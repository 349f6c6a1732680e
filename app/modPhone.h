#pragma once

#include "ui/desk.h"
#include "ui/textbox.h"

#include <string>

namespace merchantry::app {

// Phone numbers in fields. Any form of a number is accepted and kept as it was typed, a country code and an extension among them.

// Makes the field lay out ten typed digits as "(###) ###-####" when it loses the focus. What was not typed stays as it is. Keeps what the
// field does already when it gets and loses the focus. A number that the store has no room for is refused as the field is left, whole as it
// was typed.
void takePhones(ui::TextBox& control);
// "(555) 123-4567" for exactly ten digits; any other text as it is.
std::string phoneLaidOut(const std::string& text);

// Always true: no number is refused.
bool IsPhoneValid(const std::string& text, const ui::TextBox& control);
// Whether the field holds a number that is not valid: that is said, under the product's name, and the focus goes back there.
bool phoneRefused(ui::TextBox& control, const char* message, ui::MessageIcon icon);
// Whether the field holds nothing but blanks and its mask's own characters.
bool IsPhoneEmpty(const ui::TextBox& control);
// Puts the text, without surrounding blanks, into the field.
void SetPhone(const std::string& text, ui::TextBox& control);
// The field's text without surrounding blanks; empty when it is empty.
std::string GetPhone(const ui::TextBox& control);

} // namespace merchantry::app
