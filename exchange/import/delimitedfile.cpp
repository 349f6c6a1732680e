#include "exchange/import/delimitedfile.h"

#include "base/guard.h"
#include "base/lettercase.h"
#include "base/text.h"
#include "exchange/flat/csv.h"

#include <algorithm>
#include <fstream>
#include <iconv.h>
#include <map>
#include <sstream>
#include <uchardet/uchardet.h>

namespace merchantry::exchange {
namespace {

constexpr std::size_t kGuessBytes = 256 * 1024; // of the file that guesses look at
constexpr int kGuessRows = 200;
constexpr int kRowsOfAStep = 4000;
constexpr const char* kNoText = "The file is no text. Workbooks (.xlsx) and delimited text (.csv, .txt) can be read.";
constexpr std::string_view kMarkOfUtf8 = "\xEF\xBB\xBF";
constexpr const char* kWestern = "Windows-1252";

std::string readAll(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    if (!in || error)
        throw FileRefused("The file \"" + file.filename().string() + "\" could not be opened.");
    if (size > static_cast<std::uintmax_t>(kMostBytes))
        throw FileRefused("The file is larger than 100 MB. Please split it.");
    std::string bytes(size, '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(size));
    if (in.gcount() != static_cast<std::streamsize>(size))
        throw FileRefused("The file \"" + file.filename().string() + "\" could not be read to its end.");
    return bytes;
}

// Converts; the position of the first byte that cannot be, or npos. A character that is cut off at the end is left out when `cut` is set.
std::size_t convert(std::string_view bytes, const std::string& encoding, std::string& text, bool cut) {
    const iconv_t converter = iconv_open("UTF-8", encoding.c_str());
    if (converter == reinterpret_cast<iconv_t>(-1)) // NOLINT(performance-no-int-to-ptr): as iconv gives it
        throw FileRefused("The encoding " + encoding + " is not known here.");
    const AtEnd closed([converter] { iconv_close(converter); });
    text.resize(bytes.size() * 3 + 16);
    char* in = const_cast<char*>(bytes.data()); // NOLINT(cppcoreguidelines-pro-type-const-cast): iconv writes nothing there
    std::size_t inLeft = bytes.size();
    char* out = text.data();
    std::size_t outLeft = text.size();
    const bool failed = iconv(converter, &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1);
    text.resize(text.size() - outLeft);
    text.shrink_to_fit();
    const bool onlyCut = cut && inLeft < 4;
    return failed && !onlyCut ? bytes.size() - inLeft : std::string::npos;
}

bool isUtf8(std::string_view bytes, bool cut) {
    std::string text;
    return convert(bytes, "UTF-8", text, cut) == std::string::npos;
}

// UTF-16 without a mark: every other byte of a Western text is nothing.
std::string zeroPattern(std::string_view bytes) {
    std::size_t even = 0;
    std::size_t odd = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] == '\0')
            ++(i % 2 == 0 ? even : odd);
    if (even + odd == 0)
        return "";
    const std::size_t half = bytes.size() / 2;
    if (odd * 10 > half * 3 && even * 10 < odd)
        return "UTF-16LE";
    if (even * 10 > half * 3 && odd * 10 < even)
        return "UTF-16BE";
    throw FileRefused(kNoText);
}

std::string detected(std::string_view bytes) {
    const auto detector = uchardet_new();
    const AtEnd freed([detector] { uchardet_delete(detector); });
    uchardet_handle_data(detector, bytes.data(), bytes.size());
    uchardet_data_end(detector);
    const std::string found = uchardet_get_charset(detector);
    for (const std::string& known : encodings())
        if (lowerCase(known) == lowerCase(found))
            return known;
    return kWestern; // short lists with a few accents look like anything
}

std::string guessedEncoding(const std::string& bytes) {
    if (bytes.starts_with(kMarkOfUtf8))
        return "UTF-8";
    if (bytes.starts_with("\xFF\xFE"))
        return "UTF-16LE";
    if (bytes.starts_with("\xFE\xFF"))
        return "UTF-16BE";
    const std::string_view sample = std::string_view(bytes).substr(0, kGuessBytes);
    if (const std::string wide = zeroPattern(sample); !wide.empty())
        return wide;
    return isUtf8(bytes, false) ? "UTF-8" : detected(sample);
}

std::string guessedLineEnd(std::string_view text) {
    const std::size_t at = text.find_first_of("\r\n");
    if (at == std::string_view::npos)
        return "none";
    if (text[at] == '\n')
        return "LF";
    return at + 1 < text.size() && text[at + 1] == '\n' ? "CRLF" : "CR";
}

std::vector<CsvRow> firstRows(const std::string& text, char delimiter) {
    std::istringstream in(text.substr(0, kGuessBytes));
    std::vector<CsvRow> rows;
    try {
        CsvReader reader(in, delimiter);
        CsvRow row;
        while (rows.size() < kGuessRows && reader.next(row))
            rows.push_back(std::move(row));
    } catch (const CsvError&) {
        // a quote that is closed behind the part that is looked at
    }
    return rows;
}

// How many rows have the usual number of cells, times that number: the higher, the better it cuts.
std::size_t evenness(const std::vector<CsvRow>& rows) {
    std::map<std::size_t, std::size_t> widths;
    for (const CsvRow& row : rows)
        ++widths[row.cells.size()];
    std::size_t best = 0;
    for (const auto& [width, count] : widths)
        best = width < 2 ? best : std::max(best, count * 100 + std::min<std::size_t>(width, 99));
    return best;
}

// "1.234.567": a sign that stands several times groups thousands, and is no decimal one.
bool isGroupedTwice(std::string_view text, char group) {
    const std::vector<std::string> groups = split(text, std::string(1, group));
    const auto isGroup = [](const std::string& one) { return one.size() == 3 && one.find_first_not_of("0123456789") == std::string::npos; };
    return groups.size() > 2 && !groups[0].empty() && groups[0].size() <= 3 &&
           groups[0].find_first_not_of("-$ 0123456789") == std::string::npos && std::all_of(groups.begin() + 1, groups.end(), isGroup);
}

bool isNumberWith(std::string_view text, char point, char group) {
    const std::size_t at = text.find_last_of(point);
    if (at == std::string_view::npos || at == 0 || text.size() - at - 1 < 1 || text.size() - at - 1 > 4)
        return false;
    // "1,234" may be either.
    if (text.size() - at - 1 == 3 && text.find(group) == std::string_view::npos)
        return false;
    return std::all_of(text.begin(), text.end(),
                       [&](char c) { return (c >= '0' && c <= '9') || c == point || c == group || c == '-' || c == ' ' || c == '$'; });
}

// What a spreadsheet writes to keep a text from becoming a number: ="00123".
std::string_view withoutFormulaQuotes(std::string_view text) {
    const bool quoted = text.size() >= 3 && text.starts_with("=\"") && text.ends_with('"');
    return quoted ? text.substr(2, text.size() - 3) : text;
}

} // namespace

