#include "app/failure.h"
#include "reports/conditions.h"
#include "reports/keptcriteria.h"
#include "tests/scratchfolder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace merchantry::reports {
namespace {

const CriteriaField kName{"Item.Name", "Name", false};
const CriteriaField kDay{"[Transaction].Time", "Date", true};

// Adds "Name = text" as the screen does with the grid on that row.
Criteria::Placed add(Criteria& criteria, const std::string& text, int row, bool useAnd = true, const std::string& rowText = "") {
    return criteria.add({"Item.Name = '" + text + "'", "Name = " + text, useAnd, row, rowText});
}

} // namespace

TEST(Conditions, EveryOperatorOnADate) {
    const struct {
        const char* comparison;
        const char* expected;
    } cases[] = {
        {"=", "([Transaction].Time >= '3/1/2004') AND ([Transaction].Time <= '3/1/2004 11:59:59 PM')"},
        {"<>", "([Transaction].Time < '3/1/2004') OR ([Transaction].Time > '3/1/2004 11:59:59 PM')"},
        {">", "[Transaction].Time > '3/1/2004 11:59:59 PM'"},
        {"<", "[Transaction].Time < '3/1/2004'"},
        {">=", "[Transaction].Time >= '3/1/2004'"},
        {"<=", "[Transaction].Time <= '3/1/2004 11:59:59 PM'"},
        {"Like", ""},
    };
    for (const auto& one : cases)
        EXPECT_EQ(expressionFor(kDay, "Date", one.comparison, "03/01/2004"), one.expected) << one.comparison;
    // A time of day moves both ends.
    EXPECT_EQ(expressionFor(kDay, "Date", ">=", "12/31/2003 1:05 PM"), "[Transaction].Time >= '12/31/2003 1:05:00 PM'");
    EXPECT_EQ(expressionFor(kDay, "Date", "<=", "2/28/2004 12:00:01 AM"), "[Transaction].Time <= '2/29/2004'");
    for (const char* wrong : {"soon", "2/30/2004", "13/1/2004"})
        EXPECT_THROW(expressionFor(kDay, "Date", "=", wrong), app::RunTimeError) << wrong;
}

TEST(Conditions, AFieldIsANumberByItsShownName) {
    for (const char* comparison : {"=", "<>", ">", "<", ">=", "<=", "Like"}) {
        const std::string sign = comparison;
        EXPECT_EQ(expressionFor(kName, "Name", sign, "Hat%"), "Item.Name " + sign + " 'Hat%'");
        EXPECT_EQ(expressionFor({"Stock.Quantity", "Stock.Quantity", false}, "Stock.Quantity", sign, "5"), "Stock.Quantity " + sign + " 5");
    }
    // The same column under a name of its own is a text to the list; a date column of a numeric name takes the date's way.
    EXPECT_EQ(expressionFor({"Stock.Quantity", "In stock", false}, "In stock", "=", "5"), "Stock.Quantity = '5'");
    EXPECT_EQ(expressionFor({"Customer.LastPurchase", "LastPurchaseDate", true}, "LastPurchaseDate", "<", "1/2/2005"),
              "Customer.LastPurchase < '1/2/2005'");
    EXPECT_EQ(expressionFor(kName, "Name", "=", "O'Neil"), "Item.Name = 'O'Neil'"); // not escaped: the store refuses it
}

