#include "ui/qt/pagesview.h"

#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/pagepainter.h"
#include "ui/qt/skin.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace merchantry::ui {
namespace {

constexpr int kAround = 20;  // pixels of desk around a page
constexpr int kBetween = 16; // between two pages
constexpr std::size_t kKept = 12;
constexpr int kWheelStep = 120; // of a wheel's angle

} // namespace

PagesView::PagesView(FormWindow& host, ReportView& view, QWidget* parent) : QAbstractScrollArea(parent), host_(host), view_(&view) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setCursor(Qt::IBeamCursor);
    setAccessibleName(QStringLiteral("Pages of the report"));
}

void PagesView::act(const std::function<void()>& what) {
    if (view_ != nullptr && host_.form() != nullptr)
        host_.act(what);
}

// What keeps a page from being made stands on it: nothing may be thrown while a window is painted.
Page PagesView::made(int number) const {
    try {
        return view_->pages()->page(number);
    } catch (const std::exception& failure) {
        PageItem words;
        words.x = words.y = words.height = 720;
        words.width = pageWidth_ - 2 * words.x;
        words.text = std::string("This page cannot be shown. ") + failure.what();
        return {pageWidth_, pageHeight_, {words}};
    }
}

const Page& PagesView::page(int number) const {
    for (auto kept = kept_.begin(); kept != kept_.end(); ++kept)
        if (kept->number == number) {
            kept_.splice(kept_.begin(), kept_, kept);
            return kept_.front().page;
        }
    kept_.push_front({number, made(number)});
    if (kept_.size() > kKept)
        kept_.pop_back();
    return kept_.front().page;
}

double PagesView::scale() const {
    const double trueSize = logicalDpiX() / 1440.0;
    const double wide = std::max(200, viewport()->width() - 2 * kAround) / static_cast<double>(pageWidth_);
    if (view_ == nullptr || view_->fit() == ReportView::Fit::Width)
        return wide;
    if (view_->fit() == ReportView::Fit::Page)
        return std::min(wide, std::max(200, viewport()->height() - 2 * kAround) / static_cast<double>(pageHeight_));
    return trueSize * view_->percent() / 100;
}

double PagesView::pitch() const {
    return pageHeight_ * scale() + kBetween;
}

QRectF PagesView::pageRect(int page) const {
    const double width = pageWidth_ * scale();
    const double room = viewport()->width();
    const double left = width + 2 * kAround <= room ? (room - width) / 2 : kAround - horizontalScrollBar()->value();
    return {left, kAround + page * pitch() - verticalScrollBar()->value(), width, pageHeight_ * scale()};
}

void PagesView::measure() {
    const int pages = view_ == nullptr ? 0 : view_->pageCount();
    if (view_ != nullptr)
        view_->shownPercent = static_cast<int>(std::lround(scale() * 1440 / logicalDpiX() * 100));
    const double height = pages == 0 ? 0 : 2 * kAround + pages * pitch() - kBetween;
    const double width = pages == 0 ? 0 : pageWidth_ * scale() + 2 * kAround;
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setSingleStep(40);
    verticalScrollBar()->setRange(0, std::max(0, static_cast<int>(std::ceil(height)) - viewport()->height()));
    horizontalScrollBar()->setPageStep(viewport()->width());
    horizontalScrollBar()->setSingleStep(40);
    // A page that is fitted to the width needs no bar, whatever rounding says.
    const bool fitted = view_ == nullptr || view_->fit() != ReportView::Fit::Percent;
    horizontalScrollBar()->setRange(0, fitted ? 0 : std::max(0, static_cast<int>(std::ceil(width)) - viewport()->width()));
}

void PagesView::pagesChanged() {
    if (view_ == nullptr)
        return;
    // Other pages; or the same, which know how many they are now.
    if (view_->pages() != shown_ || (shown_ != nullptr && shown_->complete() != complete_))
        kept_.clear();
    shown_ = view_->pages();
    complete_ = shown_ != nullptr && shown_->complete();
    if (view_->pageCount() > 0) {
        pageWidth_ = page(0).width;
        pageHeight_ = page(0).height;
    }
    measure();
    viewport()->update();
}

