#pragma once

#include "exchange/import/sheettable.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace merchantry::exchange {

// How a file of delimited text is written.
struct DelimitedShape {
    std::string encoding = "UTF-8"; // one of encodings()
    char delimiter = ',';
    std::string lineEnd = "CRLF"; // told only: all are read
    bool decimalComma = false;    // "1.234,50" is what others write as "1,234.50"
};

// The encodings that a file can be read in, the usual ones first.
const std::vector<std::string>& encodings();
// The delimiters with their names: comma, semicolon, tab, bar, colon.
struct Delimiter {
    char sign;
    const char* name;
};
const std::vector<Delimiter>& delimiters();

// A file of delimited text, with what is guessed of how it is written. Throws FileRefused for one that cannot be read, is larger than
// kMostBytes, or is no text.
class DelimitedFile {
public:
    explicit DelimitedFile(const std::filesystem::path& file);

    const DelimitedShape& guessed() const { return guessed_; }
    // The text in UTF-8 as it is in the encoding. Throws FileRefused when it is not in that encoding.
    std::string decoded(const std::string& encoding) const;

private:
    std::string bytes_;
    DelimitedShape guessed_;
};

// Reads such a text, some rows at a time.
class DelimitedReading {
public:
    DelimitedReading(const DelimitedFile& file, const DelimitedShape& shape);
    ~DelimitedReading();
    DelimitedReading(const DelimitedReading&) = delete;
    DelimitedReading& operator=(const DelimitedReading&) = delete;

    // Reads on; percent done. Throws FileRefused for a quote that is never closed.
    int step();
    // Requires: step gave 100.
    SheetTable take() { return std::move(table_); }

private:
    struct Source;
    std::unique_ptr<Source> source_;
    SheetTable table_;
};

// The delimiter that cuts the text into the most even rows.
char guessedDelimiter(const std::string& text);
// Whether the numbers of the text are written with a decimal comma.
bool guessedDecimalComma(const std::string& text, char delimiter);

} // namespace merchantry::exchange
