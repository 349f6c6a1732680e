#include "ui/qt/reporttree.h"

#include "ui/qt/texts.h"

#include <algorithm>

namespace merchantry::ui {

void ReportTree::follow(const std::vector<PageBranch>* branches) {
    const std::size_t count = branches == nullptr ? 0 : branches->size();
    if (branches != branches_ || count < nodes_.size()) {
        beginResetModel();
        branches_ = branches;
        nodes_.clear();
        roots_.clear();
        endResetModel();
    }
    while (nodes_.size() < count) {
        const auto number = static_cast<int>(nodes_.size());
        const int level = (*branches)[nodes_.size()].level;
        int parent = number - 1;
        while (parent >= 0 && (*branches)[static_cast<std::size_t>(parent)].level >= level)
            parent = nodes_[static_cast<std::size_t>(parent)].parent;
        std::vector<int>& among = parent < 0 ? roots_ : nodes_[static_cast<std::size_t>(parent)].children;
        const auto row = static_cast<int>(among.size());
        beginInsertRows(indexOf(parent), row, row);
        among.push_back(number);
        nodes_.push_back({parent, row, {}});
        endInsertRows();
    }
}

QModelIndex ReportTree::at(int page) const {
    if (branches_ == nullptr)
        return {};
    const auto end = branches_->begin() + static_cast<std::ptrdiff_t>(nodes_.size());
    const auto first =
        std::lower_bound(branches_->begin(), end, page, [](const PageBranch& branch, int wanted) { return branch.page < wanted; });
    const bool begins = first != end && first->page == page;
    return indexOf(static_cast<int>(first - branches_->begin()) - (begins ? 0 : 1));
}

QModelIndex ReportTree::indexOf(int node) const {
    return node < 0 ? QModelIndex() : createIndex(nodes_[static_cast<std::size_t>(node)].row, 0, static_cast<quintptr>(node));
}

QModelIndex ReportTree::index(int row, int column, const QModelIndex& parent) const {
    const std::vector<int>& among = childrenOf(parent);
    if (column != 0 || row < 0 || row >= static_cast<int>(among.size()))
        return {};
    return createIndex(row, 0, static_cast<quintptr>(among[static_cast<std::size_t>(row)]));
}

QModelIndex ReportTree::parent(const QModelIndex& index) const {
    return index.isValid() ? indexOf(nodes_[index.internalId()].parent) : QModelIndex();
}

int ReportTree::rowCount(const QModelIndex& parent) const {
    return static_cast<int>(childrenOf(parent).size());
}

QVariant ReportTree::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    return toQt(branch(index).text);
}

} // namespace merchantry::ui