const std::vector<std::string>& encodings() {
    static const std::vector<std::string> kAll{"UTF-8",        "Windows-1252", "UTF-16LE",     "UTF-16BE",  "Windows-1250",
                                               "Windows-1251", "Windows-1253", "Windows-1254", "Shift_JIS", "GB18030",
                                               "Big5",         "EUC-KR",       "IBM850",       "IBM437",    "MACINTOSH"};
    return kAll;
}

const std::vector<Delimiter>& delimiters() {
    static const std::vector<Delimiter> kAll{{',', "Comma"}, {';', "Semicolon"}, {'\t', "Tab"}, {'|', "Bar"}, {':', "Colon"}};
    return kAll;
}

char guessedDelimiter(const std::string& text) {
    char best = ',';
    std::size_t most = 0;
    for (const Delimiter& one : delimiters()) {
        const std::size_t found = evenness(firstRows(text, one.sign));
        if (found > most)
            best = one.sign;
        most = std::max(most, found);
    }
    return best;
}

bool guessedDecimalComma(const std::string& text, char delimiter) {
    int commas = 0;
    int points = 0;
    for (const CsvRow& row : firstRows(text, delimiter))
        for (const CsvCell& cell : row.cells) {
            commas += isNumberWith(cell.text, ',', '.') || isGroupedTwice(cell.text, '.') ? 1 : 0;
            points += isNumberWith(cell.text, '.', ',') || isGroupedTwice(cell.text, ',') ? 1 : 0;
        }
    return commas > points;
}

DelimitedFile::DelimitedFile(const std::filesystem::path& file) : bytes_(readAll(file)) {
    if (bytes_.empty())
        throw FileRefused("The file is empty.");
    guessed_.encoding = guessedEncoding(bytes_);
    std::string sample;
    convert(std::string_view(bytes_).substr(0, kGuessBytes), guessed_.encoding, sample, true);
    if (sample.starts_with(kMarkOfUtf8))
        sample.erase(0, kMarkOfUtf8.size());
    guessed_.lineEnd = guessedLineEnd(sample);
    guessed_.delimiter = guessedDelimiter(sample);
    guessed_.decimalComma = guessedDecimalComma(sample, guessed_.delimiter);
}

std::string DelimitedFile::decoded(const std::string& encoding) const {
    if (encoding == "UTF-8" && isUtf8(bytes_, false))
        return bytes_;
    std::string text;
    const std::size_t wrong = convert(bytes_, encoding, text, false);
    if (wrong == std::string::npos)
        return text;
    const auto line = std::count(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(wrong), '\n') + 1;
    throw FileRefused("The file is not written in " + encoding + ": line " + std::to_string(line) +
                      " has a character that it does not know. Please choose another encoding.");
}

struct DelimitedReading::Source {
    // Reads a text in place.
    struct Buffer : std::streambuf {
        explicit Buffer(std::string& text) { setg(text.data(), text.data(), text.data() + text.size()); }
    };
    Source(std::string all, char delimiter) : text(std::move(all)), buffer(text), in(&buffer), reader(in, delimiter) {}

    std::string text;
    Buffer buffer;
    std::istream in;
    CsvReader reader;
    CsvRow row;
};

DelimitedReading::DelimitedReading(const DelimitedFile& file, const DelimitedShape& shape)
    : source_(std::make_unique<Source>(file.decoded(shape.encoding), shape.delimiter)) {
    table_.delimiter = shape.delimiter;
}

DelimitedReading::~DelimitedReading() = default;

int DelimitedReading::step() {
    if (source_ == nullptr)
        return 100;
    try {
        for (int i = 0; i < kRowsOfAStep; ++i) {
            if (!source_->reader.next(source_->row)) {
                table_.finish();
                source_.reset();
                return 100;
            }
            table_.beginRow(source_->row.number);
            int column = 0;
            for (const CsvCell& cell : source_->row.cells) {
                if (!cell.text.empty())
                    table_.add(column, CellKind::Text, withoutFormulaQuotes(cell.text));
                ++column;
            }
            table_.setWritten(column);
        }
    } catch (const CsvError& error) {
        throw FileRefused(error.what());
    }
    return static_cast<int>(
        std::min<std::int64_t>(99, source_->reader.bytes() * 100 / static_cast<std::int64_t>(source_->text.size() + 1)));
}

} // namespace merchantry::exchange
