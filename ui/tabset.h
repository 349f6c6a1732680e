#pragma once

#include "ui/control.h"

#include <string>
#include <vector>

namespace merchantry::ui {

// A set of pages of which one is turned up. Pages count from 0 here; screens that number theirs from 1 add one.
class TabSet : public Control {
public:
    TabSet(Form& form, std::string_view name, std::vector<std::string> captions);
    ~TabSet() override;
    Role role() const override { return Role::TabSet; }
    bool takesFocus() const override { return true; }

    const std::vector<std::string>& captions() const { return captions_; }
    int count() const { return static_cast<int>(captions_.size()); }
    int current() const { return current_; }
    // Turns to the page and runs change with the page left, whoever turns; the procedure may turn back. Nothing happens when it is up
    // already.
    void setCurrent(int page) {
        if (page == current_ || page < 0 || page >= count())
            return;
        const int left = current_;
        current_ = page;
        changed(Aspect::Choice);
        if (change)
            change(left);
    }

    std::function<void(int left)> change;

private:
    std::vector<std::string> captions_;
    int current_ = 0;
};

} // namespace merchantry::ui
