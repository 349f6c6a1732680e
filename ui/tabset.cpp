#include "ui/tabset.h"

namespace merchantry::ui {

TabSet::TabSet(Form& form, std::string_view name, std::vector<std::string> captions)
    : Control(form, name), captions_(std::move(captions)) {}

TabSet::~TabSet() = default;

} // namespace merchantry::ui
