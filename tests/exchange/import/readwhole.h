#pragma once

#include "exchange/import/delimitedfile.h"
#include "exchange/import/workbook.h"

namespace merchantry::exchange {

template <class Reading> SheetTable readWhole(Reading&& reading) {
    while (reading.step() < 100) {
    }
    return reading.take();
}

inline SheetTable readSheet(const std::filesystem::path& file, std::size_t sheet = 0) {
    Workbook book(file);
    return readWhole(SheetReading(book, sheet));
}

inline SheetTable readDelimited(const std::filesystem::path& file) {
    const DelimitedFile text(file);
    return readWhole(DelimitedReading(text, text.guessed()));
}

// Rows on lines with their numbers, cells between bars: "3:lamp|#12.5|@2026-01-31|!#N/A|?TRUE|-|".
inline std::string shown(const SheetTable& table, int mostRows = 1000, int mostColumns = 1000) {
    static constexpr const char* kMarks[] = {"-", "", "#", "@", "?", "!", "%"};
    std::string text;
    for (int row = 0; row < std::min(table.rows(), mostRows); ++row) {
        text += std::to_string(table.number(row)) + (table.hidden(row) ? " hidden:" : ":");
        for (int column = 0; column < std::min(table.cells(row), mostColumns); ++column) {
            const SheetCell cell = table.cell(row, column);
            text += kMarks[static_cast<int>(cell.kind)];
            for (const char c : cell.text)
                text += c == '\n' ? std::string("\\n") : c == '\r' ? std::string("\\r") : std::string(1, c);
            text += "|";
        }
        text += "\n";
    }
    return text;
}

} // namespace merchantry::exchange
