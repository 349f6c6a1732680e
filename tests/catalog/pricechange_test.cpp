#include "catalog/pricechange.h"

#include "app/db/ado/recordset.h"
#include "app/storefile.h"
#include "tests/scratchfolder.h"

#include <gtest/gtest.h>

namespace merchantry::catalog {
namespace {

constexpr int kItems = 250; // more than between two tellings of the progress

// A store in which each of the items has one price, 2.
class PriceChangeTest : public testing::Test {
protected:
    PriceChangeTest() {
        const auto file = folder_.path() / "prices.store";
        app::createStoreFile(file, {}, [](int) {});
        connection->Open("Data Source=" + file.string());
        for (int item = 0; item < kItems; ++item) {
            const std::string code = "A" + std::to_string(item);
            connection->Execute(db::Sql("bsp_NewItem '") + code + "', '" + code + "'");
            steps.push_back({code, code, 1, 1, Currency::fromInteger(2), Currency::fromInteger(3)});
        }
        connection->Execute("UPDATE PriceMatrix SET Price = 2");
    }

    std::string sum() { return (*connection->Execute("SELECT SUM(Price) FROM PriceMatrix"))[0].text(); }
    std::string kept() { return (*connection->Execute("SELECT COUNT(*) FROM PriceChangeItem"))[0].text(); }
    int change() { return static_cast<int>((*connection->Execute("SELECT MAX(PriceChangeID) FROM PriceChange"))[0].Value().toInteger()); }

    ScratchFolder folder_;
    db::Provider provider_;
    db::ConnectionPtr connection = std::make_shared<db::Connection>(provider_);
    std::vector<PriceStep> steps;
};

} // namespace

TEST_F(PriceChangeTest, WritesAllAndPutsAllBack) {
    int told = 0;
    const PriceOutcome made = changePrices(connection, "Retail: +$1", steps, [&](int done) {
        told = done;
        return true;
    });
    EXPECT_EQ(made.written, kItems);
    EXPECT_EQ(told, kItems);
    EXPECT_EQ(sum(), "750");
    const PriceOutcome undone = undoPriceChange(connection, change(), [](int) { return true; });
    EXPECT_EQ(undone.written, kItems);
    EXPECT_EQ(sum(), "500");
    EXPECT_TRUE(undoPriceChange(connection, change(), [](int) { return true; }).stopped) << "it was undone before";
    EXPECT_EQ(sum(), "500");
}

TEST_F(PriceChangeTest, StoppedHalfWayNothingIsWritten) {
    const auto half = [](int done) { return done < kItems / 2; };
    EXPECT_TRUE(changePrices(connection, "", steps, half).stopped);
    EXPECT_EQ(sum(), "500");
    EXPECT_EQ(kept(), "0");
    changePrices(connection, "", steps, [](int) { return true; });
    EXPECT_TRUE(undoPriceChange(connection, change(), half).stopped);
    EXPECT_EQ(sum(), "750");
    EXPECT_EQ(undoPriceChange(connection, change(), [](int) { return true; }).written, kItems) << "the stop left it to be undone";
}

TEST_F(PriceChangeTest, LeavesAloneWhatSomeoneElseChanged) {
    connection->Execute("UPDATE PriceMatrix SET Price = 5 WHERE SKU = 'A7' DELETE FROM Item WHERE SKU = 'A8'");
    const PriceOutcome made = changePrices(connection, "", steps, [](int) { return true; });
    EXPECT_EQ(made.written, kItems - 2);
    ASSERT_EQ(made.skipped.size(), 2U);
    EXPECT_EQ(made.skipped[0].sku, "A7");
    connection->Execute("UPDATE PriceMatrix SET Price = 4 WHERE SKU = 'A9'");
    const PriceOutcome undone = undoPriceChange(connection, change(), [](int) { return true; });
    EXPECT_EQ(undone.written, kItems - 3);
    ASSERT_EQ(undone.skipped.size(), 1U);
    EXPECT_EQ(undone.skipped[0].sku, "A9");
    EXPECT_EQ((*connection->Execute("SELECT Price FROM PriceMatrix WHERE SKU = 'A9'"))[0].text(), "4");
}

TEST_F(PriceChangeTest, AnUndoOutOfOrderCanBeTriedAgain) {
    const auto go = [](int) { return true; };
    changePrices(connection, "first", steps, go);
    const int first = change();
    for (PriceStep& step : steps)
        step = {step.sku, step.matrixSku, 1, 1, step.to, Currency::fromInteger(4)};
    changePrices(connection, "second", steps, go);
    EXPECT_EQ(undoPriceChange(connection, first, go).written, 0);
    EXPECT_EQ(undoPriceChange(connection, change(), go).written, kItems);
    EXPECT_EQ(undoPriceChange(connection, first, go).written, kItems);
    EXPECT_EQ(sum(), "500");
}

TEST_F(PriceChangeTest, AChangeOfNothingLeavesNoTrace) {
    connection->Execute("UPDATE PriceMatrix SET Price = 5");
    EXPECT_EQ(changePrices(connection, "", steps, [](int) { return true; }).written, 0);
    EXPECT_EQ((*connection->Execute("SELECT COUNT(*) FROM PriceChange"))[0].text(), "0");
}

} // namespace merchantry::catalog
