#pragma once

namespace merchantry::ui {

// The drawing of a tab set, for those that look at every page without turning the screen's own.
class TurnsPages {
public:
    virtual ~TurnsPages() = default;
    virtual int pages() const = 0;
    virtual void turnTo(int page) = 0;
    // To the page that the screen has up.
    virtual void turnBack() = 0;
};

} // namespace merchantry::ui
