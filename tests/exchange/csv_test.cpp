#include "exchange/flat/csv.h"

#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

namespace merchantry::exchange {
namespace {

std::vector<CsvRow> rowsOf(const std::string& text, char delimiter = ',') {
    std::istringstream stream(text);
    CsvReader reader(stream, delimiter);
    std::vector<CsvRow> rows;
    CsvRow row;
    while (reader.next(row))
        rows.push_back(row);
    return rows;
}

// Rows on lines, cells between bars, absent ones as a dash, each with its number.
std::string shown(const std::vector<CsvRow>& rows) {
    std::string text;
    for (const CsvRow& row : rows) {
        text += std::to_string(row.number) + ":";
        for (const CsvCell& cell : row.cells)
            text += (cell.absent ? "-" : cell.text) + "|";
        text += "\n";
    }
    return text;
}

TEST(Csv, ReadsWhatOtherProgramsWrite) {
    EXPECT_EQ(shown(rowsOf("a,b\r\n1,\"x, \"\"y\"\"\"\r\n")), "1:a|b|\n2:1|x, \"y\"|\n");
    EXPECT_EQ(shown(rowsOf("a;b\n 1 ;\"\"\n;\n", ';')), "1:a|b|\n2: 1 ||\n3:-|-|\n") << "blanks are kept; no quotes means no value";
    EXPECT_EQ(shown(rowsOf("\xEF\xBB\xBF\"a\"\r1\r2")), "1:a|\n2:1|\n3:2|\n") << "byte order mark, CR alone, no last line end";
    EXPECT_EQ(shown(rowsOf("a\r\n\r\n\"1\r\n2\"\n\n3\n")), "1:a|\n3:1\r\n2|\n5:3|\n")
        << "blank rows are counted, cells of two lines are not";
    EXPECT_EQ(shown(rowsOf("")), "");
}

TEST(Csv, NamesTheRowOfAQuoteThatIsNeverClosed) {
    try {
        rowsOf("a,b\n1,2\n3,\"4\n5,6\n");
        FAIL() << "read it";
    } catch (const CsvError& error) {
        EXPECT_EQ(error.row(), 3);
        EXPECT_STREQ(error.what(), "Row 3: A quote is opened and never closed.");
    }
}

TEST(Csv, ReadsBackWhateverItWrites) {
    const std::vector<std::string> pieces{"\"", ",", ";", "\r\n", "\n", "\r", "\t", " ", "a", "0", "é", "🛒", "'", "\\", ""};
    std::mt19937 random(20261122);
    for (int round = 0; round < 300; ++round) {
        std::string text;
        std::vector<CsvRow> rows(1 + random() % 5);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            rows[i].number = static_cast<int>(i + 1);
            rows[i].cells.resize(2 + random() % 3);
            for (CsvCell& cell : rows[i].cells) {
                for (std::size_t piece = random() % 6; piece > 0; --piece)
                    cell.text += pieces[random() % pieces.size()];
                const bool quoted = random() % 2 == 0;
                cell.absent = cell.text.empty() && !quoted;
                if (&cell != rows[i].cells.data())
                    text += ',';
                appendCsvCell(text, cell.text, quoted);
            }
            text += "\r\n";
        }
        EXPECT_EQ(shown(rowsOf(text)), shown(rows)) << text;
    }
}

TEST(Csv, ReadsCellsThatLieAcrossBlocksOfTheFile) {
    const std::string longText(200'000, 'x');
    const auto rows = rowsOf("a,\"" + longText + "\"\r\n" + std::string(65'534 - 200'010 % 65'536, 'y') + "\r\nb\r\n");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].cells[1].text, longText);
    EXPECT_EQ(rows[2].number, 3);
}

} // namespace
} // namespace merchantry::exchange
