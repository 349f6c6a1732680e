#include "reports/listing/listing.h"

#include "base/tomltable.h"
#include "tests/scratchfolder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace merchantry::reports {
namespace {

const std::string kSales = "[listing]\nkey = 'Sales'\nmenu = 'mnuRptSales'\nplace = 1\ncommand = 'mnuSales'\ncaption = 'Sales'\n";

class Listings : public testing::Test {
protected:
    void put(const std::string& file, const std::string& text) { std::ofstream(folder_ / file) << text; }
    std::string refusal() {
        try {
            readListings(folder_.path());
            return "";
        } catch (const toml::FileError& error) {
            return error.what();
        }
    }

    ScratchFolder folder_;
};

TEST_F(Listings, AreReadFromTheirFiles) {
    put("Sales.rpt", "title = 'Sales'\n" + kSales + "viewer_tools = false\ncriteria = [{ name = 'Day', field = 'T.Time', date = true }]\n");
    put("Big.rpt", "[prints_labels]\nprinter = 'Roll'\nquantity = 'Stock'\nplace = 3\n");
    put("notes.txt", "= no report");
    const auto files = readListings(folder_.path());
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files[0].labels->printer + files[0].labels->quantity + std::to_string(files[0].labels->place), "RollStock3");
    const Listing& listing = files[1].listing.value();
    EXPECT_EQ(listing.key + " " + listing.menu + " " + listing.command, "Sales mnuRptSales mnuSales");
    EXPECT_FALSE(listing.viewerTools);
    ASSERT_EQ(listing.criteria.size(), 1U);
    EXPECT_EQ(listing.criteria[0].name + listing.criteria[0].field, "DayT.Time");
    EXPECT_TRUE(listing.criteria[0].date);
}

TEST_F(Listings, WithMistakesAreRefusedByLine) {
    const std::pair<std::string, std::string> cases[] = {
        {"[listing]\nkey = 'Sales'\n", "Sales.rpt:1: [listing] wants its \"menu\"."},
        {kSales + "colour = 'red'\n", "Sales.rpt:7: \"colour\" means nothing in [listing]."},
        {kSales + "criteria = [{ name = 'Day' }]\n", "Sales.rpt:7: a criterion wants its \"field\"."},
        {"[prints_labels]\nprinter = 'Roll'\nquantity = 'Stock'\n", "Sales.rpt:1: It wants its \"place\"."},
    };
    for (const auto& [text, says] : cases) {
        put("Sales.rpt", text);
        EXPECT_EQ(refusal(), says);
    }
}

TEST_F(Listings, OfTwoReportsTakeNothingFromEachOther) {
    put("First.rpt", kSales);
    put("Second.rpt", kSales);
    EXPECT_EQ(refusal(), "Second.rpt: The key Sales is taken by First.rpt.");
    put("Second.rpt", "[listing]\nkey = 'Other'\nmenu = 'mnuRptSales'\nplace = 1\ncommand = 'mnuOther'\ncaption = 'Other'\n");
    EXPECT_EQ(refusal(), "Second.rpt: Place 1 of mnuRptSales is taken by First.rpt.");
}

} // namespace
} // namespace merchantry::reports
