// The workbook of a grid, through libxlsxwriter. It writes row by row into a file beside the target, which takes its place at the end.
#include "base/characters.h"
#include "base/numbers.h"
#include "ui/form.h"
#include "ui/gridcopy.h"
#include "ui/gridexport.h"
#include "ui/sheetdate.h"

#include <algorithm>
#include <stdexcept>

namespace merchantry::ui {
namespace {

constexpr int kRowsAtOnce = 500;
constexpr int kSampledRows = 200;
constexpr std::size_t kNarrowest = 8; // characters
constexpr std::size_t kWidest = 60;
constexpr int kMostRows = LXW_ROW_MAX - 1;

class WorkbookWriter : public GridWriter {
public:
    WorkbookWriter(const Grid& grid, const std::filesystem::path& target)
        : grid_(grid), target_(target), beside_(target.string() + ".part"), columns_(shownColumns(grid)) {
        if (grid.dataRows() > kMostRows)
            throw std::runtime_error("A workbook holds no more than " + withThousands(kMostRows) + " rows. Export to CSV instead.");
        lxw_workbook_options options{};
        options.constant_memory = LXW_TRUE;
        book_ = workbook_new_opt(beside_.string().c_str(), &options);
        sheet_ = book_ == nullptr ? nullptr : workbook_add_worksheet(book_, nullptr);
        if (sheet_ == nullptr)
            throw std::runtime_error("There is no memory for it.");
        makeFormats();
        setWidths();
        for (std::size_t i = 0; i < columns_.size(); ++i)
            worksheet_write_string(sheet_, 0, place(i), grid_.text(0, columns_[i]).c_str(), heading_);
        worksheet_freeze_panes(sheet_, 1, 0);
    }
    ~WorkbookWriter() override {
        if (book_ != nullptr)
            workbook_close(book_);
        std::error_code ignored;
        std::filesystem::remove(beside_, ignored);
    }
    int step() override {
        for (const int end = std::min(grid_.dataRows() + 1, next_ + kRowsAtOnce); next_ < end; ++next_)
            for (std::size_t i = 0; i < columns_.size(); ++i)
                write(next_, columns_[i], place(i));
        return next_ > grid_.dataRows() ? 100 : static_cast<int>(next_ * std::int64_t{100} / (grid_.dataRows() + 1));
    }
    void finish() override {
        const lxw_error error = workbook_close(std::exchange(book_, nullptr));
        if (error != LXW_NO_ERROR)
            throw std::runtime_error(lxw_strerror(error));
        std::filesystem::rename(beside_, target_);
    }

private:
    static lxw_col_t place(std::size_t i) { return static_cast<lxw_col_t>(i); }

    void makeFormats() {
        heading_ = workbook_add_format(book_);
        format_set_bold(heading_);
        money_ = workbook_add_format(book_);
        format_set_num_format(money_, "$#,##0.00;($#,##0.00)");
        date_ = workbook_add_format(book_);
        format_set_num_format(date_, "mm/dd/yyyy");
        moment_ = workbook_add_format(book_);
        format_set_num_format(moment_, "mm/dd/yyyy hh:mm:ss");
    }

    void setWidths() {
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            std::size_t widest = characterCount(grid_.text(0, columns_[i])) + 2;
            for (int row = 1; row <= std::min(grid_.dataRows(), kSampledRows); ++row)
                widest = std::max(widest, characterCount(cellOutside(grid_, row, columns_[i])) + 1);
            worksheet_set_column(sheet_, place(i), place(i), static_cast<double>(std::clamp(widest, kNarrowest, kWidest)), nullptr);
        }
    }

    // A number is a number there, money money, a date a date; whatever else is the text that the user sees.
    void write(int row, int column, lxw_col_t at) {
        using Format = GridColumn::Format;
        const GridColumn& shape = grid_.column(column);
        const Value value = grid_.value(row, column);
        const auto line = static_cast<lxw_row_t>(row);
        const bool tick = shape.editor == GridColumn::Editor::Check || shape.format == Format::Flag;
        const bool combo = shape.editor == GridColumn::Editor::Combo;
        const bool written = value.is<std::string>() && (shape.format == Format::Number || shape.format == Format::Currency) &&
                             isNumeric(value.as<std::string>()); // an unbound grid holds texts
        if (tick || value.is<bool>())
            worksheet_write_boolean(sheet_, line, at, value.toFlag() ? 1 : 0, nullptr);
        else if (value.isNull())
            worksheet_write_blank(sheet_, line, at, nullptr);
        else if (shape.format == Format::Currency && (written || !value.is<std::string>()))
            worksheet_write_number(sheet_, line, at, value.toCurrency().toDouble(), money_);
        else if (value.is<Currency>())
            worksheet_write_number(sheet_, line, at, value.toNumber(), money_);
        else if (value.is<Date>())
            writeDate(line, at, value.as<Date>());
        else if (!combo && (written || (!value.is<std::string>() && !value.is<Bytes>())))
            worksheet_write_number(sheet_, line, at, written ? *numberOf(value.as<std::string>()) : value.toNumber(), nullptr);
        else
            worksheet_write_string(sheet_, line, at, grid_.text(row, column).c_str(), nullptr);
    }

    void writeDate(lxw_row_t line, lxw_col_t at, const Date& date) {
        lxw_datetime there = forSheet(date);
        const bool day = there.hour == 0 && there.min == 0 && there.sec == 0;
        worksheet_write_datetime(sheet_, line, at, &there, day ? date_ : moment_);
    }

    const Grid& grid_;
    std::filesystem::path target_;
    std::filesystem::path beside_;
    std::vector<int> columns_;
    lxw_workbook* book_ = nullptr;
    lxw_worksheet* sheet_ = nullptr;
    lxw_format* heading_ = nullptr;
    lxw_format* money_ = nullptr;
    lxw_format* date_ = nullptr;
    lxw_format* moment_ = nullptr;
    int next_ = 1;
};

} // namespace

std::unique_ptr<GridWriter> workbookWriter(const Grid& grid, const std::filesystem::path& target) {
    return std::make_unique<WorkbookWriter>(grid, target);
}

} // namespace merchantry::ui
