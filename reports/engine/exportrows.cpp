#include "reports/engine/exportrows.h"

#include <stdexcept>

namespace merchantry::reports {

void requireColumns(const Outline& outline) {
    if (outline.columns().empty())
        throw std::runtime_error("Labels have no columns. They are written as PDF only.");
}

ExportRows::ExportRows(const Outline& outline)
    : outline_(outline), group_(outline.noSums()), groupSoFar_(outline.noSums()), reportSoFar_(outline.noSums()) {
    for (int group = 0; group < outline.groupCount(); ++group) {
        if (outline.definition().groups[static_cast<std::size_t>(group)].header.empty())
            continue;
        named_.push_back(group);
        titles_.push_back(named_.size() == 1 ? "Group" : "Group " + std::to_string(named_.size()));
    }
    names_.resize(named_.size());
}

bool ExportRows::next() {
    if (row_ + 1 >= outline_.rows().rowCount())
        return false;
    ++row_;
    if (outline_.groupCount() > 0 && outline_.breakBefore(row_) < outline_.groupCount())
        beginGroup();
    if (outline_.wantsRunningSums()) {
        outline_.add(groupSoFar_, row_);
        outline_.add(reportSoFar_, row_);
    }
    return true;
}

void ExportRows::beginGroup() {
    for (std::size_t i = 0; i < named_.size(); ++i)
        names_[i] = outline_.header(named_[i], row_);
    if (outline_.wantsGroupSums())
        group_ = outline_.groupSums(row_);
    groupSoFar_ = outline_.noSums();
}

std::optional<Figure> ExportRows::computed(std::size_t column) const {
    return outline_.computed(row_, column, {group_, groupSoFar_, reportSoFar_});
}

} // namespace merchantry::reports
