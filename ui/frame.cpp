#include "ui/frame.h"

#include "ui/desk.h"
#include "ui/form.h"

namespace merchantry::ui {

Timer::~Timer() {
    stop();
}

void Timer::start() {
    if (running_)
        return;
    running_ = true;
    setEnabled(true);
    form().desk().timerStarted(*this);
}

void Timer::stop() {
    if (!running_)
        return;
    running_ = false;
    setEnabled(false);
    form().desk().timerStopped(*this);
}

} // namespace merchantry::ui
