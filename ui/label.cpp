#include "ui/label.h"

namespace merchantry::ui {

Label::Label(Form& form, std::string_view name, std::string_view caption) : Control(form, name), caption_(caption) {}

Label::~Label() = default;

} // namespace merchantry::ui
