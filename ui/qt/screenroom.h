#pragma once

#include <QLayout>
#include <QMargins>
#include <QScrollArea>

namespace merchantry::ui {

// The frame that the window manager draws around windows: as seen on a window that is shown, a usual one before any is.
QMargins usualFrame();
// What of the window's screen windows may stand on.
QRect freeArea(const QWidget& window);
// The largest size of a window whose frame still stands inside the screen's free area.
QSize roomOnScreen(const QWidget& window);
// Shrinks and moves a shown window so that its frame stands inside the free area; false when it did not. Nothing happens to one whose user
// made it as large as the screen. The window manager has a say in where it stands then: look again.
bool keepOnScreen(QWidget& window);

// A window's content. Beside lines that break it needs no more height than the least: its own wish would count the wished height of lists,
// too, and scroll where they could give way.
class Content : public QWidget {
public:
    int heightForWidth(int width) const override { return layout() == nullptr ? -1 : layout()->totalMinimumHeightForWidth(width); }
};

// Holds a window's content at the size that it wants, and scrolls it where the screen has less room than it needs.
class ScrollRoom : public QScrollArea {
public:
    // Takes the content over.
    explicit ScrollRoom(QWidget* content, QWidget* parent);
    QSize sizeHint() const override { return held(widget()->sizeHint()); }
    QSize minimumSizeHint() const override { return held(widget()->minimumSizeHint()); }

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QSize held(QSize wish) const;
    QSize room() const;
};

} // namespace merchantry::ui
