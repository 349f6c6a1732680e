#include "ui/button.h"

#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/frame.h"
#include "ui/qt/roles.h"
#include "ui/qt/texts.h"

#include <QPushButton>
#include <QToolButton>

namespace merchantry::ui {
namespace {

class ButtonDrawing : public Drawing {
public:
    ButtonDrawing(FormWindow& host, Button& button, QWidget* parent) : Drawing(host, button, new QPushButton(parent)), button_(button) {
        shown().setAutoDefault(false);
        shown().setFixedHeight(button.isQuiet ? measure::kQuiet : measure::kField);
        QSizePolicy room(QSizePolicy::Minimum, QSizePolicy::Fixed);
        room.setRetainSizeWhenHidden(button.isQuiet);
        shown().setSizePolicy(room);
        QObject::connect(&shown(), &QPushButton::clicked, widget_, [this] {
            if (host_.entered(button_))
                host_.act([this] { gestures::press(button_); });
        });
        if (button.held) {
            QObject::connect(&shown(), &QPushButton::pressed, widget_, [this] { host_.act([this] { gestures::hold(button_, true); }); });
            QObject::connect(&shown(), &QPushButton::released, widget_, [this] { host_.act([this] { gestures::hold(button_, false); }); });
        }
        host_.watch(*widget_, button);
    }

    void refresh(Aspect aspect) override {
        if (aspect == Aspect::Text)
            shown().setText(toQt(button_.caption()));
        if (aspect == Aspect::Look || aspect == Aspect::State)
            showKind();
    }

private:
    QPushButton& shown() { return *static_cast<QPushButton*>(widget_); }

    void showKind() {
        const char* const kind = button_.isQuiet ? "quiet" : button_.isDanger ? "danger" : button_.isDefault ? "default" : "plain";
        if (widget_->property("kind").toString() == QLatin1String(kind))
            return;
        widget_->setProperty("kind", kind);
        setLook(*widget_, "button");
    }

    Button& button_;
};

class ImageDrawing : public Drawing {
public:
    ImageDrawing(FormWindow& host, Image& image, QWidget* parent) : Drawing(host, image, new QToolButton(parent)), image_(image) {
        setLook(*widget_, "image");
        shown().setFixedSize(measure::kField, measure::kField);
        shown().setIconSize(QSize(measure::kIcon, measure::kIcon));
        shown().setFocusPolicy(image.takesFocus() ? Qt::StrongFocus : Qt::NoFocus);
        shown().setAccessibleName(toQt(image.toolTip()));
        QObject::connect(&shown(), &QToolButton::clicked, widget_, [this] { host_.act([this] { gestures::press(image_); }); });
        host_.watch(*widget_, image);
    }

    void refresh(Aspect aspect) override {
        if (aspect == Aspect::Look)
            shown().setIcon(host_.skin().icon(toQt(image_.icon), host_.skin().tokens().ink));
    }

private:
    QToolButton& shown() { return *static_cast<QToolButton*>(widget_); }
    Image& image_;
};

} // namespace

Drawn drawButton(FormWindow& host, Button& button, QWidget* parent) {
    return std::make_unique<ButtonDrawing>(host, button, parent);
}

Drawn drawImage(FormWindow& host, Image& image, QWidget* parent) {
    return std::make_unique<ImageDrawing>(host, image, parent);
}

} // namespace merchantry::ui
