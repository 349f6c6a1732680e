#include "ui/qt/frame.h"

#include "ui/frame.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/roles.h"
#include "ui/qt/texts.h"

#include <QLabel>
#include <QProgressBar>
#include <QStyle>
#include <QVBoxLayout>

namespace merchantry::ui {
namespace {

// A heading takes no focus: the sign of its mnemonic would only stand in it.
QString withoutMnemonic(QString caption) {
    return caption.remove(QLatin1Char('&'));
}

class FrameDrawing : public Drawing {
public:
    FrameDrawing(FormWindow& host, Frame& frame, QWidget* parent) : Drawing(host, frame, new GroupPanel(parent)), frame_(frame) {}
    QWidget* body(int) override { return static_cast<GroupPanel*>(widget_)->body(); }
    bool wide() const override { return true; }
    void refresh(Aspect aspect) override {
        if (aspect == Aspect::Text)
            static_cast<GroupPanel*>(widget_)->setHeading(withoutMnemonic(toQt(frame_.caption())));
    }

private:
    Frame& frame_;
};

class ProgressDrawing : public Drawing {
public:
    ProgressDrawing(FormWindow& host, ProgressBar& bar, QWidget* parent) : Drawing(host, bar, new QProgressBar(parent)), bar_(bar) {
        shown().setTextVisible(false);
    }
    bool wide() const override { return true; }
    void refresh(Aspect aspect) override {
        if (aspect != Aspect::Text)
            return;
        shown().setRange(0, bar_.most());
        shown().setValue(bar_.value());
    }

private:
    QProgressBar& shown() { return *static_cast<QProgressBar*>(widget_); }
    ProgressBar& bar_;
};

class NoDrawing : public Drawing {
public:
    NoDrawing(FormWindow& host, Control& control, QWidget* parent) : Drawing(host, control, new QWidget(parent)) { widget_->hide(); }
    void refresh(Aspect) override { widget_->hide(); }
};

} // namespace

void setLook(QWidget& widget, const char* look) {
    widget.setProperty("look", look);
    widget.style()->unpolish(&widget);
    widget.style()->polish(&widget);
}

GroupPanel::GroupPanel(QWidget* parent) : QWidget(parent), heading_(new QLabel(this)), body_(new QFrame(this)) {
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(measure::kRelated);
    box->addWidget(heading_);
    box->addWidget(body_, 1);
    heading_->setTextFormat(Qt::PlainText);
    setLook(*heading_, "heading");
    heading_->hide();
}

void GroupPanel::setHeading(const QString& heading) {
    heading_->setText(heading);
    heading_->setVisible(!heading.isEmpty());
}

void GroupPanel::setBare(bool bare) {
    setLook(*body_, bare ? "bare" : "group");
}

Drawn drawFrame(FormWindow& host, Frame& frame, QWidget* parent) {
    return std::make_unique<FrameDrawing>(host, frame, parent);
}

Drawn drawProgress(FormWindow& host, ProgressBar& bar, QWidget* parent) {
    return std::make_unique<ProgressDrawing>(host, bar, parent);
}

Drawn drawNothing(FormWindow& host, Control& control, QWidget* parent) {
    return std::make_unique<NoDrawing>(host, control, parent);
}

} // namespace merchantry::ui
