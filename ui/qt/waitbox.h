#pragma once

#include <chrono>
#include <memory>

class QDialog;
class QWidget;

namespace merchantry::ui {

// What a user sees while a statement waits for another program that is saving to the store: the hourglass after a moment, then a box with
// a way to give up, over all windows, so that nothing of theirs runs meanwhile.
class WaitBox {
public:
    WaitBox();
    ~WaitBox();
    WaitBox(const WaitBox&) = delete;
    WaitBox& operator=(const WaitBox&) = delete;

    // Shows what belongs to so long a wait and lets the box take its events; false when the user gives up. Owner: the window on top.
    bool goOn(std::chrono::milliseconds waited, QWidget* owner);

private:
    void show(QWidget* owner);

    std::unique_ptr<QDialog> box_;
    bool hourglass_ = false;
    bool givenUp_ = false;
};

} // namespace merchantry::ui