TEST(Conditions, ConnectorsAndMerging) {
    Criteria criteria;
    EXPECT_EQ(add(criteria, "A", 1, false).text, "(Name = A)"); // the first has no connector
    EXPECT_EQ(add(criteria, "B", 2).text, "AND (Name = B)");
    EXPECT_EQ(add(criteria, "C", 3, false).text, "OR (Name = C)");
    EXPECT_EQ(criteria.sql(2), "OR (Item.Name = 'C')");
    // A row that is filled takes the condition in: its words become SQL, the new part shows as SQL.
    const Criteria::Placed merged = add(criteria, "D", 3, true, "OR (Name = C)");
    EXPECT_EQ(merged.row, 3);
    EXPECT_EQ(merged.text, "OR (() AND (Item.Name = 'D'))");
    EXPECT_EQ(criteria.sql(2), "OR ((Name = C) AND (Item.Name = 'D'))");
    EXPECT_EQ(add(criteria, "E", 1, false, "(Name = A)").text, "(() OR (Item.Name = 'E'))");
    EXPECT_EQ(criteria.sql(0), "((Name = A) OR (Item.Name = 'E'))");
    EXPECT_EQ(criteria.count(), 3);
    // Merged once more, what stands between the first brackets is "(".
    EXPECT_EQ(add(criteria, "F", 1, true, criteria.display(0)).text, "(() AND (Item.Name = 'F'))");
    EXPECT_EQ(criteria.sql(0), "((() AND (Item.Name = 'F'))");
    EXPECT_EQ(criteria.words(), "((() AND (Item.Name = 'F')) AND (Name = B) OR ((Name = C) AND (Item.Name = 'D'))");
}

TEST(Conditions, DeletingClosesTheGap) {
    Criteria criteria;
    for (int row = 1; row <= 3; ++row)
        add(criteria, std::string(1, static_cast<char>('A' + row - 1)), row, row < 3);
    EXPECT_FALSE(criteria.remove(2));
    EXPECT_EQ(criteria.count(), 2);
    EXPECT_EQ(criteria.sql(1), "OR (Item.Name = 'C')");
    EXPECT_EQ(criteria.display(1), "OR (Name = C)");
    EXPECT_TRUE(criteria.remove(1)); // the new first one loses its connector
    EXPECT_EQ(criteria.sql(0), "(Item.Name = 'C')");
    EXPECT_EQ(criteria.display(0), "(Name = C)");
    EXPECT_EQ(criteria.sql(1), "");
    add(criteria, "D", 2);
    EXPECT_TRUE(criteria.remove(1));
    EXPECT_EQ(criteria.sql(0), " (Item.Name = 'D')"); // three characters of "AND " leave one blank
    EXPECT_FALSE(criteria.remove(1));
    EXPECT_EQ(criteria.count(), 0);
}

TEST(Conditions, FortyNineHaveRoom) {
    Criteria criteria;
    for (int row = 1; row <= Criteria::kMost; ++row)
        EXPECT_EQ(add(criteria, "X", row).row, row);
    EXPECT_EQ(criteria.count(), 49);
    EXPECT_EQ(criteria.sql(48), "AND (Item.Name = 'X')");
    EXPECT_EQ(criteria.sql(49), "");
}

TEST(KeptCriteria, ComeBackAsTheyWereKept) {
    const ScratchFolder folder;
    const auto file = folder / "config" / "criteria.toml";
    EXPECT_TRUE(CriteriaStore(file).of("DeptSales").empty());
    EXPECT_FALSE(std::filesystem::exists(file)); // looking keeps nothing
    CriteriaStore store(file);
    store.put({"DeptSales", "toys", {"(A = '1')", "AND (B = \"x\")"}, {"(a = 1)", "AND (b = x)"}, "Name", false});
    store.put({"DeptSales", "All", {}, {}, "", true});
    store.put({"DeptSales", "Toys", {"(C = 'ü')"}, {"(c = ü)"}, "Sold", true}); // in place of "toys"
    store.put({"DailySales", "Toys", {}, {}, "", true});
    const auto found = CriteriaStore(file).of("DeptSales");
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].name, "All");
    EXPECT_EQ(found[1].sql, std::vector<std::string>{"(C = 'ü')"});
    EXPECT_EQ(found[1].display, std::vector<std::string>{"(c = ü)"});
    EXPECT_EQ(found[1].sortBy, "Sold");
    EXPECT_TRUE(found[1].ascending);
    store.remove("DeptSales", "TOYS");
    EXPECT_EQ(CriteriaStore(file).of("DeptSales").size(), 1u);
    EXPECT_EQ(CriteriaStore(file).of("DailySales").size(), 1u);
    std::ofstream(file) << "Criteria = 3";
    EXPECT_THROW(CriteriaStore{file}, std::runtime_error);
}

} // namespace merchantry::reports
