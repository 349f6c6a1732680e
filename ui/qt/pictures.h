#pragma once

#include <filesystem>

namespace merchantry::ui {

class Form;
class QtDesk;

// Writes what the form's window shows now, in the desk's tone, as a PNG of the screen's own scale. The form must be shown.
// Throws std::runtime_error when it has no window or the file cannot be written.
void savePicture(QtDesk& desk, const Form& form, const std::filesystem::path& file);
// The same with another size of the window's content, in logical pixels; the window has its own size again afterwards.
void savePicture(QtDesk& desk, const Form& form, const std::filesystem::path& file, int width, int height);

} // namespace merchantry::ui
