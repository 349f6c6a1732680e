#pragma once

#include "ui/desk.h"

#include <functional>

class QWidget;

namespace merchantry::ui {

class Skin;

// The message box and the input box, in the program's own look. `wait` shows the box and returns when it is gone; it may throw.
// Escape and the close box answer Cancel, No or OK, whichever of them the box has.
Answer showBox(const Skin& skin, QWidget* owner, const Message& message, const std::function<void(QWidget&)>& wait);
std::optional<std::string> showInput(const Skin& skin, QWidget* owner, const Input& input, const std::function<void(QWidget&)>& wait);

} // namespace merchantry::ui
