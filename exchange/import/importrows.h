#pragma once

#include "base/listrows.h"
#include "exchange/import/importplan.h"

#include <optional>

namespace merchantry::exchange {

// The rows of a plan as a grid shows them, all or those of one state. Columns: Row, What, Code, Name, Changes.
class PlannedRows : public ListRows {
public:
    // The plan must outlive it; null for none.
    void show(const ImportPlan* plan, std::optional<RowState> only);
    // The position of a row of the plan; -1 where it is not shown.
    int positionOf(int planRow) const;
    // The row of the plan that is shown at a position.
    int planRow(int row) const { return rows_[static_cast<std::size_t>(row)]; }
    RowState stateAt(int row) const { return plan_->state(rows_[static_cast<std::size_t>(row)]); }

    int columnCount() const override { return 5; }
    std::string columnName(int column) const override;
    int rowCount() const override { return static_cast<int>(rows_.size()); }
    Value cell(int row, int column) const override;

private:
    const ImportPlan* plan_ = nullptr;
    std::vector<int> rows_;
};

// The cells that cannot be taken, all or those of one kind. Columns: Row, Column, Value, Reason.
class FindingRows : public ListRows {
public:
    void show(const ImportPlan* plan, std::optional<FindingKind> only);
    const Finding& at(int row) const { return plan_->findings()[rows_[static_cast<std::size_t>(row)]]; }

    int columnCount() const override { return 4; }
    std::string columnName(int column) const override;
    int rowCount() const override { return static_cast<int>(rows_.size()); }
    Value cell(int row, int column) const override;

private:
    const ImportPlan* plan_ = nullptr;
    std::vector<std::size_t> rows_;
};

// "Price (C)": the heading of a column with its letter.
std::string columnTitle(const SheetTable& table, int headingRow, int column);

} // namespace merchantry::exchange
