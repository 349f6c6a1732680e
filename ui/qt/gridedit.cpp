// The part of GridView that edits: editors over the cells, and the way of their texts to the grid.
#include "ui/gestures.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/frame.h"
#include "ui/qt/gridcell.h"
#include "ui/qt/gridmodel.h"
#include "ui/qt/gridview.h"
#include "ui/qt/texts.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>

namespace merchantry::ui {

void GridView::beginEdit(int row, int column, const QString* typed) {
    if (row < 1 || column < 0 || column >= grid_.columnCount() || !grid_.editable)
        return;
    if (grid_.column(column).editor == GridColumn::Editor::Check) {
        turnCheck(row, column);
        return;
    }
    bool begun = false;
    act([&] { begun = gestures::enter(grid_).empty() && grid_.userBeginEdit(row, column); });
    if (begun && host_.form() != nullptr && grid_.editing())
        openEditor(row, column, typed);
}

void GridView::turnCheck(int row, int column) {
    const std::string turned = isOn(grid_.text(row, column)) ? "0" : "1";
    act([&] { gestures::edit(grid_, row, column, turned); });
    viewport()->update();
}

void GridView::openEditor(int row, int column, const QString* typed) {
    dropEditor();
    editRow_ = row;
    editColumn_ = column;
    if (grid_.column(column).editor == GridColumn::Editor::Combo)
        openCombo(row, column);
    else
        openText(row, column, typed);
    editor_->installEventFilter(this);
    placeEditor();
    editor_->show();
    editor_->setFocus(Qt::OtherFocusReason);
}

void GridView::openText(int, int column, const QString* typed) {
    auto* line = new QLineEdit(viewport());
    setLook(*line, "cell");
    const GridColumn& shape = grid_.column(column);
    if (standsRight(grid_, column))
        line->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    if (shape.fixedWidth)
        line->setFont(host_.skin().code());
    editor_ = line;
    const QString mask = toQt(shape.mask);
    const auto tell = [this, line, mask](const QString& text) {
        const QString fitting = mask.isEmpty() ? text : laidIntoMask(mask, text);
        QString shown = fitting;
        act([&] { shown = toQt(grid_.userEditText(fromQt(fitting))); });
        if (line->text() != shown)
            line->setText(shown);
    };
    connect(line, &QLineEdit::textEdited, line, tell);
    line->setText(toQt(grid_.editText()));
    line->selectAll();
    if (typed == nullptr)
        return;
    line->setText(*typed);
    tell(*typed);
}

void GridView::openCombo(int, int column) {
    auto* combo = new QComboBox(viewport());
    setLook(*combo, "cell");
    for (const auto& [text, stored] : grid_.column(column).choices)
        combo->addItem(toQt(text));
    combo->setCurrentIndex(combo->findText(toQt(grid_.editText()), Qt::MatchFixedString));
    editor_ = combo;
    connect(combo, &QComboBox::activated, combo, [this, combo] {
        act([&] { grid_.userEditText(fromQt(combo->currentText())); });
        commit();
    });
}

void GridView::placeEditor() {
    if (editor_ != nullptr)
        editor_->setGeometry(visualRect(model_->index(editRow_ - 1, editColumn_)).adjusted(1, 1, -1, -2));
}

QString GridView::editorText() const {
    if (const auto* line = dynamic_cast<const QLineEdit*>(editor_.data()))
        return line->text();
    if (const auto* combo = dynamic_cast<const QComboBox*>(editor_.data()); combo != nullptr && combo->currentIndex() >= 0)
        return combo->currentText();
    return toQt(grid_.editText());
}

bool GridView::finishEdit() {
    return editor_ == nullptr || !grid_.editing() || commit();
}

// A refusal keeps the editor, with its text; a write that the source refused ends the edit with the old cell.
bool GridView::commit() {
    if (committing_ || editor_ == nullptr)
        return true;
    committing_ = true;
    bool taken = false;
    act([&] { taken = grid_.userCommit(fromQt(editorText())); });
    committing_ = false;
    if (host_.form() == nullptr)
        return taken;
    if (!grid_.editing())
        dropEditor();
    else if (editor_ != nullptr)
        editor_->setFocus(Qt::OtherFocusReason);
    if (taken && model_->columnCount() == grid_.columnCount()) { // what was typed may want more room
        layingOut_ = true;
        host_.read([this] { layOutColumns(); });
        layingOut_ = false;
    }
    viewport()->update();
    return taken;
}

void GridView::dropEditor() {
    if (editor_ == nullptr)
        return;
    QWidget* const gone = editor_;
    editor_ = nullptr;
    gone->removeEventFilter(this);
    // Before it hides, or the toolkit would look for another place; also while its own list has the keyboard.
    if (QWidget* const holder = window()->focusWidget(); holder == gone || gone->isAncestorOf(holder))
        setFocus(Qt::OtherFocusReason);
    gone->hide();
    gone->deleteLater();
}

bool GridView::eventFilter(QObject* object, QEvent* event) {
    if (object != editor_ || event->type() != QEvent::KeyPress || host_.form() == nullptr)
        return QTableView::eventFilter(object, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Escape:
        act([this] { grid_.userCancelEdit(); });
        follow();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        commit();
        return true;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        if (commit())
            moveBy(0, key->key() == Qt::Key_Tab ? 1 : -1);
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (dynamic_cast<QLineEdit*>(object) == nullptr)
            return false;
        if (commit())
            moveBy(key->key() == Qt::Key_Down ? 1 : -1, 0);
        return true;
    default:
        return false;
    }
}

} // namespace merchantry::ui
