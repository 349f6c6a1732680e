#include "catalog/suppliermatrix.h"

#include "catalog/itemscreen.h"

#include <gtest/gtest.h>

namespace merchantry::catalog {
namespace {

SupplierRow row(std::int16_t supplier, const char* cost, std::int16_t priority) {
    SupplierRow made;
    made.SupID = made.OldSupID = supplier;
    made.Cost = made.OldCost = Currency::fromText(cost);
    made.Priority = priority;
    made.InDatabase = true;
    return made;
}

std::string faultOf(const std::vector<SupplierRow>& rows) {
    std::vector<const SupplierRow*> shown;
    for (const SupplierRow& one : rows)
        shown.push_back(&one);
    const auto fault = faultIn(shown);
    return fault ? std::to_string(fault->row) + ": " + fault->message : "";
}

} // namespace

TEST(SupplierMatrix, RenumberingSkipsDeletedRowsAndMarksOnlyWhatChanges) {
    std::vector<SupplierRow> rows{row(1, "1", 1), row(2, "2", 2), row(3, "3", 5), row(4, "4", 3)};
    rows[1].Deleted = true;
    renumber(rows);
    const int priorities[] = {1, 2, 2, 3};
    const bool dirty[] = {false, false, true, false};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].Priority, priorities[i]) << i;
        EXPECT_EQ(rows[i].Dirty, dirty[i]) << i;
    }
}

TEST(SupplierMatrix, ExchangedRowsTakeTheirKeysAlongAndLeaveTheirPriorities) {
    SupplierRow saved = row(1, "1.25", 1);
    SupplierRow added = row(2, "2", 2);
    added.InDatabase = false;
    saved.Cost = Currency::fromText("9");
    exchange(saved, added);
    EXPECT_EQ(saved.SupID, 2);
    EXPECT_FALSE(saved.InDatabase);
    EXPECT_EQ(saved.Priority, 1);
    EXPECT_EQ(added.OldCost, Currency::fromText("1.25"));
    EXPECT_EQ(added.Cost, Currency::fromText("9"));
    EXPECT_EQ(added.Priority, 2);
    EXPECT_TRUE(saved.Dirty && added.Dirty);
}

// "0 2>1 ..." are the steps: the row's place, and ">" for one that steps aside.
std::string steps(std::initializer_list<std::pair<const char*, const char*>> oldAndNew) {
    std::vector<SupplierRow> rows;
    for (const auto& [old, cost] : oldAndNew) {
        SupplierRow one = row(1, cost, 1);
        one.OldSupID = 1;
        one.OldCost = Currency::fromText(old);
        one.InDatabase = one.Dirty = true;
        rows.push_back(one);
    }
    std::string text;
    for (const SupplierStep& step : stepsToWrite(rows))
        text += std::to_string(step.row) + (step.parked ? "> " : " ");
    return text;
}

TEST(SupplierMatrix, NoRowIsWrittenOntoAKeyThatAnotherOneStillHolds) {
    EXPECT_EQ(steps({{"2", "2.5"}, {"2.5", "3"}}), "1 0 "); // both rise
    EXPECT_EQ(steps({{"2.5", "2"}, {"3", "2.5"}}), "0 1 "); // both fall
    EXPECT_EQ(steps({{"2", "3"}, {"3", "2"}}), "0> 1 0 ");  // they exchange
    EXPECT_EQ(steps({{"2", "2"}, {"3", "3"}}), "0 1 ");
}

TEST(SupplierMatrix, TheFirstFaultIsTold) {
    EXPECT_EQ(faultOf({}), "");
    EXPECT_EQ(faultOf({row(1, "1", 1), row(1, "1.0001", 2), row(2, "1", 3)}), "");
    EXPECT_EQ(faultOf({row(1, "1", 1), row(0, "1", 2)}), "2: Supplier is not specified in row 2.");
    EXPECT_EQ(faultOf({row(1, "1", 1), row(2, "1", 2), row(1, "1.0000", 3), row(0, "1", 4)}),
              "1: Duplicate supplier/cost combination is detected in rows 1 and 3.");
}

TEST(ValueBefore, ZeroAndWordsDoNotTakeThePlaceOfTheLastValue) {
    ValueBefore before;
    before.remember("0");
    EXPECT_EQ(before.last.toText(), "0");
    before.remember("$1,250.5");
    EXPECT_EQ(before.last.toText(), "1250.5");
    before.remember("");
    before.remember("cheap");
    EXPECT_EQ(before.last.toText(), "1250.5");
    before.remember("2");
    before.remember("0.00");
    EXPECT_EQ(before.last.toText(), "2");
}

} // namespace merchantry::catalog
