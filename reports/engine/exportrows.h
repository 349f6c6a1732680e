#pragma once

#include "reports/engine/outline.h"

#include <optional>
#include <string>
#include <vector>

namespace merchantry::reports {

// Throws std::runtime_error with a sentence for labels, which have no columns to write.
void requireColumns(const Outline& outline);

// The rows of a report as values for other programs, from the first to the last. Where a page names a group once above its rows, here
// every row carries the name. Borrows the outline.
class ExportRows {
public:
    explicit ExportRows(const Outline& outline);

    // Moves to the next row, at first to the first one; false after the last.
    bool next();
    int row() const { return row_; }
    // The headings of the groups' names, outermost first; none for a group without a header.
    const std::vector<std::string>& groupTitles() const { return titles_; }
    // The names of the groups that the row is in, one for each heading.
    const std::vector<std::string>& groups() const { return names_; }
    // The number of a column that isComputed, as the page shows it; nothing where there is none.
    std::optional<Figure> computed(std::size_t column) const;

private:
    void beginGroup();

    const Outline& outline_;
    int row_ = -1;
    std::vector<int> named_; // the groups with a header
    std::vector<std::string> titles_;
    std::vector<std::string> names_;
    Sums group_; // all of the innermost group
    Sums groupSoFar_;
    Sums reportSoFar_;
};

} // namespace merchantry::reports
