#include "ui/qt/gridcell.h"

#include "base/textorder.h"
#include "ui/grid.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/texts.h"

#include <QPainter>
#include <QPainterPath>
#include <QTableView>

#include <algorithm>

namespace merchantry::ui {
namespace {

constexpr int kTick = 16;
constexpr int kBarHeight = 8;

QRect tickIn(const QRect& cell) {
    QRect box(0, 0, kTick, kTick);
    box.moveCenter(cell.center());
    return box;
}

// Figures in columns of digits, but not the words of a text column.
bool isFigures(const Grid& grid, int column) {
    const GridColumn& shape = grid.column(column);
    return standsRight(grid, column) || shape.format == GridColumn::Format::Date;
}

} // namespace

bool standsRight(const Grid& grid, int column) {
    const GridColumn& shape = grid.column(column);
    return shape.alignRight || shape.format == GridColumn::Format::Number || shape.format == GridColumn::Format::Currency;
}

bool isOn(const std::string& text) {
    return text == "1" || text == "-1" || sameText(text, "True") || sameText(text, "Yes");
}

// Colours and texts may come from a screen's procedure or a source that fails.
void GridCell::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    painter->save();
    host_.read([&] {
        if (index.row() < grid_.dataRows() && index.column() < grid_.columnCount())
            paintCell(*painter, option, index.row() + 1, index.column());
    });
    painter->restore();
}

