#include "exchange/import/importsource.h"

#include "exchange/import/columns.h"

#include <algorithm>
#include <fstream>

namespace merchantry::exchange {
namespace {

constexpr std::size_t kBlock = 1024UL * 1024;

bool looksLikeWorkbook(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::string head(4, '\0');
    in.read(head.data(), 4);
    return head.starts_with("PK\x03\x04") || head == "\xD0\xCF\x11\xE0" || file.extension() == ".xlsx";
}

// Block by block, so that a large file does not stand in memory for it.
std::string contentOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::string block;
    std::string prints;
    do {
        block.resize(kBlock);
        in.read(block.data(), static_cast<std::streamsize>(kBlock));
        block.resize(static_cast<std::size_t>(std::max<std::streamsize>(0, in.gcount())));
        prints += fingerprint(block);
    } while (block.size() == kBlock);
    return fingerprint(prints);
}

} // namespace

ImportSource::ImportSource(const std::filesystem::path& file) : file_(file) {
    if (looksLikeWorkbook(file)) {
        book_ = std::make_unique<Workbook>(file);
        const auto& all = book_->sheets();
        const auto seen = std::find_if(all.begin(), all.end(), [](const Workbook::Sheet& one) { return !one.hidden; });
        sheet = seen == all.end() ? 0 : static_cast<std::size_t>(seen - all.begin());
    } else {
        text_ = std::make_unique<DelimitedFile>(file);
        shape = text_->guessed();
    }
    content_ = contentOf(file);
}

std::string ImportSource::hash() const {
    return isWorkbook() && book_->sheets().size() > 1 ? fingerprint(content_ + std::to_string(sheet)) : content_;
}

std::vector<Workbook::Sheet> ImportSource::sheets() const {
    return isWorkbook() ? book_->sheets() : std::vector<Workbook::Sheet>();
}

void ImportSource::begin() {
    sheetReading_.reset();
    textReading_.reset();
    if (isWorkbook()) {
        book_ = std::make_unique<Workbook>(file_); // what is unpacked counts anew
        sheetReading_ = std::make_unique<SheetReading>(*book_, sheet);
    } else {
        textReading_ = std::make_unique<DelimitedReading>(*text_, shape);
    }
}

int ImportSource::step() {
    return sheetReading_ ? sheetReading_->step() : textReading_->step();
}

SheetTable ImportSource::take() {
    SheetTable table = sheetReading_ ? sheetReading_->take() : textReading_->take();
    sheetReading_.reset();
    textReading_.reset();
    return table;
}

} // namespace merchantry::exchange
