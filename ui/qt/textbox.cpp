#include "ui/textbox.h"
#include "base/text.h"

#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/frame.h"
#include "ui/qt/roles.h"
#include "ui/qt/texts.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextBlock>

namespace merchantry::ui {
namespace {

// Colours that a screen gave a field, on top of the sheet.
void showColors(QWidget& widget, const Control& control, const Skin& skin) {
    QString sheet;
    if (control.foreColor() != Color::None)
        sheet += QStringLiteral("color: %1;").arg(skin.ink(control.foreColor()).name());
    if (widget.styleSheet() != sheet)
        widget.setStyleSheet(sheet);
}

// Qt counts UTF-16 units, screens count characters.
int unitsOf(const QString& text, int characterIndex) {
    int units = 0;
    for (int i = 0; i < characterIndex && units < text.size(); ++i)
        units += text[units].isHighSurrogate() ? 2 : 1;
    return units;
}
int charactersOf(const QString& text, qsizetype units) {
    int count = 0;
    for (qsizetype i = 0; i < units && i < text.size(); ++i)
        count += text[i].isLowSurrogate() ? 0 : 1;
    return count;
}

// A box that comes up while somebody types must not swallow the rest of the word: what is typed at its buttons, as long as this object
// lives, is kept for the field. Enter, Escape and, before the first letter, the space bar are the buttons' own.
class TypedMeanwhile : public QObject {
public:
    TypedMeanwhile() { qApp->installEventFilter(this); }
    const QString& text() const { return text_; }

    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() != QEvent::KeyPress || qobject_cast<QAbstractButton*>(object) == nullptr)
            return false;
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool letter = !key.text().isEmpty() && key.text().front().isPrint() && (!key.text().front().isSpace() || !text_.isEmpty());
        if (!letter || (key.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) != Qt::NoModifier)
            return false;
        text_ += key.text();
        return true;
    }

private:
    QString text_;
};

class LineDrawing : public Drawing {
public:
    LineDrawing(FormWindow& host, TextBox& box, QWidget* parent) : Drawing(host, box, new QLineEdit(parent)), box_(box) {
        line().setFixedHeight(measure::kField);
        line().setMinimumWidth(72);
        if (box.alignRight)
            line().setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        if (box.maxLength > 0)
            line().setMaxLength(box.maxLength);
        if (box.fixedWidth)
            line().setFont(host.skin().code());
        QObject::connect(&line(), &QLineEdit::textEdited, widget_, [this](const QString& text) { typed(text); });
        QObject::connect(&line(), &QLineEdit::selectionChanged, widget_, [this] { tellSelection(); });
        QObject::connect(&line(), &QLineEdit::cursorPositionChanged, widget_, [this] { tellSelection(); });
        host_.watch(*widget_, box);
    }

    bool wide() const override { return true; }

    void wish(int characters, int lines) override {
        if (lines == 0)
            Drawing::wish(characters, 0);
    }

    void refresh(Aspect aspect) override {
        if (aspect == Aspect::Text)
            showText();
        if (aspect == Aspect::Choice)
            showSelection();
        if (aspect == Aspect::State && line().isReadOnly() != box_.locked()) {
            line().setReadOnly(box_.locked());
            setLook(*widget_, "field");
        }
        if (aspect == Aspect::Look) {
            line().setEchoMode(box_.password && !box_.revealed() ? QLineEdit::Password : QLineEdit::Normal);
            line().setPlaceholderText(toQt(box_.placeholder));
            showColors(*widget_, box_, host_.skin());
        }
    }

private:
    QLineEdit& line() { return *static_cast<QLineEdit*>(widget_); }

    void typed(const QString& text) {
        QString kept = text;
        if (!box_.mask.empty()) {
            kept = laidIntoMask(toQt(box_.mask), text);
            const bool atEnd = line().cursorPosition() == text.size();
            const int where = line().cursorPosition();
            if (kept != text) {
                line().setText(kept);
                line().setCursorPosition(atEnd ? static_cast<int>(kept.size()) : where);
            }
        }
        typingAt_ = line().cursorPosition();
        const QPointer<QWidget> field(widget_);
        const TypedMeanwhile meanwhile;
        host_.act([&] { gestures::type(box_, fromQt(kept)); });
        if (field == nullptr)
            return;
        if (host_.form() != nullptr)
            showText();
        typingAt_ = -1;
        if (!meanwhile.text().isEmpty() && host_.form() != nullptr && !line().isReadOnly()) {
            line().insert(meanwhile.text());
            typed(line().text());
        }
    }