void GridCell::paintCell(QPainter& painter, const QStyleOptionViewItem& option, int row, int column) const {
    const Tokens& t = host_.skin().tokens();
    const bool selected = row == grid_.row() || (row >= grid_.firstSelected() && row <= grid_.lastSelected() && grid_.selected());
    painter.fillRect(option.rect, selected ? t.soft : row % 2 == 0 ? t.alternate : t.panel);
    painter.setPen(t.line);
    painter.drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    painter.setRenderHint(QPainter::Antialiasing);
    if (const QColor chip = host_.skin().ground(grid_.cellColor(row, column)); chip.isValid()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(chip);
        painter.drawRoundedRect(QRectF(option.rect).adjusted(3, 3.5, -3, -4.5), 6, 6);
    }
    const GridColumn& shape = grid_.column(column);
    if (shape.editor == GridColumn::Editor::Check || shape.format == GridColumn::Format::Flag)
        paintTick(painter, option.rect, grid_.text(row, column));
    else if (shape.format == GridColumn::Format::Bar)
        paintBar(painter, option.rect.adjusted(kCellMargin, 0, -kCellMargin, -1), row, column);
    else
        paintText(painter, option.rect.adjusted(kCellMargin, 0, -kCellMargin, -1), row, column);
    const auto* view = dynamic_cast<const QTableView*>(option.widget);
    if (view != nullptr && view->hasFocus() && row == grid_.row() && column == grid_.col()) {
        painter.setPen(QPen(t.accent, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(option.rect).adjusted(1.5, 1.5, -1.5, -2.5), 4, 4);
    }
}

// A cell without a text has nothing to tick.
void GridCell::paintTick(QPainter& painter, const QRect& where, const std::string& text) const {
    if (!text.empty())
        host_.skin().drawTick(painter, tickIn(where), isOn(text), true, false);
}

void GridCell::paintBar(QPainter& painter, const QRect& where, int row, int column) const {
    if (!grid_.barOf || grid_.text(row, column).empty())
        return;
    const Tokens& t = host_.skin().tokens();
    const GridBar bar = grid_.barOf(row, column);
    QRectF whole(where.left(), 0, where.width(), kBarHeight);
    whole.moveCenter(QRectF(where).center());
    QPainterPath edge;
    edge.addRoundedRect(whole, kBarHeight / 2.0, kBarHeight / 2.0);
    painter.setClipPath(edge, Qt::IntersectClip);
    painter.fillRect(whole, t.line);
    const double done = std::clamp(bar.done, 0.0, 1.0) * whole.width();
    const double dropped = std::clamp(bar.dropped, 0.0, 1.0) * whole.width();
    painter.fillRect(QRectF(whole.left(), whole.top(), done, whole.height()), t.fine);
    painter.fillRect(QRectF(whole.left() + done, whole.top(), dropped, whole.height()), t.danger);
    painter.setClipping(false);
}

void GridCell::paintText(QPainter& painter, const QRect& where, int row, int column) const {
    QString text = toQt(grid_.text(row, column));
    if (const qsizetype end = text.indexOf(QLatin1Char('\n')); end >= 0)
        text = text.left(end).trimmed() + QStringLiteral(" …");
    const bool right = standsRight(grid_, column);
    painter.setFont(grid_.column(column).fixedWidth ? host_.skin().code() : host_.skin().text());
    painter.setPen(host_.skin().tokens().ink);
    const QFontMetrics metrics = painter.fontMetrics();
    const Qt::Alignment side = grid_.column(column).centred ? Qt::AlignHCenter : right ? Qt::AlignRight : Qt::AlignLeft;
    if (isFigures(grid_, column) && Skin::figuresWidth(metrics, text) <= where.width())
        Skin::drawFigures(painter, where, text, side);
    else
        painter.drawText(where, side | Qt::AlignVCenter | Qt::TextSingleLine, metrics.elidedText(text, Qt::ElideRight, where.width()));
}

GridHeading::GridHeading(FormWindow& host, const Grid& grid, QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent), host_(host), grid_(grid) {
    setSectionsClickable(true);
    setHighlightSections(false);
    setMinimumSectionSize(28);
    setSectionResizeMode(QHeaderView::Interactive);
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

QSize GridHeading::sizeHint() const {
    return {QHeaderView::sizeHint().width(), 34};
}

void GridHeading::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF all(viewport()->rect());
    QPainterPath shape; // rounded above, as the panel is
    shape.setFillRule(Qt::WindingFill);
    shape.addRoundedRect(all, measure::kPanelRadius - 1, measure::kPanelRadius - 1);
    shape.addRect(all.adjusted(0, measure::kPanelRadius, 0, 0));
    painter.fillPath(shape, host_.skin().tokens().head);
    painter.end();
    QHeaderView::paintEvent(event);
    QPainter below(viewport());
    below.setPen(host_.skin().tokens().line);
    below.drawLine(viewport()->rect().bottomLeft(), viewport()->rect().bottomRight());
}

// In the margin, so that no heading needs more room: up when the smallest stands first.
void GridHeading::paintArrow(QPainter& painter, const QRect& where, bool down) const {
    const QPointF middle = QRectF(where).center();
    const double tip = down ? 2.5 : -2.5;
    painter.setPen(Qt::NoPen);
    painter.setBrush(host_.skin().tokens().accent);
    painter.drawPolygon(
        QPolygonF{{middle.x() - 3.5, middle.y() - tip}, {middle.x() + 3.5, middle.y() - tip}, {middle.x(), middle.y() + tip}});
}

void GridHeading::paintSection(QPainter* painter, const QRect& rect, int section) const {
    if (host_.form() == nullptr || section >= grid_.columnCount())
        return;
    const GridColumn& shape = grid_.column(section);
    const bool tick = shape.editor == GridColumn::Editor::Check || shape.format == GridColumn::Format::Flag;
    const Qt::Alignment side = tick || shape.centred ? Qt::AlignHCenter : standsRight(grid_, section) ? Qt::AlignRight : Qt::AlignLeft;
    const Tokens& t = host_.skin().tokens();
    painter->setFont(host_.skin().strong());
    painter->setPen(t.dim);
    const QRect where = rect.adjusted(kCellMargin, 0, -kCellMargin, -1);
    if (const auto order = grid_.sortedBy(); order && order->column == section)
        paintArrow(*painter,
                   QRect(side == Qt::AlignRight ? rect.left() : rect.right() - kCellMargin, rect.top(), kCellMargin, rect.height()),
                   order->descending);
    painter->setPen(t.dim);
    painter->drawText(where, side | Qt::AlignVCenter | Qt::TextSingleLine,
                      painter->fontMetrics().elidedText(toQt(grid_.text(0, section)), Qt::ElideRight, where.width()));
    if (rect.right() >= viewport()->width() - 2)
        return;
    painter->setPen(t.line);
    painter->drawLine(rect.right(), rect.top() + 9, rect.right(), rect.bottom() - 10);
}

} // namespace merchantry::ui
