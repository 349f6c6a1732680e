#include "ui/qt/screenroom.h"

#include <QApplication>
#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QScrollBar>
#include <QWindow>

#include <algorithm>

namespace merchantry::ui {
namespace {

constexpr QMargins kGuessedFrame(4, 32, 4, 4);
constexpr int kBroadestFrame = 100;

// Nothing as long as the frame is not there, or half there: while a window manager takes a window over it may read as anything.
QMargins frameOf(const QWidget& window) {
    const QMargins frame = window.windowHandle() == nullptr ? QMargins() : window.windowHandle()->frameMargins();
    const auto usual = [](int side) { return side >= 0 && side <= kBroadestFrame; };
    return usual(frame.left()) && usual(frame.top()) && usual(frame.right()) && usual(frame.bottom()) ? frame : QMargins();
}

} // namespace

// While the window manager reckons it anew it may read as nothing.
QRect freeArea(const QWidget& window) {
    const QRect free = window.screen()->availableGeometry();
    return free.marginsRemoved(usualFrame()).isEmpty() ? window.screen()->geometry() : free;
}

// A window that was shown just now has no frame yet: that tells nothing.
QMargins usualFrame() {
    static QMargins seen = kGuessedFrame;
    for (const QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible() && (window->windowType() == Qt::Window || window->windowType() == Qt::Dialog))
            if (const QMargins frame = frameOf(*window); !frame.isNull())
                seen = frame;
    return seen;
}

QSize roomOnScreen(const QWidget& window) {
    return freeArea(window).marginsRemoved(usualFrame()).size();
}

bool keepOnScreen(QWidget& window) {
    const QRect room = freeArea(window);
    if (!window.isVisible() || window.isMaximized() || window.isFullScreen())
        return true;
    // The window system's own word: the widget may still have what was asked for.
    QWindow& handle = *window.windowHandle();
    const QMargins frame = frameOf(window);
    QRect place = handle.geometry().marginsAdded(frame);
    if (room.contains(place))
        return true;
    place.setSize(place.size().boundedTo(room.size()));
    place.moveLeft(std::max(room.left(), std::min(place.left(), room.right() + 1 - place.width())));
    place.moveTop(std::max(room.top(), std::min(place.top(), room.bottom() + 1 - place.height())));
    handle.setGeometry(place.marginsRemoved(frame));
    return false;
}

ScrollRoom::ScrollRoom(QWidget* content, QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setWidget(content);
    content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
}

// What the screen leaves for the content beside the bars around it.
QSize ScrollRoom::room() const {
    QSize left = roomOnScreen(*window());
    const QLayout* const around = parentWidget() == nullptr ? nullptr : parentWidget()->layout();
    for (int i = 0; around != nullptr && i < around->count(); ++i)
        if (const QLayoutItem* const other = around->itemAt(i); other->widget() != this && !other->isEmpty())
            left.rheight() -= other->minimumSize().height();
    return left.expandedTo(QSize(1, 1));
}

// A content that is cut off on one side needs the bar's breadth on the other.
QSize ScrollRoom::held(QSize wish) const {
    const QSize most = room();
    if (wish.height() > most.height())
        wish.rwidth() += verticalScrollBar()->sizeHint().width();
    if (wish.width() > most.width())
        wish.rheight() += horizontalScrollBar()->sizeHint().height();
    return wish.boundedTo(most);
}

// What the content asks for, the window's layout hears of.
bool ScrollRoom::eventFilter(QObject* object, QEvent* event) {
    const bool taken = QScrollArea::eventFilter(object, event);
    if (object == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return taken;
}

} // namespace merchantry::ui
