#include "ui/menu.h"

namespace merchantry::ui {

MenuEntry::MenuEntry(Form& form, std::string_view name, std::string_view caption, MenuEntry* parent)
    : Control(form, name), caption_(caption), parent_(parent) {
    if (parent != nullptr)
        parent->children_.push_back(this);
}

MenuEntry::~MenuEntry() = default;

Toolbar::Toolbar(Form& form, std::string_view name, std::vector<ToolButton> buttons) : Control(form, name), buttons_(std::move(buttons)) {}

Toolbar::~Toolbar() = default;

} // namespace merchantry::ui
