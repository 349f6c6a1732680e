#pragma once

#include <deque>
#include <istream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::exchange {

// A cell of delimited text. A cell between two delimiters with nothing in it, not even quotes, is absent; its text is empty.
struct CsvCell {
    std::string text;
    bool absent = false;
};

struct CsvRow {
    int number = 0; // as a spreadsheet counts it: from 1, blank rows too, a cell of several lines once
    std::vector<CsvCell> cells;
};

// Why delimited text cannot be read, with the row where it begins.
class CsvError : public std::runtime_error {
public:
    CsvError(int row, const std::string& why);
    int row() const { return row_; }

private:
    int row_;
};

// Reads rows of delimited text in UTF-8, a piece of the file at a time: cells in double quotes hold delimiters, line ends and doubled
// quotes; rows end with CR, LF or both; a byte order mark is passed over; blanks belong to the cell; blank rows are left out.
class CsvReader {
public:
    // The stream must outlive the reader.
    explicit CsvReader(std::istream& from, char delimiter = ',');
    ~CsvReader();
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    // The next row; false behind the last. Throws CsvError for a quote that is never closed, and when the stream fails.
    bool next(CsvRow& row);
    // Bytes read so far, for progress.
    std::int64_t bytes() const { return bytes_; }

private:
    struct Parser;
    void readBlock();
    void endOfText();

    std::istream& from_;
    std::unique_ptr<Parser> parser_;
    std::deque<CsvRow> rows_;
    CsvRow row_;
    int number_ = 1;
    bool afterReturn_ = false;
    std::int64_t bytes_ = 0;
    bool over_ = false;
};

// Adds a cell to a row of delimited text, in quotes when it is told so or could not be read back without.
void appendCsvCell(std::string& row, std::string_view text, bool quoted, char delimiter = ',');

} // namespace merchantry::exchange
