#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace merchantry::ui {

// The drawing of that name from ui/qt/icons in one colour, sharp at every size; a null icon when there is none of that name.
QIcon lineIcon(const QString& name, const QColor& color);
// The same drawing on a rounded tile, for window titles and task bars.
QIcon tileIcon(const QString& name, const QColor& tile, const QColor& color);

} // namespace merchantry::ui
