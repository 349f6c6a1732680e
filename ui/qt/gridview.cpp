#include "ui/qt/gridview.h"

#include "ui/gestures.h"
#include "ui/gridcopy.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/gridcell.h"
#include "ui/qt/gridmenu.h"
#include "ui/qt/gridmodel.h"
#include "ui/qt/memory.h"
#include "ui/qt/texts.h"

#include <QApplication>
#include <QComboBox>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace merchantry::ui {
namespace {

constexpr int kSampledRows = 60;
constexpr int kWidest = 380;
constexpr int kLeastPercent = 60; // of its wish, that a column of words gives way to

} // namespace

GridView::GridView(FormWindow& host, Grid& grid, QWidget* parent)
    : QTableView(parent), host_(host), grid_(grid), model_(new GridModel(grid, this)) {
    setHorizontalHeader(new GridHeading(host, grid, this));
    setModel(model_);
    setItemDelegate(new GridCell(host, grid, this));
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setShowGrid(false);
    setFrameShape(QFrame::NoFrame);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(16);
    verticalHeader()->setDefaultSectionSize(measure::kRow);
    host_.watch(*this, grid);
    host_.watch(*viewport(), grid);
    viewport()->installEventFilter(this);
    menuFor(*this, host_, grid_);
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this,
            [this](int column) { act([&] { gestures::clickHeading(grid_, column); }); });
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this] {
        placeEditor();
        if (!layingOut_)
            rememberWidths();
    });
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { placeEditor(); });
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, [this] { placeEditor(); });
}

bool GridView::act(const std::function<void()>& procedure) {
    return host_.act(procedure);
}

void GridView::reload() {
    if (host_.form() == nullptr)
        return;
    layingOut_ = true;
    host_.read([this] {
        model_->reload();
        hideColumns();
        layOutColumns();
        follow();
    });
    layingOut_ = false;
    viewport()->update();
    horizontalHeader()->viewport()->update();
}

void GridView::follow() {
    if (host_.form() == nullptr)
        return;
    if (editor_ != nullptr && !committing_ && !grid_.editing())
        dropEditor();
    const int row = grid_.row();
    const bool toTop = std::exchange(wishes_, grid_.showWishes()) != grid_.showWishes();
    if (row >= 1 && (row != shown_ || toTop) && row <= model_->rowCount())
        scrollTo(model_->index(row - 1, std::max(0, grid_.col())),
                 toTop ? QAbstractItemView::PositionAtTop : QAbstractItemView::EnsureVisible);
    shown_ = row;
    viewport()->update();
}

void GridView::restyle() {
    verticalHeader()->setDefaultSectionSize(measure::kRow);
    viewport()->update();
    horizontalHeader()->viewport()->update();
}

void GridView::forget() {
    model_->forget();
    dropEditor();
}

// --- columns ---

void GridView::hideColumns() {
    for (int i = 0; i < model_->columnCount(); ++i)
        if (isColumnHidden(i) != grid_.column(i).hidden)
            setColumnHidden(i, grid_.column(i).hidden);
}

int GridView::contentWidth(int column) const {
    const GridColumn& shape = grid_.column(column);
    const QFontMetrics metrics(shape.fixedWidth ? host_.skin().code() : host_.skin().text());
    int width = QFontMetrics(host_.skin().strong()).horizontalAdvance(toQt(grid_.text(0, column)));
    if (shape.width > 0)
        return std::max(width + 2 * kCellMargin + 4, shape.width / kTwipsPerPixel);
    if (shape.characters > 0)
        return std::max(width, shape.characters * metrics.averageCharWidth()) + 2 * kCellMargin + 4;
    const bool tick = shape.editor == GridColumn::Editor::Check || shape.format == GridColumn::Format::Flag;
    for (int row = 1; !tick && row <= std::min(grid_.dataRows(), kSampledRows); ++row)
        width = std::max(width, Skin::figuresWidth(metrics, toQt(grid_.text(row, column))));
    return std::clamp(width + 2 * kCellMargin + 4, 56, kWidest);
}

