#include "exchange/flat/csv.h"

#include <array>
#include <csv.h>

namespace merchantry::exchange {
namespace {

constexpr std::size_t kBlock = 64 * 1024; // bytes
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr unsigned char kOptions = CSV_REPALL_NL | CSV_EMPTY_IS_NULL;
constexpr int kReturn = '\r';
constexpr int kLineFeed = '\n';

int noSpace(unsigned char /*c*/) {
    return 0;
}

} // namespace

CsvError::CsvError(int row, const std::string& why) : std::runtime_error("Row " + std::to_string(row) + ": " + why), row_(row) {}

struct CsvReader::Parser {
    csv_parser state{};

    explicit Parser(char delimiter) {
        if (csv_init(&state, kOptions) != 0)
            throw std::runtime_error("The reader of delimited text could not be made.");
        csv_set_delim(&state, static_cast<unsigned char>(delimiter));
        csv_set_space_func(&state, noSpace);
    }
    ~Parser() { csv_free(&state); }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    static void cell(void* text, std::size_t length, void* reader) {
        auto& self = *static_cast<CsvReader*>(reader);
        CsvCell& added = self.row_.cells.emplace_back();
        added.absent = text == nullptr;
        if (text)
            added.text.assign(static_cast<const char*>(text), length);
        self.afterReturn_ = false;
    }
    // Called for every CR and LF outside quotes, and with -1 at the end of a text whose last row has no line end.
    static void rowEnd(int character, void* reader) {
        auto& self = *static_cast<CsvReader*>(reader);
        if (character == kLineFeed && self.afterReturn_) {
            self.afterReturn_ = false;
            return;
        }
        self.afterReturn_ = character == kReturn;
        self.row_.number = self.number_++;
        if (!self.row_.cells.empty())
            self.rows_.push_back(std::move(self.row_));
        self.row_ = {};
    }
};

CsvReader::CsvReader(std::istream& from, char delimiter) : from_(from), parser_(std::make_unique<Parser>(delimiter)) {}

CsvReader::~CsvReader() = default;

bool CsvReader::next(CsvRow& row) {
    while (rows_.empty() && !over_)
        readBlock();
    if (rows_.empty())
        return false;
    row = std::move(rows_.front());
    rows_.pop_front();
    return true;
}

void CsvReader::readBlock() {
    std::array<char, kBlock> block; // NOLINT(cppcoreguidelines-pro-type-member-init): read into next
    from_.read(block.data(), block.size());
    std::string_view text(block.data(), static_cast<std::size_t>(from_.gcount()));
    if (from_.bad())
        throw CsvError(number_, "The file could not be read on.");
    if (bytes_ == 0 && text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    bytes_ += from_.gcount();
    if (csv_parse(&parser_->state, text.data(), text.size(), Parser::cell, Parser::rowEnd, this) != text.size())
        throw CsvError(number_, csv_strerror(csv_error(&parser_->state)));
    if (!from_)
        endOfText();
}

void CsvReader::endOfText() {
    over_ = true;
    csv_set_opts(&parser_->state, kOptions | CSV_STRICT | CSV_STRICT_FINI); // lenient within the text, strict about its end
    if (csv_fini(&parser_->state, Parser::cell, Parser::rowEnd, this) != 0)
        throw CsvError(number_, "A quote is opened and never closed.");
}

void appendCsvCell(std::string& row, std::string_view text, bool quoted, char delimiter) {
    const bool needed = text.find_first_of("\"\r\n") != std::string_view::npos || text.find(delimiter) != std::string_view::npos;
    if (!quoted && !needed) {
        row += text;
        return;
    }
    row += '"';
    for (const char c : text) {
        if (c == '"')
            row += '"';
        row += c;
    }
    row += '"';
}

} // namespace merchantry::exchange
