#include "app/db/ado/filter.h"

#include "app/db/ado/sort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace merchantry::db {
namespace {

// Five items: name, quantity, price, date sold, active.
class Filters : public testing::Test {
protected:
    static Column column(const char* name, TypeKind kind) {
        Column made;
        made.name = name;
        made.type.kind = kind;
        return made;
    }
    Filters()
        : store({column("Name", TypeKind::VarChar), column("Qty", TypeKind::Int), column("Unit Price", TypeKind::Money),
                 column("Sold", TypeKind::DateTime), column("Active", TypeKind::Bit)}) {
        add("White heart", 5, "2.50", "2026-01-05", true);
        add("RED HEART  ", 0, "3", "2026-02-01", false);
        add("O'Neill's caf\xC3\x89", -2, "0.0001", "2025-12-31 23:59", true);
        add("plain", 5, "100", "2026-01-05 10:00", true);
        store.appendEmpty();
    }
    void add(const char* name, int qty, const char* price, const char* sold, bool active) {
        const int row = store.appendEmpty();
        store.set(row, 0, name);
        store.set(row, 1, qty);
        store.set(row, 2, Currency::fromText(price));
        store.set(row, 3, *Date::fromText(sold));
        store.set(row, 4, active);
    }
    std::vector<int> rowsOf(const char* text) const {
        const Filter filter(text, store);
        std::vector<int> rows;
        for (int row = 0; row < store.rowCount(); ++row)
            if (filter.matches(row))
                rows.push_back(row);
        return rows;
    }
    std::vector<int> sortedBy(const char* text) const {
        const auto fields = parseSort(text, store);
        std::vector<int> rows(static_cast<std::size_t>(store.rowCount()));
        std::iota(rows.begin(), rows.end(), 0);
        std::stable_sort(rows.begin(), rows.end(), [&](int left, int right) {
            for (const SortField& field : fields)
                if (const int order = compareCells(store, left, right, field.column); order != 0)
                    return field.descending ? order > 0 : order < 0;
            return false;
        });
        return rows;
    }

    RowStore store;
};

using Rows = std::vector<int>;

TEST_F(Filters, FindRows) {
    const std::pair<const char*, Rows> cases[] = {
        {"Name like '%heart%'", {0, 1}},
        {"Name like '%HEART%' and Qty > 0", {0}},
        {"Name like 'white*' or Name like '%AIN'", {0, 3}},
        {"name = 'red heart'", {1}},
        {"Name like '%caf\xC3\xA9%'", {2}},
        {"Name = 'O''Neill''s caf\xC3\xA9'", {2}},
        {"Name like '%'", {0, 1, 2, 3}},
        {"Name like 'plain'", {3}},
        {"[Unit Price] >= 3", {1, 3}},
        {"[Unit Price] = 0.0001", {2}},
        {"Sold >= #1/5/2026# and Sold < #1/6/2026#", {0, 3}},
        {"Sold = '1/5/2026'", {0}},
        {"Active = true and (Qty = 5 or Qty = -2)", {0, 2, 3}},
        {"Qty <> 5", {1, 2}},
        {"Name = null", {4}},
        {"Name <> null and Qty <= 0", {1, 2}},
        {"Qty like '%5%'", {0, 3}},
    };
    for (const auto& [text, rows] : cases)
        EXPECT_EQ(rowsOf(text), rows) << text;
}

TEST_F(Filters, RefuseWhatIsNoFilter) {
    for (const char* text : {"Name like '%O'Neill%'", "Nope = 1", "Name", "Name ==", "Name = 'x", "Qty = ", "Qty = abc", "(Qty = 1",
                             "Qty = 1)", "Sold = #x#", "Sold = 'x'", "Name like x", "= 1", "Qty = 1 and", "Qty = 1 Name = 'x'"}) {
        try {
            rowsOf(text);
            ADD_FAILURE() << "accepted: " << text;
        } catch (const DbError& error) {
            EXPECT_EQ(error.hresult(), kInvalidArgument) << text;
        }
    }
}

TEST_F(Filters, SortByFieldsWithNullsFirst) {
    EXPECT_EQ(sortedBy("Name"), (Rows{4, 2, 3, 1, 0}));
    EXPECT_EQ(sortedBy("Qty DESC, Name asc"), (Rows{3, 0, 1, 2, 4}));
    EXPECT_EQ(sortedBy("[Unit Price]"), (Rows{4, 2, 0, 1, 3}));
    EXPECT_EQ(sortedBy(""), (Rows{0, 1, 2, 3, 4}));
    EXPECT_THROW(sortedBy("Nope"), DbError);
    EXPECT_THROW(sortedBy("Name,,Qty"), DbError);
}

} // namespace
} // namespace merchantry::db
