#pragma once

#include "ui/control.h"

namespace merchantry::ui {

// A box that is on or off.
class CheckBox : public Control {
public:
    CheckBox(Form& form, std::string_view name, std::string_view caption);
    ~CheckBox() override;
    Role role() const override { return Role::CheckBox; }
    bool takesFocus() const override { return true; }

    const std::string& caption() const { return caption_; }
    void setCaption(std::string caption);
    bool value() const { return value_; }
    // Runs click when this changes the value, whoever sets it.
    void setValue(bool on);

    std::function<void()> click;

private:
    std::string caption_;
    bool value_ = false;
};

// One of several choices; those of one frame (or of the form itself) with the same group text exclude one another.
class OptionButton : public Control {
public:
    OptionButton(Form& form, std::string_view name, std::string_view caption, bool on = false);
    ~OptionButton() override;
    Role role() const override { return Role::OptionButton; }
    bool takesFocus() const override { return true; }

    const std::string& caption() const { return caption_; }
    bool value() const { return value_; }
    // Setting one on takes the others of its group off and runs its click when it was off; whoever sets it.
    void setValue(bool on);

    std::string group;
    std::function<void()> click;

private:
    std::string caption_;
    bool value_;
};

} // namespace merchantry::ui
