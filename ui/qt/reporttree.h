#pragma once

#include "ui/page.h"

#include <QAbstractItemModel>

#include <vector>

namespace merchantry::ui {

// A report's groups as a tree for the toolkit. Grows at its end as the report is laid out.
class ReportTree : public QAbstractItemModel {
public:
    using QAbstractItemModel::QAbstractItemModel;

    // Takes over what is new; another list, or a shorter one, begins anew. Borrows the branches.
    void follow(const std::vector<PageBranch>* branches);
    // The first branch that begins on a page, from 0, or else the one that goes on there; none before the first.
    QModelIndex at(int page) const;
    int pageOf(const QModelIndex& index) const { return branch(index).page; }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex&) const override { return 1; }
    QVariant data(const QModelIndex& index, int role) const override;

private:
    struct Node {
        int parent = -1;
        int row = 0;
        std::vector<int> children;
    };
    const PageBranch& branch(const QModelIndex& index) const { return (*branches_)[index.internalId()]; }
    const std::vector<int>& childrenOf(const QModelIndex& parent) const {
        return parent.isValid() ? nodes_[parent.internalId()].children : roots_;
    }
    QModelIndex indexOf(int node) const;

    const std::vector<PageBranch>* branches_ = nullptr;
    std::vector<Node> nodes_;
    std::vector<int> roots_;
};

} // namespace merchantry::ui
