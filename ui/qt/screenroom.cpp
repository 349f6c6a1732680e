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

QMargins frameOf(const QWidget& window) {
    return window.windowHandle() == nullptr ? QMargins() : window.windowHandle()->frameMargins();
}

} // namespace

QMargins usualFrame() {
    bool any = false;
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible() || (window->windowType() != Qt::Window && window->windowType() != Qt::Dialog))
            continue;
        any = true;
        if (const QMargins frame = frameOf(*window); !frame.isNull())
            return frame;
    }
    return any ? QMargins() : kGuessedFrame;
}

QSize roomOnScreen(const QWidget& window) {
    return window.screen()->availableGeometry().marginsRemoved(usualFrame()).size();
}

void keepOnScreen(QWidget& window) {
    if (!window.isVisible() || window.isMaximized() || window.isFullScreen())
        return;
    const QMargins frame = frameOf(window);
    const QRect room = window.screen()->availableGeometry();
    window.resize(window.size().boundedTo(room.marginsRemoved(frame).size()));
    QRect place = window.geometry().marginsAdded(frame);
    place.moveLeft(std::max(room.left(), std::min(place.left(), room.right() + 1 - place.width())));
    place.moveTop(std::max(room.top(), std::min(place.top(), room.bottom() + 1 - place.height())));
    if (place.topLeft() != window.geometry().marginsAdded(frame).topLeft())
        window.move(place.topLeft());
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
