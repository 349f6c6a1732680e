#pragma once

#include <QHeaderView>
#include <QStyledItemDelegate>

namespace merchantry::ui {

class FormWindow;
class Grid;

// Paints a grid's cells straight from the grid, chips, ticks and the current row included; no sheet comes between.
class GridCell : public QStyledItemDelegate {
public:
    GridCell(FormWindow& host, const Grid& grid, QObject* parent) : QStyledItemDelegate(parent), host_(host), grid_(grid) {}
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paintCell(QPainter& painter, const QStyleOptionViewItem& option, int row, int column) const;
    void paintTick(QPainter& painter, const QRect& where, const std::string& text) const;
    void paintBar(QPainter& painter, const QRect& where, int row, int column) const;
    void paintText(QPainter& painter, const QRect& where, int row, int column) const;

    FormWindow& host_;
    const Grid& grid_;
};

// The heading row: dim and strong on the head colour, aligned as the column below.
class GridHeading : public QHeaderView {
public:
    GridHeading(FormWindow& host, const Grid& grid, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
    void paintSection(QPainter* painter, const QRect& rect, int section) const override;
    QSize sizeHint() const override;

private:
    void paintArrow(QPainter& painter, const QRect& where, bool down) const;

    FormWindow& host_;
    const Grid& grid_;
};

bool standsRight(const Grid& grid, int column);
bool isOn(const std::string& text);
constexpr int kCellMargin = 10;

} // namespace merchantry::ui
