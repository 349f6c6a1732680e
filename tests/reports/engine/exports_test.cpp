#include "base/text.h"
#include "reports/engine/exports.h"

#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"
#include "reports/engine/barcode.h"
#include "reports/engine/labels.h"
#include "tests/scratchfolder.h"

#include <gtest/gtest.h>

#include <numeric>
#include <sstream>

namespace merchantry::reports {
namespace {

const char* const kReport = R"(title = "Goods <all>"
[query]
sql = "SELECT * FROM Goods {where}{order}"
order = "Name"
[[column]]
field = "Name"
title = "Item\nname"
[[column]]
field = "Units"
total = "sum"
[[column]]
field = "Price"
[[column]]
field = "Came"
[[column]]
expression = "Units * Price"
title = "Worth"
format = "money"
[[column]]
field = "Units"
title = "So far"
running = "group"
[[column]]
field = "Price"
title = "% of kind"
share = "group"
[[group]]
field = "Kind"
order = "Goods.Kind"
header = "{Kind}"
footer = "All {Kind}"
)";

class Exports : public testing::Test {
protected:
    Exports() {
        db::createSchema(*session);
        db::NoResult none;
        session->execute(
            "CREATE TABLE Goods (Kind varchar(9), Name varchar(40), Units int, Price money, Came datetime) "
            "INSERT INTO Goods VALUES ('A', 'Cup, \"tall\"', 2, 1.25, '2026-11-21 14:30:00'), ('A', 'Ümlaut & Söhne', NULL, 3, NULL), "
            "('B', 'Line' + CHAR(13) + CHAR(10) + 'break', -4, 0.5, '2026-11-20')",
            none);
    }
    std::unique_ptr<Report> report(const ParameterTexts& parameters = {}) const {
        return Report::run(*store->session(), parseDefinition(kReport, "goods.rpt"), parameters);
    }

    std::shared_ptr<db::Store> store = db::Store::scratch();
    std::unique_ptr<db::Session> session = store->session();
};

TEST_F(Exports, ValuesKeepTheirQuotesAndCarryTheirCriteria) {
    std::ostringstream out;
    EXPECT_TRUE(writeCsv(*report(), out));
    EXPECT_EQ(out.str(), "Group,Item name,Units,Price,Came,Worth,So far,% of kind\r\n"
                         "A,\"Cup, \"\"tall\"\"\",2,1.25,2026-11-21 14:30:00,2.5,2,0.29411765\r\n"
                         "A,Ümlaut & Söhne,,3,,,2,0.70588235\r\n"
                         "B,\"Line\r\nbreak\",-4,0.5,2026-11-20 00:00:00,-2,-4,1\r\n");
    std::ostringstream filtered;
    EXPECT_TRUE(writeCsv(*report({"WHERE (Goods.Kind = 'A')", "Goods.Units", " DESC"}), filtered));
    EXPECT_EQ(filtered.str(), "Group,Item name,Units,Price,Came,Worth,So far,% of kind,Criteria\r\n"
                              "A,\"Cup, \"\"tall\"\"\",2,1.25,2026-11-21 14:30:00,2.5,2,0.29411765,(Goods.Kind = 'A')\r\n"
                              "A,Ümlaut & Söhne,,3,,,2,0.70588235,\r\n");
    std::ostringstream stopped;
    EXPECT_FALSE(writeCsv(*report(), stopped, [](int) { return false; }));
}

TEST_F(Exports, NoSpreadsheetRunsWhatSomebodyTyped) {
    db::NoResult none;
    session->execute("DELETE FROM Goods INSERT INTO Goods VALUES ('=1+1', '@cmd', -2, -1.5, NULL), ('B', '-5', 1, 1, NULL)", none);
    std::ostringstream out;
    EXPECT_TRUE(writeCsv(*report(), out));
    const std::string text = out.str();
    EXPECT_NE(text.find("\r\n'=1+1,'@cmd,-2,-1.5,"), std::string::npos) << text; // numbers stay numbers
    EXPECT_NE(text.find("\r\nB,-5,1,1,"), std::string::npos) << text;
}

// The cell of a nameless row counts no row, and a figure that no row has is not 0.
TEST_F(Exports, TotalsLeaveOutWhatIsNotThere) {
    db::NoResult none;
    session->execute("UPDATE Goods SET Name = CASE Units WHEN 2 THEN ' ' WHEN -4 THEN 'Cup' END UPDATE Goods SET Units = NULL", none);
    const auto definition = parseDefinition(replaced(kReport, "title = \"Item\\nname\"", "total = \"count\""), "goods.rpt");
    const auto made = Report::run(*store->session(), definition, {});
    const Outline& outline = made->outline();
    const auto totals = outline.totals(outline.grand(), outline.grand());
    EXPECT_EQ(totals[0], "1");
    EXPECT_EQ(totals[4], ""); // worth of pieces that are not known
}

TEST_F(Exports, TheWebPageHasGroupsAndNothingThatABrowserWouldTakeForMarks) {
    std::ostringstream out;
    EXPECT_TRUE(writeHtml(*report(), out));
    const std::string page = out.str();
    for (const char* part :
         {"<h1>Goods &lt;all&gt;</h1>", "<td>Ümlaut &amp; Söhne</td>", "<tr class=\"h\"><td colspan=\"7\">A</td></tr>",
          "<tr class=\"f\"><td colspan=\"1\">All B</td><td class=\"n\">-4</td>", "<tr class=\"t\"><td colspan=\"1\">Total</td>"})
        EXPECT_NE(page.find(part), std::string::npos) << part << "\n" << page;
}

// A purchase order without the supplier would be none.
TEST_F(Exports, TheWebPageHasTheHeadAndFootOfAForm) {
    const std::string text = "subtitle = 'From {Kind}'\n" + std::string(kReport) +
                             "[[header]]\ntext = 'To {Name}'\nbold = true\n[[header]]\ntext = '{Came:date}'\nright = true\n" +
                             "[[header]]\ntext = '{Empty}'\n[[footer]]\ntext = 'Signed'\n";
    const auto pageOf = [&](const std::string& where) {
        std::string form = text;
        form.replace(form.find("SELECT *"), 8, "SELECT *, '' AS Empty");
        std::ostringstream out;
        EXPECT_TRUE(writeHtml(*Report::run(*store->session(), parseDefinition(form, "form.rpt"), {where}), out));
        return out.str();
    };
    const std::string page = pageOf("");
    for (const char* part : {"</h1>\n<h2>From A</h2>\n<p>", "<div><b>To Cup, \"tall\"</b><br></div><div>11/21/2026<br></div>",
                             "</table>\n<div class=\"b\"><div>Signed<br>"})
        EXPECT_NE(page.find(part), std::string::npos) << part << "\n" << page;
    EXPECT_NE(pageOf("WHERE 1 = 0").find("</table>\n<p>Nothing was found.</p>\n</body>"), std::string::npos);
}

TEST_F(Exports, AWorkbookComesWholeOrNotAtAll) {
    const ScratchFolder folder;
    const auto file = folder / "goods.xlsx";
    EXPECT_TRUE(writeWorkbook(*report(), file));
    EXPECT_GT(std::filesystem::file_size(file), 4000U);
    EXPECT_FALSE(writeWorkbook(*report(), folder / "stopped.xlsx", [](int) { return false; }));
    EXPECT_THROW(writeWorkbook(*report(), folder / "none" / "goods.xlsx"), std::exception);
    int files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path()))
        ++files;
    EXPECT_EQ(files, 1);
}

