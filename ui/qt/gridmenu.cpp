#include "ui/qt/gridmenu.h"

#include "ui/gestures.h"
#include "ui/gridcopy.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/texts.h"

#include <QMenu>
#include <QTableView>

namespace merchantry::ui {
namespace {

// A row that is not among the selected ones becomes the current one first, as the eye expects.
void turnTo(FormWindow& host, Grid& grid, const QModelIndex& at) {
    const int row = at.row() + 1;
    if (!at.isValid() || (row >= grid.firstSelected() && row <= grid.lastSelected()))
        return;
    host.act([&] {
        if (gestures::enter(grid).empty())
            grid.userSelect(row, at.column());
    });
}

void showMenu(QTableView& view, FormWindow& host, Grid& grid, const QPoint& where) {
    if (host.form() == nullptr)
        return;
    turnTo(host, grid, view.indexAt(where));
    const QPointer<QTableView> alive(&view);
    QMenu menu(&view);
    for (const GridUse& use : gridUses()) {
        QAction* const entry = menu.addAction(QString::fromLatin1(use.caption));
        entry->setData(QString::fromLatin1(use.caption));
        if (*use.key != '\0')
            entry->setShortcut(QKeySequence(QString::fromLatin1(use.key)));
        entry->setShortcutVisibleInContextMenu(true);
        entry->setEnabled(grid.dataRows() > 0);
    }
    menu.insertSeparator(menu.actions().at(3));
    const std::vector<ColumnUse> columns = columnUses(grid);
    if (!columns.empty())
        menu.addSeparator();
    for (const ColumnUse& one : columns) {
        const QString caption = toQt(one.caption);
        menu.addAction(caption)->setData(caption);
    }
    const QAction* const chosen = menu.exec(view.viewport()->mapToGlobal(where));
    if (chosen != nullptr && alive != nullptr && host.form() != nullptr)
        host.act([&] { gestures::chooseUse(grid, chosen->data().toString().toStdString()); });
}

} // namespace

void menuFor(QTableView& view, FormWindow& host, Grid& grid) {
    view.setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(&view, &QTableView::customContextMenuRequested, &view,
                     [&](const QPoint& where) { showMenu(view, host, grid, where); });
}

} // namespace merchantry::ui
