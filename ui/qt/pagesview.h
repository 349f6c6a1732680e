#pragma once

#include "ui/reportview.h"

#include <QAbstractScrollArea>

#include <list>
#include <optional>

namespace merchantry::ui {

class FormWindow;

// The pages of a report below each other on a grey desk. A page is made when it comes into sight, and the last few are kept. What the user
// does here (scrolling, zooming, selecting) goes to the view; what the view says is followed.
class PagesView : public QAbstractScrollArea {
public:
    PagesView(FormWindow& host, ReportView& view, QWidget* parent);

    // More pages, or others.
    void pagesChanged();
    void turned();
    void zoomed();
    void selectionChanged();
    // The view is about to go.
    void forget() { view_ = nullptr; }

    // Pixels of the widget for one twip of a page.
    double scale() const;
    // Where a page stands, from 0, in pixels of the viewport as scrolled now.
    QRectF pageRect(int page) const;
    // The text of a page nearest to the point of the viewport; nothing without pages.
    std::optional<PageSpot> spotAt(QPointF point) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    struct Kept {
        int number;
        Page page;
    };
    const Page& page(int number) const;
    Page made(int number) const;
    double pitch() const; // from the top of one page to the top of the next
    void measure();
    void showSpot(PageSpot spot);
    void noticePage();
    void act(const std::function<void()>& what);
    void paintSelection(QPainter& painter, int number);

    FormWindow& host_;
    ReportView* view_;
    mutable std::list<Kept> kept_; // the newest first
    int pageWidth_ = 12240;        // twips; those of the first page
    int pageHeight_ = 15840;
    std::optional<PageSpot> pressed_;
    const Pages* shown_ = nullptr; // those of kept_
    bool complete_ = false;
    bool following_ = false; // the view moves the scroll bars
};

} // namespace merchantry::ui
