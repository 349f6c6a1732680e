#pragma once

#include "ui/control.h"

namespace merchantry::ui {

// A text on the form. With a click procedure it looks and works like a link.
class Label : public Control {
public:
    Label(Form& form, std::string_view name, std::string_view caption = "");
    ~Label() override;
    Role role() const override { return Role::Label; }

    const std::string& caption() const { return caption_; }
    void setCaption(std::string caption) {
        caption_ = std::move(caption);
        changed(Aspect::Text);
    }
    bool takesFocus() const override { return static_cast<bool>(click); }
    // Clicks by the user; by program only through press.
    void press() {
        if (click)
            click();
    }

    bool alignRight = false;
    bool oneLine = false; // what does not fit ends in dots, and the tool tip says it whole
    std::function<void()> click;

private:
    std::string caption_;
};

} // namespace merchantry::ui
