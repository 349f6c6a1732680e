#include "ui/label.h"

#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/frame.h"
#include "ui/qt/roles.h"
#include "ui/qt/texts.h"

#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

namespace merchantry::ui {
namespace {

// A text; when it can be clicked, a link that shows its focus.
class TextLabel : public QLabel {
public:
    using QLabel::QLabel;
    std::function<void()> clicked;

    // The text, cut off with dots where it does not fit; the tool tip says it whole.
    void showOnOneLine(const QString& text) {
        whole_ = text;
        setToolTip(text);
        cutOff();
    }

protected:
    void resizeEvent(QResizeEvent* event) override {
        QLabel::resizeEvent(event);
        if (!whole_.isEmpty())
            cutOff();
    }
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (clicked && rect().contains(event->position().toPoint()))
            clicked();
        else
            QLabel::mouseReleaseEvent(event);
    }
    void keyPressEvent(QKeyEvent* event) override {
        if (clicked && event->key() == Qt::Key_Space)
            clicked();
        else
            QLabel::keyPressEvent(event);
    }
    void focusInEvent(QFocusEvent* event) override {
        QLabel::focusInEvent(event);
        update();
    }
    void focusOutEvent(QFocusEvent* event) override {
        QLabel::focusOutEvent(event);
        update();
    }
    void paintEvent(QPaintEvent* event) override {
        QLabel::paintEvent(event);
        if (!hasFocus() || !clicked)
            return;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(palette().color(QPalette::Link), 1.5));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
    }

private:
    void cutOff() { setText(fontMetrics().elidedText(whole_, Qt::ElideRight, width())); }

    QString whole_;
};

constexpr int kLongText = 64; // characters from which a text may take several lines

class LabelDrawing : public Drawing {
public:
    LabelDrawing(FormWindow& host, Label& label, QWidget* parent) : Drawing(host, label, new TextLabel(parent)), label_(label) {
        shown().setTextFormat(Qt::PlainText);
        if (label.oneLine)
            shown().setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        if (!label.click)
            return;
        setLook(*widget_, "link");
        widget_->setCursor(Qt::PointingHandCursor);
        widget_->setFocusPolicy(Qt::StrongFocus);
        shown().clicked = [this] { host_.act([this] { gestures::press(label_); }); };
        host_.watch(*widget_, label);
    }

    void wish(int characters, int lines) override {
        Drawing::wish(characters, lines > 1 ? lines : 0);
        wraps_ = lines > 1;
        if (wraps_)
            shown().setAlignment(Qt::AlignLeft | Qt::AlignTop);
    }

    // What is chosen by a link may be a long text.
    bool wide() const override { return static_cast<bool>(label_.click); }

    void refresh(Aspect aspect) override {
        if (aspect == Aspect::Text)
            showText();
        if (aspect == Aspect::Look)
            showColors();
    }

private:
    TextLabel& shown() { return *static_cast<TextLabel*>(widget_); }

    void showText() {
        QString text = toQt(label_.caption());
        if (label_.alignRight)
            shown().setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        if (label_.oneLine)
            return shown().showOnOneLine(text);
        shown().setWordWrap(wraps_ || text.size() > kLongText || text.contains(QLatin1Char('\n')));
        shown().setText(text);
    }
    void showColors() {
        QString sheet;
        if (label_.foreColor() != Color::None)
            sheet += QStringLiteral("color: %1;").arg(host_.skin().ink(label_.foreColor()).name());
        if (widget_->styleSheet() != sheet)
            widget_->setStyleSheet(sheet);
    }

    Label& label_;
    bool wraps_ = false; // room for several lines was asked for
};

} // namespace

Drawn drawLabel(FormWindow& host, Label& label, QWidget* parent) {
    return std::make_unique<LabelDrawing>(host, label, parent);
}

} // namespace merchantry::ui
