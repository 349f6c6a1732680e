#include "exchange/import/importplan.h"

#include <algorithm>
#include <tuple>

namespace merchantry::exchange {
namespace {

constexpr int kRowsOfAStep = 2000;

} // namespace

ImportPlan::ImportPlan(const SheetTable& table, ColumnMatch match, Target target, bool hiddenRows)
    : table_(table), match_(std::move(match)), target_(target), hiddenRows_(hiddenRows), rowCheck_(table, match_, target),
      next_(match_.headingRow + 1) {
    for (std::size_t field = 0; field < fieldsOf(target).size(); ++field)
        columns_.push_back(match_.columnOf(static_cast<int>(field)));
}

int ImportPlan::step() {
    const int end = std::min(table_.rows(), next_ + kRowsOfAStep);
    for (; next_ < end; ++next_)
        if ((hiddenRows_ || !table_.hidden(next_)) && !isBlank(next_)) {
            before_ = findings_.size();
            checkRow(next_);
            judgeRow(rows() - 1);
        }
    if (next_ < table_.rows())
        return static_cast<int>(static_cast<std::int64_t>(next_) * 99 / table_.rows());
    if (!checked_) {
        checkedAll();
        sortFindings();
        checked_ = true;
    }
    return 100;
}

// What is the matter with a row whose cells may be good, each by itself.
void ImportPlan::judgeRow(int row) {
    if (const std::string wrong = rowCheck_.widthComplaint(tableRow(row)); !wrong.empty())
        refuseRow(row, -1, {FindingKind::Text, wrong});
    const bool known = state(row) == RowState::Changed || state(row) == RowState::Same;
    if (const int field = known ? -1 : rowCheck_.sumField(tableRow(row)); field >= 0)
        refuseRow(row, field, {FindingKind::Text, "This looks like a sum below the list."});
}

// What its cells lack says nothing then.
void ImportPlan::refuseRow(int row, int field, Refusal refusal) {
    const auto ofRow = findings_.begin() + static_cast<std::ptrdiff_t>(before_);
    findings_.erase(std::remove_if(ofRow, findings_.end(), [](const Finding& one) { return one.kind != FindingKind::Twice; }),
                    findings_.end());
    spoil(row, field, std::move(refusal));
}

void ImportPlan::sortFindings() {
    std::stable_sort(findings_.begin(), findings_.end(), [](const Finding& left, const Finding& right) {
        return std::tie(left.row, left.column) < std::tie(right.row, right.column);
    });
}

SheetCell ImportPlan::cellOf(int tableRow, int field) const {
    const int column = columns_[static_cast<std::size_t>(field)];
    return column < 0 ? SheetCell() : table_.cell(tableRow, column);
}

bool ImportPlan::isBlank(int tableRow) const {
    return std::all_of(columns_.begin(), columns_.end(), [&](int column) {
        return column < 0 || table_.cell(tableRow, column).text.find_first_not_of(" \t\r\n") == std::string_view::npos;
    });
}

void ImportPlan::refuse(int tableRow, int field, Refusal refusal) {
    findings_.push_back({tableRow, field < 0 ? -1 : columns_[static_cast<std::size_t>(field)], refusal.kind, std::move(refusal.reason)});
}

void ImportPlan::spoil(int row, int field, Refusal refusal) {
    refuse(tableRow(row), field, std::move(refusal));
    countState(state(row), -1);
    countState(RowState::Bad, 1);
    setState(row, RowState::Bad);
}

std::string ImportPlan::changes(int row) const {
    if (state(row) != RowState::Bad)
        return changesOf(row);
    std::string words;
    const int wanted = tableRow(row);
    auto finding = std::lower_bound(findings_.begin(), findings_.end(), wanted, [](const Finding& one, int at) { return one.row < at; });
    for (; finding != findings_.end() && finding->row == wanted; ++finding)
        words += (words.empty() ? "" : " ") + finding->reason;
    return words;
}

int ImportPlan::rowOf(int wanted) const {
    int first = 0;
    int count = rows();
    while (count > 0) {
        const int half = count / 2;
        if (tableRow(first + half) < wanted) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return first < rows() && tableRow(first) == wanted ? first : -1;
}

void appendFlattened(std::string& words) {
    words += words.empty() ? "Line ends and tabs became blanks" : "; line ends and tabs became blanks";
}

void appendChange(std::string& words, const std::string& field, const std::optional<std::string>& from, const std::string& to) {
    words += words.empty() ? "" : "; ";
    words += field + " ";
    if (from)
        words += (from->empty() ? "(empty)" : *from) + " to ";
    words += to;
}

} // namespace merchantry::exchange