void PagesView::turned() {
    if (view_ == nullptr)
        return;
    following_ = true;
    measure();
    verticalScrollBar()->setValue(static_cast<int>(std::lround((std::max(1, view_->page()) - 1) * pitch())));
    following_ = false;
    viewport()->update();
}

void PagesView::zoomed() {
    turned();
}

void PagesView::selectionChanged() {
    if (view_ == nullptr)
        return;
    // What is selected with the mouse is in sight.
    if (view_->selection() && !pressed_)
        showSpot(view_->selection()->to);
    viewport()->update();
}

void PagesView::showSpot(PageSpot spot) {
    const Page& shown = page(spot.page);
    const auto texts = readingOrder(shown);
    if (spot.text < 0 || spot.text >= static_cast<int>(texts.size()))
        return;
    const PageItem& item = *texts[static_cast<std::size_t>(spot.text)];
    const QRectF around = pageRect(spot.page);
    const QRectF where(around.left() + item.x * scale(), around.top() + item.y * scale(), item.width * scale(), item.height * scale());
    following_ = true;
    if (where.top() < kAround || where.bottom() > viewport()->height() - kAround)
        verticalScrollBar()->setValue(verticalScrollBar()->value() + static_cast<int>(where.center().y()) - viewport()->height() / 2);
    if (where.left() < 0 || where.right() > viewport()->width())
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() + static_cast<int>(where.center().x()) - viewport()->width() / 2);
    following_ = false;
}

// The page looked at is the one in the middle of the window.
void PagesView::noticePage() {
    if (view_ == nullptr || following_ || view_->pageCount() == 0)
        return;
    const double middle = verticalScrollBar()->value() + viewport()->height() / 2.0 - kAround;
    const int number = std::clamp(static_cast<int>(middle / pitch()), 0, view_->pageCount() - 1) + 1;
    if (number != view_->page())
        act([&] { view_->scrolledTo(number); });
}

void PagesView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    const Skin& skin = host_.skin();
    painter.fillRect(event->rect(), skin.dark() ? QColor(0x12, 0x15, 0x19) : QColor(0xD9, 0xDD, 0xE2));
    if (view_ == nullptr || view_->pageCount() == 0 || host_.form() == nullptr)
        return;
    const int first = std::max(0, static_cast<int>((verticalScrollBar()->value() - kAround) / pitch()));
    for (int number = first; number < view_->pageCount(); ++number) {
        const QRectF where = pageRect(number);
        if (where.top() > viewport()->height())
            break;
        if (!where.intersects(event->rect()))
            continue;
        for (int i = 3; i > 0; --i)
            painter.fillRect(where.translated(0, 1).adjusted(-i, -i, i, i), QColor(0, 0, 0, 14));
        painter.fillRect(where, Qt::white);
        painter.save();
        painter.setClipRect(where);
        painter.translate(where.topLeft());
        painter.scale(scale(), scale());
        paintSelection(painter, number);
        paintPage(painter, page(number));
        painter.restore();
    }
    if (hasFocus()) {
        painter.setPen(QPen(skin.tokens().accent, 2));
        painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
    }
}

void PagesView::paintSelection(QPainter& painter, int number) {
    const auto& selection = view_->selection();
    if (!selection || number < selection->from.page || number > selection->to.page)
        return;
    const auto texts = readingOrder(page(number));
    const int first = number == selection->from.page ? selection->from.text : 0;
    const int last = number == selection->to.page ? selection->to.text : static_cast<int>(texts.size()) - 1;
    const TextMeasure& measure = host_.desk().textMeasure();
    for (int i = first; i <= last && i < static_cast<int>(texts.size()); ++i) {
        const PageItem& item = *texts[static_cast<std::size_t>(i)];
        const int width = std::min(item.width, measure.width(item.text, item.halfPoints, item.bold));
        int x = item.x;
        if (item.align == PageAlign::Right)
            x += item.width - width;
        else if (item.align == PageAlign::Center)
            x += (item.width - width) / 2;
        painter.fillRect(QRectF(x - 30, item.y, width + 60, item.height), QColor(0xFF, 0xD8, 0x66));
    }
}

