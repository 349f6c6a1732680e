#include "base/guard.h"
#include "base/numbers.h"
#include "reports/engine/exportrows.h"
#include "reports/engine/exports.h"
#include "ui/sheetdate.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace merchantry::reports {
namespace {

constexpr int kRowsBetweenQuestions = 4096;
constexpr int kMostRows = LXW_ROW_MAX - 1;

// Two sheets: the rows, and what they are.
class Workbook {
public:
    Workbook(const Report& report, const std::filesystem::path& file) : report_(report), outline_(report.outline()), rows_(outline_) {
        lxw_workbook_options options{};
        options.constant_memory = LXW_TRUE; // row by row into the file
        book_ = workbook_new_opt(file.string().c_str(), &options);
        sheet_ = book_ == nullptr ? nullptr : workbook_add_worksheet(book_, "Rows");
        if (sheet_ == nullptr)
            throw std::runtime_error("There is no memory for the workbook.");
        bold_ = workbook_add_format(book_);
        format_set_bold(bold_);
        format_set_text_wrap(bold_);
        for (std::size_t i = 0; i < outline_.columns().size(); ++i)
            formats_.push_back(formatOf(outline_.columns()[i].kind.format));
        headings();
    }
    ~Workbook() {
        if (book_ != nullptr)
            workbook_close(book_);
    }
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;

    // Writes the next row and tells its number; below 0 after the last.
    int nextRow() {
        if (!rows_.next())
            return -1;
        for (std::size_t i = 0; i < rows_.groups().size(); ++i)
            worksheet_write_string(sheet_, line(), static_cast<lxw_col_t>(i), rows_.groups()[i].c_str(), nullptr);
        for (std::size_t i = 0; i < outline_.columns().size(); ++i)
            cell(i);
        return rows_.row();
    }
    void finish() {
        about();
        const lxw_error error = workbook_close(std::exchange(book_, nullptr));
        if (error != LXW_NO_ERROR)
            throw std::runtime_error(lxw_strerror(error));
    }

private:
    lxw_format* formatOf(Format format) {
        const char* number = nullptr;
        switch (format) {
        case Format::Money:
            number = "$#,##0.00;($#,##0.00)";
            break;
        case Format::Cost:
            number = "$#,##0.00##;($#,##0.00##)";
            break;
        case Format::Percent:
            number = "0.0%";
            break;
        case Format::Date:
            number = "mm/dd/yyyy";
            break;
        case Format::Time:
            number = "h:mm:ss AM/PM";
            break;
        case Format::DateTime:
            number = "mm/dd/yyyy h:mm:ss AM/PM";
            break;
        case Format::Integer:
        case Format::Quantity:
            number = "#,##0.##";
            break;
        default:
            return nullptr;
        }
        lxw_format* made = workbook_add_format(book_);
        format_set_num_format(made, format == Format::Integer ? "#,##0" : number);
        return made;
    }

    // The groups' names stand before the columns.
    lxw_col_t placeOf(std::size_t column) const { return static_cast<lxw_col_t>(rows_.groupTitles().size() + column); }
    lxw_row_t line() const { return static_cast<lxw_row_t>(rows_.row() + 1); }

    void headings() {
        for (std::size_t i = 0; i < rows_.groupTitles().size(); ++i) {
            const auto at = static_cast<lxw_col_t>(i);
            worksheet_set_column(sheet_, at, at, 30, nullptr);
            worksheet_write_string(sheet_, 0, at, rows_.groupTitles()[i].c_str(), bold_);
        }
        for (std::size_t i = 0; i < outline_.columns().size(); ++i) {
            const ColumnDefinition& column = *outline_.columns()[i].definition;
            const lxw_col_t at = placeOf(i);
            worksheet_set_column(sheet_, at, at, std::clamp(column.width * 1.2, 8.0, 60.0), nullptr);
            worksheet_write_string(sheet_, 0, at, column.title.c_str(), bold_);
        }
        worksheet_freeze_panes(sheet_, 1, 0);
    }

    void cell(std::size_t i) {
        const Outline::ShownColumn& column = outline_.columns()[i];
        const lxw_col_t at = placeOf(i);
        if (column.isComputed()) {
            if (const auto figure = rows_.computed(i))
                worksheet_write_number(sheet_, line(), at, figure->toDouble(), formats_[i]);
            return;
        }
        const Value value = outline_.rows().value(rows_.row(), column.source);
        if (value.isNull())
            return;
        if (value.is<Date>()) {
            lxw_datetime there = ui::forSheet(value.as<Date>());
            worksheet_write_datetime(sheet_, line(), at, &there, formats_[i]);
        } else if (value.is<bool>()) {
            worksheet_write_boolean(sheet_, line(), at, value.as<bool>() ? 1 : 0, nullptr);
        } else if (value.is<std::string>() || value.is<Bytes>()) {
            worksheet_write_string(sheet_, line(), at, value.toText().c_str(), nullptr);
        } else {
            worksheet_write_number(sheet_, line(), at, value.toNumber(), formats_[i]);
        }
    }

    void about() {
        lxw_worksheet* sheet = workbook_add_worksheet(book_, "About");
        const PageHead& head = report_.head();
        const std::pair<const char*, std::string> lines[] = {{"Report", report_.definition().title},
                                                             {"Subtitle", outline_.subtitle()},
                                                             {"Store", head.store},
                                                             {"Made", head.made.toShortText()},
                                                             {"Criteria", head.criteria.empty() ? "None" : head.criteria},
                                                             {"Rows", withThousands(outline_.rows().rowCount())}};
        worksheet_set_column(sheet, 0, 0, 12, nullptr);
        worksheet_set_column(sheet, 1, 1, 80, nullptr);
        lxw_row_t line = 0;
        for (const auto& [name, text] : lines) {
            if (text.empty())
                continue;
            worksheet_write_string(sheet, line, 0, name, bold_);
            worksheet_write_string(sheet, line, 1, text.c_str(), nullptr);
            ++line;
        }
    }

    const Report& report_;
    const Outline& outline_;
    ExportRows rows_;
    lxw_workbook* book_ = nullptr;
    lxw_worksheet* sheet_ = nullptr;
    lxw_format* bold_ = nullptr;
    std::vector<lxw_format*> formats_;
};

} // namespace

bool writeWorkbook(const Report& report, const std::filesystem::path& file, const KeepWriting& goOn) {
    requireColumns(report.outline());
    const int rows = report.outline().rows().rowCount();
    if (rows > kMostRows)
        throw std::runtime_error("A workbook holds no more than " + withThousands(kMostRows) + " rows. Export to CSV instead.");
    const std::filesystem::path beside = file.string() + ".part";
    Undo half([&] {
        std::error_code ignored;
        std::filesystem::remove(beside, ignored);
    });
    {
        Workbook book(report, beside);
        for (int row = book.nextRow(); row >= 0; row = book.nextRow()) {
            if (goOn && row % kRowsBetweenQuestions == 0 && !goOn(row)) {
                book.finish();
                return false;
            }
        }
        book.finish();
    }
    std::filesystem::rename(beside, file);
    half.keep();
    return true;
}

} // namespace merchantry::reports
