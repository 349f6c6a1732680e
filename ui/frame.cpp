#include "ui/frame.h"

#include "ui/desk.h"
#include "ui/form.h"

namespace merchantry::ui {

Frame::Frame(Form& form, std::string_view name, std::string_view caption) : Control(form, name), caption_(caption) {}

Frame::~Frame() = default;

ProgressBar::ProgressBar(Form& form, std::string_view name) : Control(form, name) {}

ProgressBar::~ProgressBar() = default;

Timer::Timer(Form& form, std::string_view name, int interval) : Control(form, name), intervalMs(interval) {
    setEnabled(false);
}

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