void PagesView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    if (view_ != nullptr && view_->fit() != ReportView::Fit::Percent)
        turned(); // the same page stays on top
    measure();
}

void PagesView::scrollContentsBy(int, int) {
    viewport()->update();
    noticePage();
}

std::optional<PageSpot> PagesView::spotAt(QPointF point) const {
    if (view_ == nullptr || view_->pageCount() == 0)
        return std::nullopt;
    const double down = point.y() + verticalScrollBar()->value() - kAround;
    const int number = std::clamp(static_cast<int>(std::floor(down / pitch())), 0, view_->pageCount() - 1);
    const auto texts = readingOrder(page(number));
    if (texts.empty())
        return std::nullopt;
    const QPointF at = (point - pageRect(number).topLeft()) / scale();
    const auto away = [&](const PageItem& item) {
        const double dx = std::max({item.x - at.x(), at.x() - item.x - item.width, 0.0});
        const double dy = std::max({item.y - at.y(), at.y() - item.y - item.height, 0.0});
        return dy * 8 + dx; // the line counts first
    };
    const auto nearest =
        std::min_element(texts.begin(), texts.end(), [&](const PageItem* a, const PageItem* b) { return away(*a) < away(*b); });
    return PageSpot{number, static_cast<int>(nearest - texts.begin())};
}

void PagesView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    pressed_ = spotAt(event->position());
    act([&] {
        gestures::enter(*view_);
        if (event->modifiers() & Qt::ShiftModifier && view_->selection() && pressed_)
            view_->select(view_->selection()->from, *pressed_);
        else
            view_->clearSelection();
    });
}

void PagesView::mouseMoveEvent(QMouseEvent* event) {
    const auto spot = pressed_ ? spotAt(event->position()) : std::nullopt;
    if (!spot)
        return;
    if (event->position().y() < 0 || event->position().y() > viewport()->height())
        verticalScrollBar()->setValue(verticalScrollBar()->value() + (event->position().y() < 0 ? -30 : 30));
    act([&] { view_->select(*pressed_, *spot); });
}

void PagesView::mouseReleaseEvent(QMouseEvent*) {
    pressed_.reset();
}

void PagesView::wheelEvent(QWheelEvent* event) {
    if (!(event->modifiers() & Qt::ControlModifier))
        return QAbstractScrollArea::wheelEvent(event);
    const int steps = event->angleDelta().y() / kWheelStep;
    act([&] { view_->zoomBy(steps); });
}

void PagesView::keyPressEvent(QKeyEvent* event) {
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    const bool held = event->modifiers() & Qt::ControlModifier;
    QScrollBar& bar = *verticalScrollBar();
    const int key = event->key();
    if (held && key == Qt::Key_C) {
        act([&] { view_->copy(); });
    } else if (held && key == Qt::Key_A) {
        act([&] { view_->selectPage(); });
    } else if (shift && (key == Qt::Key_Left || key == Qt::Key_Right)) {
        act([&] { view_->extend(key == Qt::Key_Left ? -1 : 1); });
    } else if (key == Qt::Key_Up || key == Qt::Key_Down) {
        bar.setValue(bar.value() + (key == Qt::Key_Up ? -1 : 1) * bar.singleStep());
    } else if (key == Qt::Key_Left || key == Qt::Key_Right) {
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() +
                                        (key == Qt::Key_Left ? -1 : 1) * horizontalScrollBar()->singleStep());
    } else if (key == Qt::Key_Space) {
        bar.setValue(bar.value() + (shift ? -1 : 1) * (bar.pageStep() - 40));
    } else if (key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
        act([&] { view_->turnTo(view_->page() + (key == Qt::Key_PageUp ? -1 : 1)); });
    } else if (key == Qt::Key_Home || key == Qt::Key_End) {
        act([&] { view_->turnTo(key == Qt::Key_Home ? 1 : view_->pageCount()); });
    } else {
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void PagesView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void PagesView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

} // namespace merchantry::ui