int GridView::wishedWidth() const {
    int all = 0;
    for (int i = 0; i < grid_.columnCount(); ++i)
        all += grid_.column(i).hidden ? 0 : contentWidth(i);
    return all;
}

bool GridView::isWords(int column) const {
    const GridColumn& shape = grid_.column(column);
    return !shape.hidden && !standsRight(grid_, column) && shape.format == GridColumn::Format::Plain &&
           shape.editor != GridColumn::Editor::Check && !shape.fixedWidth;
}

// The user's own widths stand; otherwise the content's are taken.
void GridView::layOutColumns() {
    const int columns = model_->columnCount();
    if (columns == 0)
        return;
    if (laidOutFor_ != columns) {
        const QList<int> kept = rememberedWidths(host_.form()->name(), grid_.name(), columns);
        dragged_ = !kept.isEmpty();
        for (int i = 0; dragged_ && i < columns; ++i)
            setColumnWidth(i, kept[i]);
        asked_ = QList<int>(columns, 0);
        laidOutFor_ = columns;
    }
    if (!dragged_)
        fitColumns();
}

// Widths from headings and the first rows, growing only, so that a list does not jump while it is filtered; what is left over goes to the
// columns of words, or to all when there are none. In a window too narrow for all of them the columns of words give way, if that is enough
// to show every column.
void GridView::fitColumns() {
    std::vector<int> words;
    std::vector<int> shown;
    int left = viewport()->width();
    for (int i = 0; i < model_->columnCount(); ++i) {
        if (grid_.column(i).hidden)
            continue;
        asked_[i] = std::max(asked_[i], contentWidth(i));
        setColumnWidth(i, asked_[i]);
        left -= asked_[i];
        if (isWords(i))
            words.push_back(i);
        shown.push_back(i);
    }
    if (left < 0)
        return narrowWords(words, -left);
    if (words.empty())
        words = shown;
    for (std::size_t k = 0; left > 0 && k < words.size(); ++k) {
        const int share = left / static_cast<int>(words.size() - k);
        setColumnWidth(words[k], columnWidth(words[k]) + share);
        left -= share;
    }
}

// Takes so many pixels from these columns, each its part of what it can give; nothing when together they cannot give enough.
void GridView::narrowWords(const std::vector<int>& columns, int missing) {
    const auto spare = [this](int column) {
        const int heading = QFontMetrics(host_.skin().strong()).horizontalAdvance(toQt(grid_.text(0, column))) + 2 * kCellMargin + 4;
        return std::max(0, asked_[column] - std::max(heading, asked_[column] * kLeastPercent / 100));
    };
    int all = 0;
    for (const int column : columns)
        all += spare(column);
    if (all < missing)
        return;
    for (const int column : columns) {
        const int given = all == 0 ? 0 : (missing * spare(column) + all - 1) / all;
        missing -= given;
        all -= spare(column);
        setColumnWidth(column, asked_[column] - given);
    }
}

void GridView::rememberWidths() {
    if (host_.form() == nullptr || !isVisible())
        return;
    dragged_ = true;
    QList<int> widths;
    for (int i = 0; i < model_->columnCount(); ++i)
        widths << (isColumnHidden(i) ? 60 : columnWidth(i));
    rememberWidthsOf(host_.form()->name(), grid_.name(), widths);
}

void GridView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    layingOut_ = true;
    host_.read([this] { layOutColumns(); });
    layingOut_ = false;
    placeEditor();
}

// --- painting around the cells ---

void GridView::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (host_.form() == nullptr || model_->rowCount() > 0)
        return;
    QPainter painter(viewport());
    if (hasFocus()) { // no cell shows it
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(host_.skin().tokens().accent, 1.5));
        painter.drawRoundedRect(QRectF(viewport()->rect()).adjusted(1.5, 1.5, -1.5, -1.5), 4, 4);
    }
    painter.setPen(host_.skin().tokens().dim);
    const QString words = grid_.emptyText.empty() ? QStringLiteral("Nothing listed") : toQt(grid_.emptyText);
    painter.drawText(viewport()->rect().adjusted(24, 0, -24, 0), Qt::AlignCenter | Qt::TextWordWrap, words);
}

