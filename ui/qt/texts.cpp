#include "ui/qt/texts.h"

#include "ui/qt/screenroom.h"

#include <QEvent>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLayout>
#include <QScreen>
#include <QTextDocument>
#include <QWidget>
#include <QWindow>

#include <map>

namespace merchantry::ui {
namespace {

class CloseWatch : public QObject {
public:
    CloseWatch(QWidget& window, std::function<void()> call) : QObject(&window), call_(std::move(call)) { window.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Hide && !event->spontaneous())
            call_();
        return false;
    }

private:
    std::function<void()> call_;
};

} // namespace

QStringList fileFilters(const std::string& filter) {
    const QStringList pieces = toQt(filter).split(QLatin1Char('|'), Qt::SkipEmptyParts);
    QStringList filters;
    for (qsizetype i = 0; i + 1 < pieces.size(); i += 2) {
        const QString words =
            pieces[i].contains(QLatin1Char('(')) ? pieces[i].section(QLatin1Char('('), 0, 0).trimmed() : pieces[i].trimmed();
        filters << words + QStringLiteral(" (") + QString(pieces[i + 1]).replace(QLatin1Char(';'), QLatin1Char(' ')) + QLatin1Char(')');
    }
    return filters.isEmpty() ? QStringList{QStringLiteral("All files (*)")} : filters;
}

QString plainTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

std::string keyName(const QKeyEvent& event) {
    static const std::map<int, const char*> kNames = {
        {Qt::Key_Return, "Enter"},  {Qt::Key_Enter, "Enter"},       {Qt::Key_Escape, "Escape"},
        {Qt::Key_Delete, "Delete"}, {Qt::Key_Insert, "Insert"},     {Qt::Key_PageUp, "PageUp"},
        {Qt::Key_Tab, "Tab"},       {Qt::Key_PageDown, "PageDown"}, {Qt::Key_Backtab, "Tab"}};
    const int key = event.key();
    if (key == 0 || key == Qt::Key_unknown || (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) || key == Qt::Key_AltGr)
        return "";
    if (!(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) && !event.text().isEmpty() && event.text()[0].isPrint())
        return fromQt(event.text());
    const auto named = kNames.find(key);
    std::string name = named != kNames.end() ? named->second : fromQt(QKeySequence(key).toString(QKeySequence::PortableText));
    const Qt::KeyboardModifiers held = event.modifiers();
    const bool letter = (key >= Qt::Key_A && key <= Qt::Key_Z) || key == Qt::Key_Space;
    const bool sign = key < 0x100 && !letter; // Shift is a part of how it is typed, and not told
    if (!sign && (held & Qt::ShiftModifier) && (!letter || (held & (Qt::ControlModifier | Qt::AltModifier))))
        name = "Shift+" + name;
    if (held & Qt::AltModifier)
        name = "Alt+" + name;
    if (held & Qt::ControlModifier)
        name = "Ctrl+" + name;
    return name;
}

QString laidIntoMask(const QString& mask, const QString& typed) {
    QString digits;
    for (const QChar c : typed)
        if (c.isDigit())
            digits += c;
    QString laid;
    qsizetype used = 0;
    for (const QChar c : mask) {
        if (used == digits.size())
            break;
        laid += c == QLatin1Char('#') ? digits[used++] : c;
    }
    return laid;
}

void standOver(QWidget& window, QWidget* owner) {
    if (owner == nullptr)
        return;
    window.winId(); // makes the handle
    window.windowHandle()->setTransientParent(owner->window()->windowHandle());
    window.ensurePolished();
    if (window.layout() != nullptr)
        window.layout()->activate();
    const QSize size = window.testAttribute(Qt::WA_Resized) ? window.size() : window.sizeHint();
    QRect place = QRect(QPoint(), size).marginsAdded(usualFrame());
    place.moveCenter(owner->window()->geometry().center());
    const QRect room = freeArea(*owner);
    place.moveLeft(std::clamp(place.left(), room.left(), std::max(room.left(), room.right() + 1 - place.width())));
    place.moveTop(std::clamp(place.top(), room.top(), std::max(room.top(), room.bottom() + 1 - place.height())));
    window.setGeometry(place.marginsRemoved(usualFrame())); // the frame is not there yet
}

void onClosed(QWidget& window, std::function<void()> call) {
    new CloseWatch(window, std::move(call)); // owned by the window
}

} // namespace merchantry::ui
