#pragma once

#include <QAbstractTableModel>

namespace merchantry::ui {

class Grid;

// A Grid as the toolkit's table: every cell is asked of the grid when it is drawn, nothing is copied. Row and column counts are those of
// the last reload, so that the table never walks into rows that are just being changed.
class GridModel : public QAbstractTableModel {
public:
    GridModel(const Grid& grid, QObject* parent) : QAbstractTableModel(parent), grid_(grid) {}

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : rows_; }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : columns_; }
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    // The grid has other rows or columns now. The columns are laid out anew only when their number changed.
    void reload();
    void forget() { live_ = false; }

private:
    const Grid& grid_;
    bool live_ = true;
    int rows_ = 0;
    int columns_ = 0;
};

} // namespace merchantry::ui