void GridView::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    viewport()->update();
    onFocus(true);
}

void GridView::focusOutEvent(QFocusEvent* event) {
    QTableView::focusOutEvent(event);
    viewport()->update();
    onFocus(false);
}

// A cell whose text does not fit tells all of it as its tip.
bool GridView::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip && host_.form() != nullptr) {
        auto* help = static_cast<QHelpEvent*>(event);
        const QModelIndex at = indexAt(help->pos());
        QString text;
        host_.read([&] { text = at.isValid() ? toQt(grid_.text(at.row() + 1, at.column())) : QString(); });
        const bool bar = at.isValid() && grid_.column(at.column()).format == GridColumn::Format::Bar;
        if (bar || (at.isValid() && Skin::figuresWidth(fontMetrics(), text) > columnWidth(at.column()) - 2 * kCellMargin))
            QToolTip::showText(help->globalPos(), plainTip(text), this);
        else
            QToolTip::showText(help->globalPos(), plainTip(toQt(grid_.toolTip())), this);
        return true;
    }
    return QTableView::viewportEvent(event);
}

// --- the mouse ---

std::vector<std::string> GridView::textsOf(int row) {
    std::vector<std::string> texts;
    host_.read([&] {
        for (int column = 0; column < grid_.columnCount(); ++column)
            texts.push_back(grid_.text(row, column));
    });
    return texts;
}

void GridView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex at = indexAt(event->position().toPoint());
    if (!at.isValid() || event->button() != Qt::LeftButton) {
        if (editor_ != nullptr)
            act([this] { finishEdit(); });
        return;
    }
    const int row = at.row() + 1;
    pressedAt_ = event->position().toPoint();
    pressedRow_ = 0;
    firstClick_ = {row, at.column(), textsOf(row)};
    if ((event->modifiers() & Qt::ShiftModifier) && grid_.selected()) {
        extendTo(row);
        return;
    }
    secondPress_ = hasFocus() && row == grid_.row() && at.column() == grid_.col();
    const int before = host_.desk().loopsRun();
    act([&] { gestures::select(grid_, row, at.column()); });
    if (host_.form() == nullptr || host_.desk().loopsRun() != before)
        return;
    pressedRow_ = row;
    pressedColumn_ = at.column();
}

void GridView::mouseMoveEvent(QMouseEvent* event) {
    const QModelIndex at = indexAt(event->position().toPoint());
    if ((event->buttons() & Qt::LeftButton) && at.isValid() && host_.form() != nullptr && grid_.selected() && at.row() + 1 != grid_.row()) {
        pressedRow_ = 0;
        extendTo(at.row() + 1);
    }
}

// A click on the cell that was current already begins its edit; a check cell is turned by the first. The cell is that of the press, also
// when the table scrolled under the mouse to show it whole.
void GridView::mouseReleaseEvent(QMouseEvent* event) {
    const bool still = (event->position().toPoint() - pressedAt_).manhattanLength() < QApplication::startDragDistance();
    const bool again = std::exchange(secondPress_, false);
    if (host_.form() == nullptr || event->button() != Qt::LeftButton || !still || pressedRow_ != grid_.row() ||
        pressedColumn_ != grid_.col() || pressedRow_ < 1 || !grid_.editable)
        return;
    const bool check = grid_.column(pressedColumn_).editor == GridColumn::Editor::Check;
    if (check || (again && !grid_.dblClick)) {
        beginEdit(pressedRow_, pressedColumn_);
        if (auto* combo = dynamic_cast<QComboBox*>(editor_.data()))
            combo->showPopup();
    }
    pressedRow_ = 0;
}

