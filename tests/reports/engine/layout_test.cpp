#include "reports/engine/layout.h"

#include "app/db/embedded/store.h"
#include "reports/engine/reportrows.h"
#include "tests/reports/engine/pagetext.h"

#include <gtest/gtest.h>

namespace merchantry::reports {
namespace {

// A report over sales of a few departments, laid out with letters of one width.
class Layouts : public testing::Test {
protected:
    Layouts() {
        session->setReadOnly(false);
        db::NoResult none;
        session->execute("CREATE TABLE Sold (Department varchar(20), Item varchar(40), Units int, Amount money, Cost money)", none);
    }
    void sell(const std::string& values) {
        db::NoResult none;
        session->execute("INSERT INTO Sold VALUES " + values, none);
    }
    Layout& layOut(const std::string& text) {
        definition = parseDefinition(text, "sold.rpt");
        rows = readRows(*session, "SELECT * FROM Sold ORDER BY Department, Item");
        outline = std::make_unique<Outline>(definition, *rows);
        layout = std::make_unique<Layout>(*outline, measure, PageHead{"Corner Store", "Department = Toys", *Date::fromText("11/21/2026")});
        while (!layout->layOut(1)) {
        }
        return *layout;
    }

    std::shared_ptr<db::Store> store = db::Store::scratch();
    std::unique_ptr<db::Session> session = store->session();
    ui::FixedMeasure measure;
    Definition definition;
    std::unique_ptr<db::RowStore> rows;
    std::unique_ptr<Outline> outline;
    std::unique_ptr<Layout> layout;
};

const char* const kReport = R"(title = "Sold"
[query]
sql = "SELECT 1"
[[column]]
field = "Item"
width = 30
[[column]]
field = "Units"
total = "sum"
running = "group"
[[column]]
field = "Amount"
total = "sum"
[[column]]
field = "Amount"
title = "Share"
share = "group"
[[column]]
expression = "(Amount - Cost) / Amount"
title = "Margin"
format = "percent"
[[group]]
field = "Department"
header = "{Department}"
footer = "Total {Department}"
)";

TEST_F(Layouts, AGroupCanBeALetterWithASlipAtTheFoot) {
    sell("('Toys', 'Ball', 2, 10, 4), ('Food', 'Jam', 3, 12, 4), ('Food', 'Tea', 1, 2, 1)");
    layOut(R"(title = "Letters"
[query]
sql = "SELECT 1"
[page]
grand_total = ""
[[column]]
field = "Item"
[[column]]
field = "Amount"
total = "sum"
[[group]]
field = "Department"
header = "{Department}"
footer = "Sum"
page_break = true
top = 2
head = [{ text = "To {Department}" }, { text = "Dated", right = true }]
below = [{ text = "Thank you, {Department}." }]
slip = [{ text = "Return this." }]
)");
    ASSERT_EQ(layout->count(), 2);
    for (const int number : {0, 1}) {
        const std::string text = pageText(layout->page(number));
        const std::string name = number == 0 ? "Food" : "Toys";
        std::size_t at = 0;
        for (const std::string& expected : {"To " + name, std::string("Dated"), std::string("Item"), std::string("Sum"),
                                            "Thank you, " + name + ".", std::string("----\n       Return this.")}) {
            const std::size_t found = text.find(expected, at);
            ASSERT_NE(found, std::string::npos) << expected << " in\n" << text;
            at = found;
        }
        for (const ui::PageItem& item : layout->page(number).items) {
            EXPECT_TRUE(item.text != "To " + name || item.y == 2 * 1440) << item.y;
            EXPECT_TRUE(item.text != "Return this." || item.y > 9 * 1440) << item.y;
        }
    }
}

// The pages of a run of letters counted on through all of them, and only the first of them had the title.
TEST_F(Layouts, EachLetterCountsItsOwnPagesAndBeginsWithTheTitle) {
    std::string sold = "('Toys', 'Ball', 2, 10, 4), ('Zoo', 'Bear', 1, 5, 4)";
    for (int i = 0; i < 90; ++i)
        sold += ", ('Food', 'Jam', 3, 12, 4)";
    sell(sold);
    layOut(R"(title = "Letters"
[query]
sql = "SELECT 1"
[page]
grand_total = ""
[[column]]
field = "Item"
[[group]]
field = "Department"
header = "{Department}"
page_break = true
letter = "{Department}/{Units:number}"
top = 2
head = [{ text = "To {Department}" }]
)");
    ASSERT_EQ(layout->count(), 4);
    const char* const feet[] = {"Page 1 of 2", "Page 2 of 2", "Page 1 of 1", "Page 1 of 1"};
    for (const int number : {0, 1, 2, 3}) {
        const ui::Page page = layout->page(number);
        const auto has = [&](const std::string& words, int least) {
            return std::any_of(page.items.begin(), page.items.end(),
                               [&](const ui::PageItem& item) { return item.text == words && item.halfPoints >= least; });
        };
        EXPECT_TRUE(has(feet[number], 0)) << number << "\n" << pageText(page);
        EXPECT_EQ(has("Letters", 30), number != 1) << number;
        EXPECT_TRUE(has("Letters", 0)) << number;
    }
    const std::vector<Letter> letters = layout->letters();
    ASSERT_EQ(letters.size(), 3U);
    EXPECT_EQ(letters[0].last, 1);
    EXPECT_EQ(letters[1].first, 2);
    EXPECT_EQ(letters[1].name, "Toys/2");
    EXPECT_TRUE(layOut(kReport).letters().empty());
}

TEST_F(Layouts, GroupsAddUpAndMarginsComeFromTotals) {
    sell("('Toys', 'Ball', 2, 10, 4), ('Toys', 'Kite', 1, 30, 21), ('Food', 'Jam', 3, 12.3456, 12.3456), ('Food', NULL, NULL, NULL, NULL)");
    const std::string page = pageText(layOut(kReport).page(0));
    EXPECT_EQ(layout->count(), 1);
    for (const char* expected : {"Corner Store", "Sold", "Department = Toys", "Page 1 of 1", "11/21/2026"})
        EXPECT_NE(page.find(expected), std::string::npos) << expected << " in\n" << page;
    const std::size_t body = page.find("Item");
    ASSERT_NE(body, std::string::npos);
    EXPECT_EQ(page.substr(body, page.find("       11/21/2026") - body),
              "Item                                     Units        Amount        Share        Margin\n"
              "----\n"
              "       Food\n"
              "                                                    0\n"
              "       Jam                                          3        $12.35       100.0%          0.0%\n"
              "----\n"
              "       Total Food                                   3        $12.35        23.6%          0.0%\n"
              "       Toys\n"
              "       Ball                                         2        $10.00        25.0%         60.0%\n"
              "       Kite                                         3        $30.00        75.0%         30.0%\n"
              "----\n"
              "       Total Toys                                   3        $40.00        76.4%         37.5%\n"
              "----\n"
              "----\n"
              "       Total                                        6        $52.35       100.0%         28.7%\n");
    ASSERT_EQ(layout->tree().size(), 2U);
    EXPECT_EQ(layout->tree()[1].text, "Toys");
}

TEST_F(Layouts, EveryRowStandsOnOnePageAndPagesCanBeDrawnInAnyOrder) {
    std::string values;
    for (int i = 0; i < 400; ++i)
        values +=
            std::string(i > 0 ? ", " : "") + "('D" + std::to_string(10 + i / 37) + "', 'Item" + std::to_string(1000 + i) + "', 1, 2.5, 1)";
    sell(values);
    layOut("subtitle = \"From {Department} on\"\n" + std::string(kReport));
    ASSERT_GT(layout->count(), 5);
    std::string all;
    std::vector<std::string> pages;
    for (int number = layout->count(); number-- > 0;)
        pages.insert(pages.begin(), pageText(layout->page(number)));
    for (const std::string& page : pages)
        all += page;
    for (int i = 0; i < 400; ++i) {
        const std::string item = "Item" + std::to_string(1000 + i);
        EXPECT_NE(all.find(item), std::string::npos) << item;
        EXPECT_EQ(all.find(item, all.find(item) + 1), std::string::npos) << item << " stands twice";
    }
    EXPECT_NE(pages[1].find("(continued)"), std::string::npos);
    EXPECT_NE(pages[1].find("Sold, From D10 on"), std::string::npos) << pages[1]; // loose pages tell whose they are
    EXPECT_NE(pages.back().find("$1,000.00"), std::string::npos) << pages.back();
    // A header never stands last on its page.
    for (const ui::PageBranch& entry : layout->tree()) {
        const std::string& page = pages[static_cast<std::size_t>(entry.page)];
        EXPECT_NE(page.find("Item1", page.find(entry.text)), std::string::npos) << entry.text << "\n" << page;
    }
}

// A form's head: a line without anything to tell leaves no gap, one that was meant as a gap does.
TEST_F(Layouts, EmptyLinesOfAHeadAreLeftOut) {
    sell("('Toys', '', 1, 1, 1)");
    const auto headOf = [&](const std::string& between) {
        const ui::Page page =
            layOut(std::string(kReport) + "[[header]]\ntext = \"First\"\n" + between + "[[header]]\ntext = \"Last\"\n").page(0);
        std::map<std::string, int> places;
        for (const ui::PageItem& item : page.items)
            places[item.text] = item.y;
        return places["Last"] - places["First"];
    };
    const int close = headOf("");
    EXPECT_GT(close, 0);
    EXPECT_EQ(headOf("[[header]]\ntext = \"{Item}\"\n"), close);
    EXPECT_EQ(headOf("[[header]]\ntext = \" \"\n"), 2 * close);
}

TEST_F(Layouts, AReportWithoutRowsSaysSo) {
    const std::string page = pageText(layOut(kReport).page(0));
    EXPECT_NE(page.find("Nothing was found."), std::string::npos);
    EXPECT_EQ(page.find("Total"), std::string::npos);
    EXPECT_EQ(layout->count(), 1);
}

TEST_F(Layouts, AFieldThatTheQueryLacksIsToldWithItsLine) {
    for (const char* part : {"[[column]]\nfield = 'Price'\n", "[[group]]\nfield = 'Price'\n", "[[column]]\nexpression = 'Amount - Price'\n",
                             "[[group]]\nfield = 'Item'\nheader = '{Price}'\n", "[[chart]]\nlabel = 'Item'\nvalue = 'Price'\n"})
        try {
            layOut(std::string("title = 'T'\n[query]\nsql = 'SELECT 1'\n[[column]]\nfield = 'Item'\n") + part);
            ADD_FAILURE() << part;
        } catch (const DefinitionError& error) {
            EXPECT_NE(std::string(error.what()).find("sold.rpt:6: The query has no column \"Price\"."), std::string::npos) << error.what();
        }
}

} // namespace
} // namespace merchantry::reports
