#include "reports/engine/definition.h"

#include <gtest/gtest.h>

namespace merchantry::reports {
namespace {

const char* const kHead = "title = 'T'\n[query]\nsql = 'SELECT 1 AS A'\n";

std::string refusalOf(const std::string& text) {
    try {
        parseDefinition(text, "own.rpt");
        return "";
    } catch (const DefinitionError& error) {
        return error.what();
    }
}

TEST(Definition, ReadsEveryPart) {
    const Definition read = parseDefinition(R"(title = "Sales by department"
subtitle = "{Store}"
[query]
sql = "SELECT 1 {where}"
parameters = ["number", "where"]
order = "Item.Name"
sort = { "[Transaction].Time" = "SaleDay" }
[page]
size = "A4"
orientation = "landscape"
[[column]]
field = "Sold"
title = "Units\nsold"
width = 9.5
format = "quantity"
total = "sum"
running = "group"
style = [{ when = "< 0", color = "red" }, { when = "= 'it''s'", bold = true }]
[[column]]
expression = "(Sold - Cost) / Sold"
format = "percent"
[[group]]
field = "Department"
order = "Departments.Department"
footer = "Total {Department}"
details = false
[[header]]
text = "Ship to: {Name}"
right = true
[[chart]]
kind = "pie"
label = "Department"
value = "Sold"
place = "start"
)",
                                            "/r/sales.rpt");
    EXPECT_EQ(read.title, "Sales by department");
    EXPECT_EQ(read.query.parameters, (std::vector{ParameterKind::Number, ParameterKind::Where}));
    EXPECT_EQ(read.query.sort.at("[transaction].time"), "SaleDay");
    EXPECT_TRUE(read.page.landscape && read.page.size == PaperSize::A4);
    ASSERT_EQ(read.columns.size(), 2U);
    EXPECT_EQ(read.columns[0].width, 9.5);
    EXPECT_EQ(read.columns[0].running, Scope::Group);
    ASSERT_EQ(read.columns[0].styles.size(), 2U);
    EXPECT_EQ(read.columns[0].styles[0].comparison + read.columns[0].styles[0].operand, "<0");
    EXPECT_TRUE(read.columns[0].styles[1].isText && read.columns[0].styles[1].bold);
    EXPECT_EQ(read.columns[1].title, "");
    EXPECT_FALSE(read.groups.at(0).details);
    EXPECT_TRUE(read.headers.at(0).rightBlock);
    EXPECT_TRUE(read.charts.at(0).atStart);
}

TEST(Definition, ReadsLabels) {
    const Definition read = parseDefinition(std::string(kHead) + R"([label]
columns = 3
rows = 10
left = 0.19
top = 0.5
width = 2.625
height = 1.0
gap_x = 0.125
quantity = "Copies"
[[line]]
text = "{Name}"
[[barcode]]
field = "Code"
kind = "ean13"
)",
                                            "labels.rpt");
    ASSERT_TRUE(read.label.has_value());
    EXPECT_EQ(read.label->quantityField, "Copies");
    EXPECT_EQ(read.label->barcodes.at(0).kind, BarcodeKind::Ean13);
    EXPECT_EQ(read.label->lines.at(0).text, "{Name}");
}

TEST(Definition, AMistakeIsToldWithItsLine) {
    const std::string head = kHead;
    const std::pair<std::string, std::string> cases[] = {
        {"title = 'T'\n", "own.rpt:1: A report wants its [query]."},
        {"title = \n", "own.rpt:1: This is not TOML here."},
        {head, "A report wants at least one [[column]]"},
        {head + "[[column]]\nfield = 'A'\nwidht = 3\n", "own.rpt:6: \"widht\" means nothing in a [[column]]."},
        {head + "[[column]]\nwidth = 3\n", "own.rpt:4: A column has a \"field\" or an \"expression\"."},
        {head + "[[column]]\nfield = 'A'\nwidth = 'wide'\n", "own.rpt:6: \"width\" must be a number."},
        {head + "[[column]]\nfield = 'A'\nwidth = 900\n", "own.rpt:6: \"width\" must be from 1 to 200."},
        {head + "[[column]]\nfield = 'A'\nformat = 'dollars'\n", "own.rpt:6: \"format\" must be one of: text, number,"},
        {head + "[[column]]\nfield = 'A'\nrepeat = 'no'\n", "own.rpt:6: \"repeat\" must be true or false."},
        {head + "[[column]]\nexpression = 'A'\ntotal = 'sum'\n", "own.rpt:6: A computed column is computed from the totals"},
        {head + "[[column]]\nfield = 'A'\nstyle = [{ when = 'negative' }]\n", "\"when\" is a comparison and a value"},
        {head + "[[column]]\nfield = 'A'\nstyle = [{ when = '< none' }]\n", "own.rpt:6: \"when\" is a comparison and a value"},
        {head + "[column]\nfield = 'A'\n", "own.rpt:4: \"column\" stands in double brackets: [[column]]."},
        {head + "[[column]]\nfield = 'A'\n[[group]]\nfield = 'A'\ndetails = false\n[[group]]\nfield = 'B'\n",
         "own.rpt:6: Only the innermost group may leave out its rows."},
        {head + "[[column]]\nfield = 'A'\n[[chart]]\nlabel = 'A'\n", "own.rpt:6: A chart wants its \"label\" and its \"value\"."},
        {head + "[label]\ncolumns = 4\nwidth = 2.625\n", "own.rpt:4: The labels do not fit on the sheet."},
        {head + "[label]\nsheet = 'roll'\ncolumns = 2\n", "own.rpt:4: On a roll every label is a page"},
        {"title = 'T'\n[query]\nsql = 'EXEC p'\nparameters = ['where']\n", "own.rpt:4: The statement has no place for \"where\""},
        {"title = 'T'\n[query]\nsql = 'SELECT 1 {where}'\nparameters = ['where', 'sort']\n",
         "own.rpt:4: The statement has no place for \"sort\""},
        {"title = 'T'\n[query]\nsql = 'SELECT 1'\nparameters = ['who']\n", "own.rpt:4: \"parameters\" must be one of: where, sort,"},
        {"title = 5\n", "own.rpt:1: \"title\" must be a text."},
    };
    for (const auto& [text, reason] : cases)
        EXPECT_NE(refusalOf(text).find(reason), std::string::npos) << text << "\ngave: " << refusalOf(text);
    EXPECT_THROW(readDefinition("/nowhere/none.rpt"), std::filesystem::filesystem_error);
}

} // namespace
} // namespace merchantry::reports