// The row is that of the first click, also when that one scrolled the table. Where it sorted the list, another row is there now, which the
// user did not mean.
void GridView::mouseDoubleClickEvent(QMouseEvent* event) {
    const QPoint where = event->position().toPoint();
    const QModelIndex at = indexAt(where);
    if (!at.isValid() || event->button() != Qt::LeftButton || host_.form() == nullptr)
        return;
    const bool second = firstClick_.row >= 1 && (where - pressedAt_).manhattanLength() < QApplication::startDragDistance();
    const int row = second ? firstClick_.row : at.row() + 1;
    const int column = second ? firstClick_.column : at.column();
    if (grid_.dblClick && second && textsOf(row) != firstClick_.texts)
        QToolTip::showText(event->globalPosition().toPoint(),
                           QStringLiteral("The first click sorted the list. Double-click the row again."), this);
    else if (grid_.dblClick)
        act([&] { gestures::doubleClick(grid_, row, column); });
    else if (grid_.column(column).editor == GridColumn::Editor::Check)
        mousePressEvent(event);
    else
        beginEdit(row, column);
}

// --- the keyboard ---

void GridView::select(int row, int column) {
    act([&] {
        if (gestures::enter(grid_).empty())
            grid_.userSelect(row, column);
    });
}

// The current row stays the anchor's; the selection reaches to the row.
void GridView::extendTo(int row) {
    act([&] {
        if (gestures::enter(grid_).empty() && finishEdit())
            grid_.select(grid_.row(), std::clamp(row, 1, grid_.dataRows()));
    });
}

int GridView::neighbour(int column, int step) const {
    for (int next = column + step; next >= 0 && next < grid_.columnCount(); next += step)
        if (!grid_.column(next).hidden)
            return next;
    return column;
}

void GridView::moveBy(int rows, int columns) {
    if (grid_.dataRows() == 0)
        return;
    const int row = std::clamp(grid_.row() + rows, 1, grid_.dataRows());
    const int column = columns == 0 ? std::max(0, grid_.col()) : neighbour(grid_.col(), columns);
    if (row != grid_.row() || column != grid_.col())
        select(row, column);
}

void GridView::step(int rows, bool extend) {
    if (!extend)
        return moveBy(rows, 0);
    const int end = grid_.row() == grid_.firstSelected() ? grid_.lastSelected() : grid_.firstSelected();
    extendTo(end + rows);
}

bool GridView::moveKey(int key, bool extend) {
    const int page = std::max(1, viewport()->height() / measure::kRow - 1);
    switch (key) {
    case Qt::Key_Up:
        return step(-1, extend), true;
    case Qt::Key_Down:
        return step(1, extend), true;
    case Qt::Key_PageUp:
        return step(-page, extend), true;
    case Qt::Key_PageDown:
        return step(page, extend), true;
    case Qt::Key_Home:
        return step(-grid_.dataRows(), extend), true;
    case Qt::Key_End:
        return step(grid_.dataRows(), extend), true;
    case Qt::Key_Left:
        return moveBy(0, -1), true;
    case Qt::Key_Right:
        return moveBy(0, 1), true;
    default:
        return false;
    }
}

void GridView::keyPressEvent(QKeyEvent* event) {
    if (host_.form() == nullptr || moveKey(event->key(), event->modifiers() & Qt::ShiftModifier))
        return;
    if (event->key() == Qt::Key_F2)
        return beginEdit(grid_.row(), grid_.col());
    const std::string name = keyName(*event);
    for (const GridUse& use : gridUses())
        if (!name.empty() && name == use.key) {
            act([&] { gestures::key(*host_.form(), name); });
            return;
        }
    const QString typed = event->modifiers() & Qt::ControlModifier ? QString() : event->text();
    const bool print = !typed.isEmpty() && typed[0].isPrint();
    const bool check = grid_.row() >= 1 && grid_.col() >= 0 && grid_.col() < grid_.columnCount() &&
                       grid_.column(grid_.col()).editor == GridColumn::Editor::Check;
    if (check && event->key() == Qt::Key_Space)
        return beginEdit(grid_.row(), grid_.col());
    if (print && grid_.editable && !check)
        return beginEdit(grid_.row(), grid_.col(), &typed);
    if (!print || !host_.typeIntoPanel(typed))
        event->ignore();
}

} // namespace merchantry::ui
