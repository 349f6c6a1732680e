// The part of FormWindow that keeps the form's size and its controls' places, and follows a screen that moves its controls itself.
#include "ui/qt/formwindow.h"

#include "ui/qt/screenroom.h"

#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <chrono>

namespace merchantry::ui {
namespace {

constexpr int kLooks = 80; // at most, where no frame ever comes
constexpr int kGoodLooks = 4;
constexpr auto kBetweenLooks = std::chrono::milliseconds(60);

} // namespace

void FormWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (settled_ && form_ != nullptr)
        reportSize();
}

// The screen hears of its new size while its controls still have their old places, so that it can move them by the difference.
void FormWindow::reportSize() {
    placing_ = true;
    act([this] { form_->setSize(width() * kTwipsPerPixel, height() * kTwipsPerPixel); });
    placing_ = false;
    if (form_ == nullptr)
        return;
    const QSize wanted = QSize(form_->width(), form_->height()) / kTwipsPerPixel;
    if (wanted != size() && embeddedIn_ == nullptr)
        resize(wanted);
    if (!freed_)
        QTimer::singleShot(0, this, [this] {
            if (!freed_)
                recordPlaces();
        });
}

// A window manager puts its frame around a window some time after it is shown, and moves it as it thinks fit: looked at a few times, until
// it has stood well for long enough. Never within an event that tells of the window's state: a screen's procedure may be running.
void FormWindow::fitOnScreen() {
    const bool looking = looks_ > 0;
    looks_ = kLooks;
    if (!looking)
        lookAgain();
}

void FormWindow::lookAgain() {
    QTimer::singleShot(kBetweenLooks, this, [this] {
        if (!isVisible() || embeddedIn_ != nullptr) {
            looks_ = 0;
            return;
        }
        room_->updateGeometry(); // the room is reckoned with the frame that is known by now
        outer_->activate();
        const bool framed = windowHandle() != nullptr && !windowHandle()->frameMargins().isNull();
        if (keepOnScreen(*this) && framed)
            looks_ = std::min(looks_, kGoodLooks); // nearly done
        if (--looks_ > 0)
            lookAgain();
    });
}

void FormWindow::recordPlaces() {
    if (form_ == nullptr)
        return;
    standing_.clear();
    for (const auto& drawing : drawings_) {
        QWidget* const widget = drawing->widget();
        standing_.push_back({widget, widget->geometry()});
        if (drawing->companion() != nullptr)
            standing_.push_back({drawing->companion(), drawing->companion()->geometry()});
        const QRect r = widget->geometry();
        const Place place{r.left() * kTwipsPerPixel, r.top() * kTwipsPerPixel, r.width() * kTwipsPerPixel, r.height() * kTwipsPerPixel};
        placed_[&drawing->control()] = place;
        drawing->control().setPlace(place);
    }
}

// From now on the screen says where its controls stand.
void FormWindow::setFree() {
    if (freed_)
        return;
    freed_ = true;
    for (const auto& layout : layouts_)
        if (layout != nullptr)
            layout->setEnabled(false);
    for (const Standing& entry : standing_)
        if (entry.widget != nullptr)
            entry.widget->setGeometry(entry.where);
}

void FormWindow::moved(Control& control) {
    const Place& place = control.place();
    Drawing* const drawn = drawing(control);
    const auto known = placed_.find(&control);
    if (drawn == nullptr || (known != placed_.end() && known->second == place))
        return;
    setFree();
    const QRect old = drawn->widget()->geometry();
    const QRect now(place.left / kTwipsPerPixel, place.top / kTwipsPerPixel, place.width / kTwipsPerPixel, place.height / kTwipsPerPixel);
    drawn->widget()->setGeometry(now);
    if (drawn->companion() != nullptr)
        drawn->companion()->move(drawn->companion()->pos() + now.topLeft() - old.topLeft());
    placed_[&control] = place;
}

} // namespace merchantry::ui
