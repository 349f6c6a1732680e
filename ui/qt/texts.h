#pragma once

#include <QString>
#include <QStringList>

#include <string>

class QKeyEvent;
class QWidget;

#include <functional>

namespace merchantry::ui {

inline QString toQt(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string fromQt(const QString& text) {
    return text.toStdString();
}

// "Report Files (*.rpt)|*.rpt" as the file dialogue takes it: one entry a pair.
QStringList fileFilters(const std::string& filter);
// A text as a tool tip shows it to the letter: one that looks like mark-up is not taken for it.
QString plainTip(const QString& text);
// A key as screens and plays name it: "Enter", "Escape", "Shift+Tab", "F1", "Ctrl+C", a character as itself; empty for a bare modifier.
std::string keyName(const QKeyEvent& event);
// A typed text laid into a mask such as "(###) ###-####": its digits in the places of #, the mask's own characters between them.
QString laidIntoMask(const QString& mask, const QString& typed);
// Puts a window that is not shown yet over the middle of another one, in front of which it stays; its owner may go before it does.
void standOver(QWidget& window, QWidget* owner);
// Calls when the window leaves the screen, however it does.
void onClosed(QWidget& window, std::function<void()> call);

} // namespace merchantry::ui