    // Leaves the caret where the user has it when nothing differs, or when a change procedure only put the typed text right.
    void showText() {
        const QString text = toQt(box_.shownText());
        if (line().text() == text)
            return;
        telling_ = true;
        line().setText(text);
        telling_ = false;
        if (box_.shownText() != box_.text())
            return; // nothing is selected in a form that only shows
        if (typingAt_ >= 0)
            line().setCursorPosition(std::min(typingAt_, static_cast<int>(text.size())));
        else
            showSelection();
    }
    void showSelection() {
        if (telling_)
            return;
        telling_ = true;
        const int from = unitsOf(line().text(), box_.selectionStart());
        const int to = unitsOf(line().text(), box_.selectionStart() + box_.selectionLength());
        if (to > from)
            line().setSelection(from, to - from);
        else
            line().setCursorPosition(from);
        telling_ = false;
    }
    void tellSelection() {
        if (telling_ || host_.form() == nullptr || toQt(box_.text()) != line().text())
            return;
        telling_ = true;
        const int from = line().hasSelectedText() ? line().selectionStart() : line().cursorPosition();
        const int start = charactersOf(line().text(), from);
        box_.select(start, charactersOf(line().text(), from + line().selectionLength()) - start);
        telling_ = false;
    }

    TextBox& box_;
    int typingAt_ = -1; // the caret while the user's typing is taken over
    bool telling_ = false;
};

class PageDrawing : public Drawing {
public:
    PageDrawing(FormWindow& host, TextBox& box, QWidget* parent) : Drawing(host, box, new QPlainTextEdit(parent)), box_(box) {
        page().setTabChangesFocus(true);
        page().setMinimumSize(160, 72);
        if (box.fixedWidth) { // its lines are what they are
            page().setFont(host.skin().code());
            page().setLineWrapMode(QPlainTextEdit::NoWrap);
        }
        QObject::connect(&page(), &QPlainTextEdit::textChanged, widget_, [this] { typed(); });
        host_.watch(*widget_, box);
        host_.watch(*page().viewport(), box);
    }

    bool wide() const override { return true; }
    bool tall() const override { return true; }

    void refresh(Aspect aspect) override {
        if (aspect == Aspect::Text && page().toPlainText() != toQt(box_.text())) {
            showing_ = true;
            page().setPlainText(toQt(replaced(box_.text(), "\r\n", "\n")));
            showing_ = false;
        }
        if (aspect == Aspect::Choice && !showing_)
            showSelection();
        if (aspect == Aspect::State && page().isReadOnly() != box_.locked()) {
            page().setReadOnly(box_.locked());
            setLook(*widget_, "field");
        }
        if (aspect == Aspect::Look) {
            page().setPlaceholderText(toQt(box_.placeholder));
            showColors(*widget_, box_, host_.skin());
        }
    }

private:
    QPlainTextEdit& page() { return *static_cast<QPlainTextEdit*>(widget_); }

    void typed() {
        if (showing_)
            return;
        QString text = page().toPlainText();
        if (box_.maxLength > 0 && charactersOf(text, text.size()) > box_.maxLength) {
            text.truncate(unitsOf(text, box_.maxLength));
            showing_ = true;
            page().setPlainText(text);
            page().moveCursor(QTextCursor::End);
            showing_ = false;
        }
        host_.act([&] { gestures::type(box_, fromQt(text)); });
    }

    void showSelection() {
        QTextCursor cursor = page().textCursor();
        const QString text = page().toPlainText();
        cursor.setPosition(unitsOf(text, box_.selectionStart()));
        cursor.setPosition(unitsOf(text, box_.selectionStart() + box_.selectionLength()), QTextCursor::KeepAnchor);
        page().setTextCursor(cursor);
    }

    TextBox& box_;
    bool showing_ = false;
};

} // namespace

Drawn drawTextBox(FormWindow& host, TextBox& box, QWidget* parent) {
    if (box.multiline)
        return std::make_unique<PageDrawing>(host, box, parent);
    return std::make_unique<LineDrawing>(host, box, parent);
}

} // namespace merchantry::ui
