#pragma once

#include "exchange/import/delimitedfile.h"
#include "exchange/import/workbook.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace merchantry::exchange {

// A file that is being imported: a workbook of which one sheet is read, or delimited text that is read in one shape.
class ImportSource {
public:
    // Throws FileRefused.
    explicit ImportSource(const std::filesystem::path& file);

    const std::filesystem::path& file() const { return file_; }
    std::string name() const { return file_.filename().string(); }
    // Of what the file holds and how it is read.
    std::string hash() const;

    bool isWorkbook() const { return book_ != nullptr; }
    // Of a workbook; empty for text.
    std::vector<Workbook::Sheet> sheets() const;
    std::size_t sheet = 0;
    // Of text; changed to read it otherwise.
    DelimitedShape shape;

    // Begins to read; the steps' percent, and the table after 100. Throws FileRefused.
    void begin();
    int step();
    SheetTable take();

private:
    std::filesystem::path file_;
    std::string content_; // its fingerprint
    std::unique_ptr<Workbook> book_;
    std::unique_ptr<DelimitedFile> text_;
    std::unique_ptr<SheetReading> sheetReading_;
    std::unique_ptr<DelimitedReading> textReading_;
};

} // namespace merchantry::exchange
