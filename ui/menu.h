#pragma once

#include "ui/control.h"

#include <set>
#include <string>
#include <vector>

namespace merchantry::ui {

// A command or a submenu of a form's menu bar. Entries without a parent are the bar itself. A caption "-" is a line.
class MenuEntry : public Control {
public:
    MenuEntry(Form& form, std::string_view name, std::string_view caption, MenuEntry* parent = nullptr);
    ~MenuEntry() override;
    Role role() const override { return Role::MenuEntry; }
    const std::string& caption() const { return caption_; }
    MenuEntry* parent() const { return parent_; }
    const std::vector<MenuEntry*>& children() const { return children_; }
    void press() {
        if (click)
            click();
    }
    std::function<void()> click;

private:
    std::string caption_;
    MenuEntry* parent_;
    std::vector<MenuEntry*> children_;
};

struct ToolButton {
    std::string key;
    std::string caption;
    std::string toolTip;
    std::string icon; // a drawing of the skin
};

// A bar of buttons, told apart by key.
class Toolbar : public Control {
public:
    Toolbar(Form& form, std::string_view name, std::vector<ToolButton> buttons);
    ~Toolbar() override;
    Role role() const override { return Role::Toolbar; }
    const std::vector<ToolButton>& buttons() const { return buttons_; }
    void press(const std::string& key) {
        if (buttonClick)
            buttonClick(key);
    }
    // Of one of its buttons; all are enabled as the bar is made.
    bool buttonEnabled(const std::string& key) const { return !disabled_.contains(key); }
    void setButtonEnabled(const std::string& key, bool on) {
        if (on)
            disabled_.erase(key);
        else
            disabled_.insert(key);
        changed(Aspect::State);
    }
    std::function<void(const std::string& key)> buttonClick;

private:
    std::vector<ToolButton> buttons_;
    std::set<std::string> disabled_;
};

} // namespace merchantry::ui
