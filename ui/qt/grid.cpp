#include "ui/grid.h"

#include "ui/qt/formwindow.h"
#include "ui/qt/frame.h"
#include "ui/qt/gridview.h"
#include "ui/qt/roles.h"
#include "ui/qt/texts.h"

#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QTimer>
#include <QVBoxLayout>

namespace merchantry::ui {
namespace {

constexpr int kOwnRows = 8;
constexpr int kFewestRows = 1; // so that the buttons below stay on a screen of 800 by 600
constexpr int kWidestOwn = 920;
constexpr int kNarrowestWide = 360; // a list that asks for less is never narrower than it asks
constexpr int kAround = 34 + 28;    // heading and status line

class GridFrame : public QFrame {
public:
    using QFrame::QFrame;
    QSize hint;
    QSize sizeHint() const override { return hint.expandedTo(minimumSizeHint()); }
};

// The table in its frame with the status line below. Many changes of rows within one procedure are taken over at once, after it.
class GridDrawing : public Drawing {
public:
    GridDrawing(FormWindow& host, Grid& grid, QWidget* parent)
        : Drawing(host, grid, new GridFrame(parent)), grid_(grid), view_(new GridView(host, grid, widget_)), status_(new QLabel(widget_)) {
        setLook(*widget_, "panel");
        auto* box = new QVBoxLayout(widget_);
        box->setContentsMargins(1, 1, 1, 1);
        box->setSpacing(0);
        box->addWidget(view_, 1);
        box->addWidget(status_);
        setLook(*status_, "gridstatus");
        status_->setTextFormat(Qt::PlainText);
        status_->setAttribute(Qt::WA_StyledBackground);
        status_->setIndent(0);
        status_->setContentsMargins(10, 4, 10, 5);
        view_->onFocus = [this](bool on) {
            widget_->setProperty("current", on);
            setLook(*widget_, "panel");
        };
        widget_->setMinimumHeight(kAround + kFewestRows * measure::kRow);
    }

    QWidget* focusTarget() const override { return view_->editor() != nullptr ? view_->editor() : view_; }
    bool wide() const override { return true; }
    bool tall() const override { return true; }
    bool finishEdit() override { return view_->finishEdit(); }

    void wish(int characters, int lines) override {
        characters_ = characters;
        lines_ = lines;
        showWish();
    }

    void refresh(Aspect aspect) override {
        switch (aspect) {
        case Aspect::Rows:
            reloadLater();
            break;
        case Aspect::Cells:
        case Aspect::Choice:
            if (reloading_)
                break;
            view_->follow();
            break;
        case Aspect::Look:
            showStatus();
            view_->viewport()->update();
            view_->horizontalHeader()->viewport()->update();
            break;
        default:
            break;
        }
    }

    void restyle() override { view_->restyle(); }
    void forget() override { view_->forget(); }

private:
    void reloadLater() {
        if (std::exchange(reloading_, true))
            return;
        QMetaObject::invokeMethod(
            view_, [this] { reload(); }, Qt::QueuedConnection);
    }
    void reload() {
        reloading_ = false;
        if (host_.form() == nullptr)
            return;
        view_->reload();
        showStatus();
        showWish();
    }
    void showWish() {
        const int rows = lines_ > 0 ? lines_ : kOwnRows;
        const int width = characters_ > 0 ? characters_ * view_->fontMetrics().averageCharWidth() + 24 : view_->wishedWidth() + 16;
        static_cast<GridFrame*>(widget_)->hint = {std::clamp(width, 160, kWidestOwn), kAround + rows * measure::kRow};
        widget_->setMinimumWidth(std::min(std::max(width, 120), kNarrowestWide));
        widget_->updateGeometry();
    }
    void showStatus() {
        const int rows = grid_.dataRows();
        const QString counted = QLocale(QLocale::English).toString(rows) + (rows == 1 ? QStringLiteral(" row") : QStringLiteral(" rows"));
        status_->setText(grid_.statusText.empty() ? counted : toQt(grid_.statusText));
    }

    Grid& grid_;
    GridView* view_;
    QLabel* status_;
    int characters_ = 0;
    int lines_ = 0;
    bool reloading_ = false;
};

} // namespace

Drawn drawGrid(FormWindow& host, Grid& grid, QWidget* parent) {
    return std::make_unique<GridDrawing>(host, grid, parent);
}

} // namespace merchantry::ui
