#pragma once

#include "ui/desk.h"
#include "ui/form.h"

#include <span>
#include <string>

namespace merchantry::programs {

// One screen of the program: its name and how the desk gets its default instance. A new screen is one line of the table in screens.cpp.
struct Screen {
    const char* name;
    ui::Form& (*instance)(ui::Desk& desk);
    bool command; // opened by a command of the main window under its name, modally, without arguments
};

std::span<const Screen> screens();
// The default instance of the screen of that name; null when there is none.
ui::Form* screenNamed(ui::Desk& desk, const std::string& name);

// Binds the doors between the subsystems to the screens that answer.
void bindDoors(ui::Desk& desk);

} // namespace merchantry::programs
