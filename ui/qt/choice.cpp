#include "ui/choice.h"

#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/roles.h"
#include "ui/qt/texts.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QPainter>
#include <QRadioButton>

#include <algorithm>
#include <functional>
#include <vector>

namespace merchantry::ui {
namespace {

constexpr int kBox = 16;
constexpr int kGap = 8;
constexpr int kAround = 4; // room for the focus ring

// The size and the painting that check boxes and options share; `mark` draws the box.
template <class Base> class ChoiceWidget : public Base {
public:
    ChoiceWidget(FormWindow& host, QWidget* parent) : Base(parent), host_(host) {
        this->setAttribute(Qt::WA_Hover);
        this->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    }
    QSize sizeHint() const override {
        const QSize text = this->fontMetrics().size(Qt::TextShowMnemonic, this->text());
        return {kAround + kBox + (this->text().isEmpty() ? 0 : kGap + text.width()) + 2 * kAround, std::max(text.height() + 8, kBox + 8)};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& where) const override { return this->rect().contains(where); }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Tokens& t = host_.skin().tokens();
        const QRect box(kAround, (this->height() - kBox) / 2, kBox, kBox);
        mark(painter, box, host_.skin());
        painter.setPen(this->isEnabled() ? t.ink : t.dim);
        painter.setFont(this->font());
        const QRect words = this->rect().adjusted(kAround + kBox + kGap, 0, 0, 0);
        painter.drawText(words, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, this->text());
        if (!this->hasFocus())
            return;
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(t.accent, 1.5));
        painter.drawRoundedRect(QRectF(this->rect()).adjusted(0.75, 0.75, -0.75, -0.75), 5, 5);
    }

    virtual void mark(QPainter& painter, const QRect& box, const Skin& skin) = 0;

private:
    FormWindow& host_;
};

class TickWidget : public ChoiceWidget<QCheckBox> {
    using ChoiceWidget::ChoiceWidget;
    void mark(QPainter& painter, const QRect& box, const Skin& skin) override {
        skin.drawTick(painter, box, isChecked(), isEnabled(), underMouse());
    }
};

class OptionWidget : public ChoiceWidget<QRadioButton> {
public:
    using ChoiceWidget::ChoiceWidget;
    std::function<void(int step)> arrow;

private:
    // The arrows choose the neighbour of the group.
    void keyPressEvent(QKeyEvent* event) override {
        const int key = event->key();
        if (key == Qt::Key_Up || key == Qt::Key_Left)
            arrow(-1);
        else if (key == Qt::Key_Down || key == Qt::Key_Right)
            arrow(1);
        else
            QRadioButton::keyPressEvent(event);
    }
    void mark(QPainter& painter, const QRect& box, const Skin& skin) override {
        const Tokens& t = skin.tokens();
        const QColor on = isEnabled() ? t.accent : t.dim;
        painter.setBrush(isEnabled() ? t.panel : t.head);
        painter.setPen(QPen(isChecked() || (underMouse() && isEnabled()) ? on : t.strongLine, isChecked() ? 1.5 : 1));
        painter.drawEllipse(QRectF(box).adjusted(0.75, 0.75, -0.75, -0.75));
        if (!isChecked())
            return;
        painter.setPen(Qt::NoPen);
        painter.setBrush(on);
        painter.drawEllipse(QRectF(box).adjusted(4.25, 4.25, -4.25, -4.25));
    }
};

// The model's value is what the widget shows once the user's click has run its course.
template <class C, class W> class ChoiceDrawing : public Drawing {
public:
    ChoiceDrawing(FormWindow& host, C& choice, QWidget* parent, std::function<void(C&)> click)
        : Drawing(host, choice, new W(host, parent)), choice_(choice) {
        shown().setAutoExclusive(false);
        QObject::connect(&shown(), &QAbstractButton::clicked, widget_, [this, click] {
            if (host_.entered(choice_))
                host_.act([&] { click(choice_); });
            if (host_.form() != nullptr)
                shown().setChecked(choice_.value());
        });
        host_.watch(*widget_, choice);
    }

    void refresh(Aspect aspect) override {
        if (aspect == Aspect::Text)
            shown().setText(toQt(choice_.caption()));
        if (aspect == Aspect::Choice)
            shown().setChecked(choice_.value());
    }

private:
    QAbstractButton& shown() { return *static_cast<QAbstractButton*>(widget_); }
    C& choice_;
};

// The next option of the group that can be used, round about.
OptionButton& neighbour(OptionButton& option, int step) {
    std::vector<OptionButton*> group;
    for (Control* control : option.form().tabOrder())
        if (auto* other = dynamic_cast<OptionButton*>(control);
            other != nullptr && other->container() == option.container() && other->group == option.group && other->obstacle().empty())
            group.push_back(other);
    const auto here = std::find(group.begin(), group.end(), &option);
    const auto count = static_cast<std::ptrdiff_t>(group.size());
    return here == group.end() ? option : *group[static_cast<std::size_t>((here - group.begin() + step + count) % count)];
}

} // namespace

Drawn drawCheckBox(FormWindow& host, CheckBox& box, QWidget* parent) {
    return std::make_unique<ChoiceDrawing<CheckBox, TickWidget>>(host, box, parent, [](CheckBox& c) { gestures::check(c, !c.value()); });
}

Drawn drawOption(FormWindow& host, OptionButton& option, QWidget* parent) {
    auto drawing =
        std::make_unique<ChoiceDrawing<OptionButton, OptionWidget>>(host, option, parent, [](OptionButton& o) { gestures::choose(o); });
    static_cast<OptionWidget*>(drawing->widget())->arrow = [&host, &option](int step) {
        host.act([&] { gestures::choose(neighbour(option, step)); });
    };
    return drawing;
}

} // namespace merchantry::ui
