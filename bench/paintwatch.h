#pragma once

#include "ui/qt/qtdesk.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

namespace merchantry::bench {

// Notes that the table of a list has been painted, not only its frame. An event filter of the application.
class PaintWatch : public QObject {
public:
    bool painted = false;

protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Paint && object->objectName() == QStringLiteral("qt_scrollarea_viewport"))
            painted = true;
        return false;
    }
};

// Shows the list F as a screen does, until it is painted; closing it again is not measured.
template <class F> void showPainted(ui::QtDesk& desk, PaintWatch& watch) {
    watch.painted = false;
    desk.enter([&] { desk.show(desk.form<F>()); });
    while (!watch.painted)
        QCoreApplication::processEvents();
}

} // namespace merchantry::bench
