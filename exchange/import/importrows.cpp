#include "exchange/import/importrows.h"

#include "base/characters.h"
#include "base/text.h"

#include <algorithm>
#include <array>

namespace merchantry::exchange {
namespace {

constexpr std::array<const char*, 5> kPlanned{"Row", "What", "Code", "Name", "What changes, or why it cannot be taken"};
constexpr std::array<const char*, 4> kFindings{"Row", "Column", "Value", "Why it cannot be taken"};
constexpr std::array<const char*, 4> kStates{"New", "Changed", "As it was", "Bad cells"};
constexpr std::size_t kMostShown = 200; // characters

std::string cut(std::string_view text) {
    return std::string(characters(text, 0, kMostShown));
}

} // namespace

void PlannedRows::show(const ImportPlan* plan, std::optional<RowState> only) {
    plan_ = plan;
    rows_.clear();
    for (int row = 0; plan != nullptr && row < plan->rows(); ++row)
        if (!only || plan->state(row) == *only)
            rows_.push_back(row);
    tellListeners();
}

int PlannedRows::positionOf(int planRow) const {
    const auto found = std::lower_bound(rows_.begin(), rows_.end(), planRow);
    return found == rows_.end() || *found != planRow ? -1 : static_cast<int>(found - rows_.begin());
}

std::string PlannedRows::columnName(int column) const {
    return kPlanned.at(static_cast<std::size_t>(column));
}

Value PlannedRows::cell(int row, int column) const {
    const int planned = rows_.at(static_cast<std::size_t>(row));
    switch (column) {
    case 0:
        return plan_->table().number(plan_->tableRow(planned));
    case 1:
        return kStates.at(static_cast<std::size_t>(plan_->state(planned)));
    case 2:
        return plan_->key(planned);
    case 3:
        return cut(plan_->name(planned));
    default:
        return cut(plan_->changes(planned));
    }
}

void FindingRows::show(const ImportPlan* plan, std::optional<FindingKind> only) {
    plan_ = plan;
    rows_.clear();
    for (std::size_t i = 0; plan != nullptr && i < plan->findings().size(); ++i)
        if (!only || plan->findings()[i].kind == *only)
            rows_.push_back(i);
    tellListeners();
}

std::string FindingRows::columnName(int column) const {
    return kFindings.at(static_cast<std::size_t>(column));
}

Value FindingRows::cell(int row, int column) const {
    const Finding& one = at(row);
    const SheetTable& table = plan_->table();
    switch (column) {
    case 0:
        return table.number(one.row);
    case 1:
        return one.column < 0 ? "" : columnTitle(table, plan_->match().headingRow, one.column);
    case 2:
        return one.column < 0 ? "" : cut(table.cell(one.row, one.column).text);
    default:
        return one.reason;
    }
}

std::string columnTitle(const SheetTable& table, int headingRow, int column) {
    const std::string heading = headingRow < 0 ? "" : cut(trimmed(table.cell(headingRow, column).text));
    return heading.empty() ? columnLetters(column) : heading + " (" + columnLetters(column) + ")";
}

} // namespace merchantry::exchange
