#pragma once

#include <QList>
#include <QSize>

#include <string>

namespace merchantry::ui {

// What the user made of the windows, kept in windows.ini of the user's configuration folder. A file that cannot be read or written is as
// good as none.

// The size that the form's window had when it was last closed; `otherwise` when nothing is known.
QSize rememberedSize(const std::string& form, const QSize& otherwise);
void rememberSizeOf(const std::string& form, const QSize& size);

// Widths of a grid's columns that the user dragged; empty when there were none or the number of columns is another one now.
QList<int> rememberedWidths(const std::string& form, const std::string& grid, int columns);
void rememberWidthsOf(const std::string& form, const std::string& grid, const QList<int>& widths);

// A text that a screen keeps under a name; empty when nothing is known.
std::string rememberedText(const std::string& form, const std::string& what);
void rememberText(const std::string& form, const std::string& what, const std::string& text);

} // namespace merchantry::ui
