#include "ui/gridexport.h"

#include "base/errortext.h"
#include "base/numbers.h"
#include "base/platform/platform.h"
#include "base/text.h"
#include "ui/desk.h"
#include "ui/form.h"
#include "ui/gridcopy.h"
#include "ui/longwork.h"
#include "ui/waiting.h"

namespace merchantry::ui {
namespace {

constexpr int kRowsAtOnce = 1000;

// RFC 4180: a cell with a comma, a quote or a line end stands in quotes, its own quotes doubled; lines end with CR LF.
std::string quoted(const std::string& cell) {
    if (cell.find_first_of(",\"\r\n") == std::string::npos)
        return cell;
    return "\"" + replaced(cell, "\"", "\"\"") + "\"";
}

class CsvWriter : public GridWriter {
public:
    CsvWriter(const Grid& grid, std::filesystem::path target) : grid_(grid), target_(std::move(target)), columns_(shownColumns(grid)) {}
    int step() override {
        for (const int end = std::min(grid_.dataRows() + 1, next_ + kRowsAtOnce); next_ < end; ++next_)
            addRow();
        return next_ > grid_.dataRows() ? 100 : static_cast<int>(next_ * std::int64_t{100} / (grid_.dataRows() + 1));
    }
    void finish() override { platform::replaceFile(target_, text_, false); }

private:
    void addRow() {
        for (const int column : columns_)
            text_ += (column == columns_.front() ? "" : ",") + quoted(withoutFormula(cellOutside(grid_, next_, column)));
        text_ += "\r\n";
    }

    const Grid& grid_;
    std::filesystem::path target_;
    std::vector<int> columns_;
    std::string text_;
    int next_ = 0;
};

struct Kind {
    const char* title;
    const char* filter;
    const char* ending;
    std::unique_ptr<GridWriter> (*writer)(const Grid& grid, const std::filesystem::path& target);
};

void exportTo(Grid& grid, const Kind& kind) {
    Desk& desk = grid.form().desk();
    auto target = desk.file({kind.title, kind.filter, desk.documentsFolder().string(), true, asFileName(grid.form().caption())});
    if (!target)
        return;
    if (!target->has_extension())
        *target += kind.ending;
    try {
        const auto writer = kind.writer(grid, *target);
        if (!longWork(desk, "Writing " + target->string() + " ...", [&] { return writer->step(); })) {
            desk.status("Stopped. " + target->string() + " was not written.");
            return;
        }
        const Waiting wait(desk); // packing the file takes a second for a long list
        writer->finish();
        desk.status("Wrote " + withThousands(grid.dataRows()) + " rows to " + target->string() + ".");
    } catch (const std::exception& error) {
        desk.message("The file " + target->string() + " could not be written; nothing was changed. " + sentenceOf(error), kind.title,
                     MessageIcon::Exclamation);
    }
}

} // namespace

std::unique_ptr<GridWriter> csvWriter(const Grid& grid, const std::filesystem::path& target) {
    return std::make_unique<CsvWriter>(grid, target);
}

void exportCsv(Grid& grid) {
    exportTo(grid, {"Export to CSV", "CSV Files (*.csv)|*.csv", ".csv", &csvWriter});
}

void exportWorkbook(Grid& grid) {
    exportTo(grid, {"Export to Workbook", "Workbooks (*.xlsx)|*.xlsx", ".xlsx", &workbookWriter});
}

} // namespace merchantry::ui