TEST(Barcodes, CodesAreCarriedOrRefused) {
    struct Case {
        const char* code;
        BarcodeKind kind;
        int modules; // 0: refused
    };
    // Modules: EAN-13 and UPC-A have 95; Code 128 has 11 a sign, with start, check and a stop of 13; Code 39 has 13 a sign here.
    const Case cases[] = {
        {"4006381333931", BarcodeKind::Auto, 95},
        {"036000291452", BarcodeKind::Auto, 95},
        {"4006381333932", BarcodeKind::Auto, 11 * 10 + 13}, // a wrong check digit: six pairs, and one digit behind a change of set
        {"4006381333932", BarcodeKind::Ean13, 0},
        {"12345", BarcodeKind::Ean13, 0},
        {"A-1", BarcodeKind::UpcA, 0},
        {"", BarcodeKind::Code128, 0},
        {"ÄÖ€", BarcodeKind::Code39, 0},
        {"AB", BarcodeKind::Code128, 11 * 5 + 2}};
    for (const Case& test : cases) {
        const auto bars = barsOf(test.code, test.kind);
        EXPECT_EQ(bars.has_value(), test.modules > 0) << test.code;
        if (!bars)
            continue;
        EXPECT_EQ(std::accumulate(bars->widths.begin(), bars->widths.end(), 0), bars->modules) << test.code;
        EXPECT_EQ(bars->modules, test.modules) << test.code;
    }
}

TEST_F(Exports, LabelsComeInTheQuantitiesAskedFor) {
    const auto labels = [&](const std::string& quantity) {
        const Definition definition =
            parseDefinition("title = 'L'\n[query]\nsql = 'SELECT * FROM Goods ORDER BY Name'\n[label]\ncolumns = 2\nrows = 2\nwidth = "
                            "2\nheight = 1\nquantity = " +
                                quantity + "\n[[line]]\ntext = '{Name}'\n[[barcode]]\nfield = 'Units'\n",
                            "l.rpt");
        return Report::run(*store->session(), definition, {});
    };
    const ui::FixedMeasure measure;
    const auto byField = labels("'Units'"); // 2, none and -4
    EXPECT_EQ(Labels(byField->outline(), measure).labelCount(), 2);
    std::ostringstream rows;
    EXPECT_THROW(writeCsv(*byField, rows), std::runtime_error);
    EXPECT_EQ(rows.str(), "");
    try {
        Labels(labels("'Name'")->outline(), measure);
        ADD_FAILURE() << "a name is no quantity";
    } catch (const DefinitionError& error) {
        EXPECT_STREQ(error.what(), "l.rpt:9: \"Name\" is no number.");
    }
    const auto three = labels("3");
    const Labels sheets(three->outline(), measure);
    EXPECT_EQ(sheets.labelCount(), 9);
    EXPECT_EQ(sheets.count(), 3);
    const ui::Page last = sheets.page(2);
    EXPECT_EQ(std::count_if(last.items.begin(), last.items.end(), [](const ui::PageItem& item) { return item.text.starts_with("Ümlaut"); }),
              1);
    EXPECT_THROW(Labels(labels("400000")->outline(), measure), std::runtime_error); // of three rows: none is left out unsaid
    const auto none = labels("0");
    const Labels nothing(none->outline(), measure);
    EXPECT_EQ(nothing.count(), 1);
    EXPECT_EQ(nothing.page(0).items.at(0).text, "Nothing was found.");
}

} // namespace
} // namespace merchantry::reports
