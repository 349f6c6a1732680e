#include "ui/qt/gridmodel.h"

#include "ui/grid.h"
#include "ui/qt/texts.h"

namespace merchantry::ui {

QVariant GridModel::data(const QModelIndex& index, int role) const {
    if (!live_ || !index.isValid() || (role != Qt::DisplayRole && role != Qt::AccessibleTextRole))
        return {};
    return toQt(grid_.text(index.row() + 1, index.column()));
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (!live_ || orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return toQt(grid_.text(0, section));
}

void GridModel::reload() {
    const int rows = grid_.dataRows();
    const int columns = grid_.columnCount();
    if (columns != columns_) {
        beginResetModel();
        rows_ = rows;
        columns_ = columns;
        endResetModel();
        return;
    }
    if (rows > rows_) {
        beginInsertRows({}, rows_, rows - 1);
        rows_ = rows;
        endInsertRows();
    } else if (rows < rows_) {
        beginRemoveRows({}, rows, rows_ - 1);
        rows_ = rows;
        endRemoveRows();
    }
    emit headerDataChanged(Qt::Horizontal, 0, columns_ - 1);
}

} // namespace merchantry::ui
