#pragma once

#include "base/date.h"

#include <array>
#include <string>
#include <vector>

namespace merchantry::reports {

// A column that a report may be filtered by, as its mapping tells.
struct CriteriaField {
    std::string FieldName;
    std::string FieldDescription;
    bool DateConvert = false;
};

// The condition of a column without a date: the value in quotes unless the field, by the name that the list shows, is a number.
std::string plainExpression(const CriteriaField& field, const std::string& shownName, const std::string& comparison,
                            const std::string& condition);
// The condition of a date column, about the whole of that day; empty for "Like".
std::string dateExpression(const std::string& fieldName, const std::string& comparison, Date day);
// Whichever the field asks for. Throws app::RunTimeError 13 for a condition of a date column that is no date.
std::string expressionFor(const CriteriaField& field, const std::string& shownName, const std::string& comparison,
                          const std::string& condition);

// The conditions built so far: the texts for the statement, and beside each the text for the user. Slots count from 0.
class Criteria {
public:
    static constexpr int kSlots = 51;
    static constexpr int kMost = 49;

    struct Addition {
        std::string expression; // "Item.Name = 'Hat'"
        std::string shown;      // "Name = Hat"
        bool useAnd = true;     // how it goes on from the condition before
        int row = 1;            // the grid's current row, from 1
        std::string rowText;    // what that row shows
    };
    struct Placed {
        int row = 0; // where the display condition is to be shown
        std::string text;
    };
    // Joins the condition to that of the current row, or takes a new slot. Requires: count() <= 48.
    Placed add(const Addition& addition);
    // Takes out the condition of a grid row, from 1, and closes the gap. The first condition left loses its connector; true when that
    // happened, and row 1 then shows sql(0).
    bool remove(int row);
    void clear();
    // As they were kept. Requires: at most kMost, and as many of both.
    void assign(const std::vector<std::string>& sql, const std::vector<std::string>& display);

    int count() const { return count_; }
    const std::string& sql(int slot) const { return sql_.at(static_cast<std::size_t>(slot)); }
    const std::string& display(int slot) const { return display_.at(static_cast<std::size_t>(slot)); }
    const std::array<std::string, kSlots>& sqlSlots() const { return sql_; }
    // All of them for a reader.
    std::string words() const;

private:
    std::array<std::string, kSlots> sql_;
    std::array<std::string, kSlots> display_;
    int count_ = 0;
};

} // namespace merchantry::reports
