#pragma once

#include "exchange/import/sheettable.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace pugi {
class xml_node;
}

namespace merchantry::exchange {

// An .xlsx file that is open for reading: its sheets by name and what their cells refer to. The file must stay as it is meanwhile.
class Workbook {
public:
    struct Sheet {
        std::string name;
        bool hidden = false;
        std::string part; // of the file
    };

    // Throws FileRefused for a file that is no workbook, encrypted, damaged, of another format, or larger than kMostBytes unpacked.
    explicit Workbook(const std::filesystem::path& file);
    ~Workbook();
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;

    // Sheets of charts and macros are left out.
    const std::vector<Sheet>& sheets() const { return sheets_; }

private:
    friend class SheetReading;
    struct File;
    struct Styles;
    void readParts();
    void readSheets(const std::string& part);
    void readStyles(const std::string& part);

    std::unique_ptr<File> file_;
    std::vector<Sheet> sheets_;
    std::string sharedStrings_;        // part; empty for none
    std::vector<CellKind> numberKind_; // of numbers, by the number of their cell's style
    bool from1904_ = false;
};

// Reads one sheet, some rows at a time. The workbook must outlive it. Memory is that of the table and of a piece of the sheet: no tree of
// the whole is built.
class SheetReading {
public:
    SheetReading(Workbook& book, std::size_t sheet);
    ~SheetReading();
    SheetReading(const SheetReading&) = delete;
    SheetReading& operator=(const SheetReading&) = delete;

    // Reads on; percent done. Throws FileRefused.
    int step();
    // Requires: step gave 100.
    SheetTable take() { return std::move(table_); }

private:
    struct State;
    void readShared();
    void readRows();
    void finish();
    void takeHiddenColumns(const pugi::xml_node& columns);
    void takeMerged(const pugi::xml_node& merges);

    Workbook& book_;
    std::unique_ptr<State> state_;
    SheetTable table_;
};

} // namespace merchantry::exchange
