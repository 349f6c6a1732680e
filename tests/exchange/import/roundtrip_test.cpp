// What is written is read back cell for cell: by this program's own writer of delimited text, and by a writer of workbooks.

#include "base/currency.h"
#include "base/text.h"
#include "exchange/flat/csv.h"
#include "tests/exchange/import/readwhole.h"
#include "tests/scratchfolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <xlsxwriter.h>

namespace merchantry::exchange {
namespace {

constexpr int kRows = 400;
constexpr int kColumns = 6;

// A text of letters, signs, blanks, line ends, escapes that look like a workbook's, and characters of one to four bytes.
std::string randomText(std::mt19937& random) {
    static const std::vector<std::string> kPieces{
        "a",    "Z",   "7",    " ",        "\"",           "'",    ",",       ";", "|",   "\t", "\n", "\r\n", "<b>",
        "&amp", "]]>", "=1+1", "\xC3\xA9", "\xE2\x82\xAC", "_x41", "_x000D_", "_", "\\n", "0",  "-",  "%",    "\xF0\x9F\x8E\x81",
        "end"};
    std::string text;
    for (auto left = random() % 12; left > 0; --left)
        text += kPieces[random() % kPieces.size()];
    return text;
}

std::vector<std::vector<std::string>> randomCells(unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::vector<std::string>> rows(kRows, std::vector<std::string>(kColumns));
    for (auto& row : rows) {
        for (std::string& cell : row)
            cell = randomText(random);
        row[0] += "x"; // no row is blank
        row[kColumns - 1] += "y";
    }
    return rows;
}

TEST(RoundTrip, OfDelimitedTextKeepsEveryCell) {
    const ScratchFolder folder;
    const auto file = folder / "list.csv";
    for (const char delimiter : {',', ';', '\t', '|'}) {
        const auto rows = randomCells(static_cast<unsigned char>(delimiter));
        std::string text;
        for (const auto& row : rows) {
            for (std::size_t i = 0; i < row.size(); ++i) {
                text += i > 0 ? std::string(1, delimiter) : "";
                appendCsvCell(text, row[i], i % 2 == 0, delimiter);
            }
            text += "\r\n";
        }
        std::ofstream(file, std::ios::binary) << text;
        const DelimitedFile read(file);
        DelimitedShape shape = read.guessed();
        EXPECT_EQ(shape.encoding, "UTF-8");
        shape.delimiter = delimiter; // such noise is nothing to guess from
        const SheetTable table = readWhole(DelimitedReading(read, shape));
        ASSERT_EQ(table.rows(), kRows);
        for (int row = 0; row < kRows; ++row)
            for (int column = 0; column < kColumns; ++column)
                ASSERT_EQ(table.cell(row, column).text, rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)])
                    << row << " " << column;
    }
}

TEST(RoundTrip, OfWorkbooksKeepsTextsAndNumbersOfFifteenDigits) {
    const ScratchFolder folder;
    const auto file = folder / "list.xlsx";
    auto rows = randomCells(1904);
    for (auto& row : rows) // what looks like an escape would have to be escaped, which that writer does not do
        for (std::string& cell : row)
            cell = replaced(cell, "_x000D_", "_x");
    std::mt19937 random(1900);
    std::vector<std::string> numbers;
    lxw_workbook* book = workbook_new(file.c_str());
    lxw_worksheet* sheet = workbook_add_worksheet(book, "Prices");
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column)
            worksheet_write_string(sheet, static_cast<lxw_row_t>(row), static_cast<lxw_col_t>(column),
                                   rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)].c_str(), nullptr);
        const Currency amount = Currency::fromUnits(static_cast<std::int64_t>(random()) * 97 - 1'000'000'000);
        numbers.push_back(amount.toText());
        worksheet_write_number(sheet, static_cast<lxw_row_t>(row), kColumns, amount.toDouble(), nullptr);
    }
    ASSERT_EQ(workbook_close(book), LXW_NO_ERROR);
    const SheetTable table = readSheet(file);
    ASSERT_EQ(table.rows(), kRows);
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column)
            ASSERT_EQ(table.cell(row, column).text, rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)])
                << row << " " << column;
        ASSERT_EQ(table.cell(row, kColumns).text, numbers[static_cast<std::size_t>(row)]) << row;
    }
}

} // namespace
} // namespace merchantry::exchange
