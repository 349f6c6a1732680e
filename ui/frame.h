#pragma once

#include "ui/control.h"

#include <string>

namespace merchantry::ui {

// A box with a heading around other controls: hiding or disabling it does so with all it holds.
class Frame : public Control {
public:
    Frame(Form& form, std::string_view name, std::string_view caption = "");
    ~Frame() override;
    Role role() const override { return Role::Frame; }
    const std::string& caption() const { return caption_; }
    void setCaption(std::string caption) {
        caption_ = std::move(caption);
        changed(Aspect::Text);
    }

private:
    std::string caption_;
};

// How far a long work is, from 0 to most; with most 0 it is at work and nobody knows how far.
class ProgressBar : public Control {
public:
    ProgressBar(Form& form, std::string_view name);
    ~ProgressBar() override;
    Role role() const override { return Role::ProgressBar; }
    int value() const { return value_; }
    int most() const { return most_; }
    void set(int value, int most = 100) {
        value_ = value;
        most_ = most;
        changed(Aspect::Text);
    }

private:
    int value_ = 0;
    int most_ = 100;
};

// Fires every intervalMs while enabled. Made disabled; enabling an enabled timer does not start it anew.
class Timer : public Control {
public:
    Timer(Form& form, std::string_view name, int interval);
    ~Timer() override;
    Role role() const override { return Role::Timer; }
    bool running() const { return running_; }
    // Through the desk, which counts the time.
    void start();
    void stop();

    const int intervalMs;
    std::function<void()> fire;

private:
    bool running_ = false;
};

} // namespace merchantry::ui
