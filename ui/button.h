#pragma once

#include "ui/control.h"

namespace merchantry::ui {

// A push button. The caption's "&" stands before its mnemonic.
class Button : public Control {
public:
    Button(Form& form, std::string_view name, std::string_view caption);
    ~Button() override;
    Role role() const override { return Role::Button; }
    bool takesFocus() const override { return true; }

    const std::string& caption() const { return caption_; }
    void setCaption(std::string caption) {
        caption_ = std::move(caption);
        changed(Aspect::Text);
    }
    void press() {
        if (click)
            click();
    }

    // The mouse or the space bar goes down on it and comes up again.
    void hold(bool down) {
        if (held)
            held(down);
    }

    bool isDefault = false; // Enter presses it
    bool isCancel = false;  // Escape presses it
    bool drops = false;     // drops what was typed: the field that has the focus is not checked before
    bool isDanger = false;  // it destroys something
    bool isQuiet = false;   // drawn as high as a line of text; keeps its room while it is hidden
    std::function<void()> click;
    std::function<void(bool down)> held; // for a button that works only as long as it is held

private:
    std::string caption_;
};

// A picture that is clicked like a button, such as the arrows beside a list. `icon` names a drawing of the skin ("arrow-up").
class Image : public Control {
public:
    Image(Form& form, std::string_view name, std::string_view iconName, std::string_view what);
    ~Image() override;
    Role role() const override { return Role::Image; }
    bool takesFocus() const override { return static_cast<bool>(click); }
    void press() {
        if (click)
            click();
    }

    std::string icon;
    std::function<void()> click;
};

} // namespace merchantry::ui
