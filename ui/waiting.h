#pragma once

#include "ui/desk.h"

namespace merchantry::ui {

// The hourglass for as long as this stands.
class Waiting {
public:
    explicit Waiting(Desk& desk) : desk_(desk) { desk_.waitCursor(true); }
    ~Waiting() { desk_.waitCursor(false); }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

private:
    Desk& desk_;
};

} // namespace merchantry::ui
