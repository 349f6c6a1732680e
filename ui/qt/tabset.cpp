#include "ui/tabset.h"

#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/frame.h"
#include "ui/qt/roles.h"
#include "ui/qt/tabset.h"
#include "ui/qt/texts.h"

#include <QPainter>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace merchantry::ui {
namespace {

constexpr int kTabHeight = 36;

// Captions in a row, the current one strong and underlined with the accent.
class Tabs : public QTabBar {
public:
    Tabs(FormWindow& host, QWidget* parent) : QTabBar(parent), host_(host) {
        setDrawBase(false);
        setExpanding(false);
        setElideMode(Qt::ElideNone);
        setFocusPolicy(Qt::StrongFocus);
        setMouseTracking(true);
    }

protected:
    QSize tabSizeHint(int index) const override {
        const QFontMetrics strong(host_.skin().strong());
        return {strong.size(Qt::TextShowMnemonic, tabText(index)).width() + 32, kTabHeight};
    }
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        for (int i = 0; i < count(); ++i)
            paintTab(painter, i);
    }

private:
    void paintTab(QPainter& painter, int index) {
        const Tokens& t = host_.skin().tokens();
        const QRect where = tabRect(index);
        const bool current = index == currentIndex();
        const bool hover = where.contains(mapFromGlobal(QCursor::pos())) && underMouse();
        painter.setFont(current ? host_.skin().strong() : host_.skin().text());
        painter.setPen(current || hover ? t.ink : t.dim);
        painter.drawText(where, Qt::AlignCenter | Qt::TextShowMnemonic, tabText(index));
        if (current)
            painter.fillRect(QRect(where.left() + 8, where.bottom() - 2, where.width() - 16, 3), t.accent);
        if (current && hasFocus()) {
            painter.setPen(QPen(t.accent, 1.5));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(QRectF(where).adjusted(6, 5, -6, -7), 5, 5);
        }
    }

    FormWindow& host_;
};

// The stack shows one page and is as big as the biggest, so that turning never moves the window.
class TabSetDrawing : public Drawing, public TurnsPages {
public:
    TabSetDrawing(FormWindow& host, TabSet& tabs, QWidget* parent)
        : Drawing(host, tabs, new QWidget(parent)), tabs_(tabs), bar_(new Tabs(host, widget_)), panel_(new QFrame(widget_)),
          stack_(new QStackedWidget(panel_)) {
        auto* box = new QVBoxLayout(widget_);
        box->setContentsMargins(0, 0, 0, 0);
        box->setSpacing(0);
        box->addWidget(bar_, 0, Qt::AlignLeft);
        box->addWidget(panel_, 1);
        setLook(*panel_, "panel");
        panel_->hide(); // until a page has content
        auto* inside = new QVBoxLayout(panel_);
        inside->setContentsMargins(1, 1, 1, 1);
        inside->addWidget(stack_);
        for (const std::string& caption : tabs.captions()) {
            bar_->addTab(toQt(caption));
            stack_->addWidget(new QWidget(stack_));
        }
        QObject::connect(bar_, &QTabBar::currentChanged, widget_, [this](int page) { turned(page); });
        host_.watch(*bar_, tabs);
    }

    QWidget* focusTarget() const override { return bar_; }
    QWidget* body(int page) override {
        panel_->show();
        return stack_->widget(page);
    }
    bool wide() const override { return true; }
    bool tall() const override { return !panel_->isHidden(); }

    void refresh(Aspect aspect) override {
        if (aspect == Aspect::Choice)
            showPage();
    }
    void restyle() override { bar_->update(); }

    int pages() const override { return stack_->count(); }
    void turnTo(int page) override {
        const QSignalBlocker quiet(bar_);
        bar_->setCurrentIndex(page);
        stack_->setCurrentIndex(page);
    }
    void turnBack() override { turnTo(tabs_.current()); }

private:
    void turned(int page) {
        host_.act([&] { gestures::turn(tabs_, page); });
        if (host_.form() != nullptr)
            showPage();
    }
    void showPage() {
        // A page that goes would hand the focus inside it to a neighbour; the bar takes it until the screen says otherwise.
        QWidget* const holder = stack_->currentWidget() == nullptr ? nullptr : host_.focusWidget();
        if (holder != nullptr && stack_->currentIndex() != tabs_.current() && stack_->isAncestorOf(holder))
            host_.setFocus();
        turnTo(tabs_.current());
    }

    TabSet& tabs_;
    Tabs* bar_;
    QFrame* panel_;
    QStackedWidget* stack_;
};

} // namespace

Drawn drawTabSet(FormWindow& host, TabSet& tabs, QWidget* parent) {
    return std::make_unique<TabSetDrawing>(host, tabs, parent);
}

} // namespace merchantry::ui
