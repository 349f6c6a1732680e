#pragma once

#include "exchange/import/cellreader.h"
#include "exchange/import/columns.h"
#include "exchange/import/rowcheck.h"
#include "exchange/import/sheettable.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::exchange {

// What an import does beside taking the columns.
struct ImportOptions {
    ReadingRules reading;
    // Codes that a spreadsheet seems to have changed: told as bad cells, taken as they were, or taken as they stand.
    enum class Codes { Ask, Mend, Leave };
    Codes codes = Codes::Ask;
    bool makeDepartments = false; // that the store does not have
    bool makeSuppliers = false;
    std::optional<std::int16_t> supplier; // of all rows that name none
    std::string reason = "Adjustment";    // of adjustments of stock
    bool hiddenRows = false;              // take them, too
};

// A cell that cannot be taken, or a row.
struct Finding {
    std::int32_t row = 0; // of the table
    std::int32_t column = -1;
    FindingKind kind = FindingKind::Error;
    std::string reason;
};

enum class RowState : std::uint8_t { New, Changed, Same, Bad };

// What a file would make of the store, reckoned before anything is written: every row with what becomes of it, and every cell that cannot
// be taken. Rows without anything in a column that is taken are passed over. The table must outlive it.
class ImportPlan {
public:
    ImportPlan(const SheetTable& table, ColumnMatch match, Target target, bool hiddenRows);
    virtual ~ImportPlan() = default;
    ImportPlan(const ImportPlan&) = delete;
    ImportPlan& operator=(const ImportPlan&) = delete;

    // Checks on; percent done.
    int step();

    Target target() const { return target_; }
    const SheetTable& table() const { return table_; }
    const ColumnMatch& match() const { return match_; }
    const std::vector<Finding>& findings() const { return findings_; } // in the order of rows and columns
    virtual int rows() const = 0;
    virtual RowState state(int row) const = 0;
    virtual int tableRow(int row) const = 0;
    virtual std::string key(int row) const = 0;
    virtual std::string name(int row) const = 0;
    // "Price $10.00 to $12.00; Stock 5 to 7"; of a new one what it gets, of a bad one why.
    std::string changes(int row) const;
    // The row of the plan that came from the table's row; -1 for none.
    int rowOf(int tableRow) const;

    int count(RowState state) const { return counts_[static_cast<std::size_t>(state)]; }
    // What it comes to, in sentences.
    virtual std::vector<std::string> sums() const = 0;
    // Departments and suppliers that it makes.
    const std::vector<std::string>& newDepartments() const { return newDepartments_; }
    const std::vector<std::string>& newSuppliers() const { return newSuppliers_; }

protected:
    virtual void checkRow(int tableRow) = 0;
    virtual void checkedAll() {}
    virtual void setState(int row, RowState state) = 0;
    virtual std::string changesOf(int row) const = 0;

    SheetCell cellOf(int tableRow, int field) const;
    bool isBlank(int tableRow) const;
    void refuse(int tableRow, int field, Refusal refusal);
    void countState(RowState state, int by) { counts_[static_cast<std::size_t>(state)] += by; }
    // Makes a row bad that was counted as something else.
    void spoil(int row, int field, Refusal refusal);
    std::string heading(int field) const { return fieldsOf(target_)[static_cast<std::size_t>(field)].caption; }

    std::vector<std::string> newDepartments_;
    std::vector<std::string> newSuppliers_;

private:
    void judgeRow(int row);
    void refuseRow(int row, int field, Refusal refusal);
    void sortFindings();

    const SheetTable& table_;
    ColumnMatch match_;
    Target target_;
    bool hiddenRows_;
    RowCheck rowCheck_;
    std::vector<int> columns_; // by field
    std::vector<Finding> findings_;
    std::size_t before_ = 0; // findings of the rows before the one that is checked
    std::array<int, 4> counts_{};
    int next_ = 0;
    bool checked_ = false;
};

// Says behind the changes of a row that its texts had line ends or tabs.
void appendFlattened(std::string& words);

// "Price $10.00 to $12.00", or "Price $12.00" where there was nothing.
void appendChange(std::string& words, const std::string& field, const std::optional<std::string>& from, const std::string& to);

} // namespace merchantry::exchange
