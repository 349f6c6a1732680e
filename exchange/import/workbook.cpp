#include "exchange/import/workbook.h"

#include "base/text.h"
#include "exchange/import/cellvalue.h"
#include "exchange/import/xmlpieces.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <map>

namespace merchantry::exchange {
namespace {

constexpr const char* kNoSheet = "The workbook has no sheet with cells.";
constexpr std::size_t kMostMergeSteps = 50'000'000;

int numberOr(const char* text, int otherwise) {
    const std::string_view view = text;
    int number = 0;
    const auto [end, error] = std::from_chars(view.data(), view.data() + view.size(), number);
    return error == std::errc() && end == view.data() + view.size() ? number : otherwise;
}

bool isOn(const pugi::xml_attribute& attribute) {
    const std::string_view text = attribute.value();
    return text == "1" || text == "true";
}

// "xl/worksheets/sheet1.xml" for "worksheets/sheet1.xml" of "xl/workbook.xml"; a path from the root stays.
std::string partBeside(const std::string& part, std::string target) {
    if (target.starts_with('/'))
        return target.substr(1);
    std::string folder = part.substr(0, part.rfind('/') + 1);
    for (; target.starts_with("../"); target.erase(0, 3))
        folder.resize(folder.size() < 2 ? 0 : folder.rfind('/', folder.size() - 2) + 1);
    return folder + target;
}

std::string relationsOf(const std::string& part) {
    const std::size_t slash = part.rfind('/') + 1;
    return part.substr(0, slash) + "_rels/" + part.substr(slash) + ".rels";
}

// The texts of a string with its runs joined; how it is pronounced is left out.
std::string joinedText(const pugi::xml_node& item) {
    std::string text;
    for (const pugi::xml_node child : item.children()) {
        const std::string_view name = localName(child.name());
        if (name == "t")
            text += child.child_value();
        else if (name == "r")
            text += childNamed(child, "t").child_value();
    }
    return text.find("_x") == std::string::npos ? text : unescaped(text);
}

struct CellPlace {
    int row = 0; // from 1, 0 when it is not told
    int column = -1;
};

CellPlace placeOf(std::string_view reference) {
    CellPlace place;
    std::size_t at = 0;
    int column = 0;
    for (; at < reference.size() && std::isalpha(static_cast<unsigned char>(reference[at])) != 0 && column < kMostColumns; ++at)
        column = column * 26 + (std::toupper(static_cast<unsigned char>(reference[at])) - 'A' + 1);
    place.column = column - 1;
    std::from_chars(reference.data() + at, reference.data() + reference.size(), place.row);
    return place;
}

// By the number of a format, or by its code.
template <typename Format> CellKind kindOfFormat(const Format& format) {
    return isDateFormat(format) ? CellKind::Date : isPercentFormat(format) ? CellKind::Percent : CellKind::Number;
}

} // namespace

struct Workbook::File : ZipFile {
    using ZipFile::ZipFile;

    struct Relation {
        std::string type; // "worksheet", the last word of it
        std::string part;
    };
    // By their ids.
    std::map<std::string, Relation> relations(const std::string& part) {
        std::map<std::string, Relation> found;
        if (!has(relationsOf(part)))
            return found;
        const pugi::xml_document document = parsedPart(*this, relationsOf(part));
        for (const pugi::xml_node node : document.document_element().children()) {
            const std::string type = node.attribute("Type").value();
            found[node.attribute("Id").value()] = {type.substr(type.rfind('/') + 1), partBeside(part, node.attribute("Target").value())};
        }
        return found;
    }
};

Workbook::Workbook(const std::filesystem::path& file) : file_(std::make_unique<File>(file)) {
    readParts();
    if (sheets_.empty())
        throw FileRefused(kNoSheet);
}

Workbook::~Workbook() = default;

void Workbook::readParts() {
    std::string book = "xl/workbook.xml";
    for (const auto& [id, relation] : file_->relations(""))
        if (relation.type == "officeDocument")
            book = relation.part;
    if (book.ends_with(".bin"))
        throw FileRefused("This is a binary workbook (.xlsb). Please save it as .xlsx and try again.");
    if (!file_->has(book) && file_->has("content.xml"))
        throw FileRefused("This is a document of another format. Please save it as .xlsx and try again.");
    if (!file_->has(book))
        throw FileRefused("The file is packed, but holds no workbook.");
    readSheets(book);
    for (const auto& [id, relation] : file_->relations(book)) {
        if (relation.type == "sharedStrings" && file_->has(relation.part))
            sharedStrings_ = relation.part;
        else if (relation.type == "styles" && file_->has(relation.part))
            readStyles(relation.part);
    }
}

void Workbook::readSheets(const std::string& part) {
    const auto relations = file_->relations(part);
    const pugi::xml_document document = parsedPart(*file_, part);
    const pugi::xml_node root = document.document_element();
    from1904_ = isOn(attributeNamed(childNamed(root, "workbookPr"), "date1904"));
    for (const pugi::xml_node sheet : childNamed(root, "sheets").children()) {
        const auto found = relations.find(attributeNamed(sheet, "id").value());
        if (found != relations.end() && found->second.type == "worksheet" && file_->has(found->second.part))
            sheets_.push_back({sheet.attribute("name").value(), std::string_view(sheet.attribute("state").value()).ends_with("idden"),
                               found->second.part});
    }
}

void Workbook::readStyles(const std::string& part) {
    const pugi::xml_document document = parsedPart(*file_, part);
    const pugi::xml_node root = document.document_element();
    std::map<int, CellKind> own;
    for (const pugi::xml_node format : childNamed(root, "numFmts").children())
        own[numberOr(attributeNamed(format, "numFmtId").value(), -1)] =
            kindOfFormat(std::string_view(attributeNamed(format, "formatCode").value()));
    for (const pugi::xml_node style : childNamed(root, "cellXfs").children()) {
        const int format = numberOr(attributeNamed(style, "numFmtId").value(), 0);
        const auto found = own.find(format);
        numberKind_.push_back(found == own.end() ? kindOfFormat(format) : found->second);
    }
}

struct SheetReading::State {
    State(Workbook& owner, const Workbook::Sheet& sheet) : book(owner), part(sheet.part) {
        if (!book.sharedStrings_.empty())
            shared = std::make_unique<XmlPieces>(*book.file_, book.sharedStrings_, "sst", "si");
        bytes = book.file_->sizeOf(sheet.part) + (shared ? book.file_->sizeOf(book.sharedStrings_) : 0);
    }
    int percent() const {
        const std::int64_t done = (shared ? shared->bytes() : 0) + (rows ? rows->bytes() : 0);
        return bytes <= 0 ? 99 : static_cast<int>(std::min<std::int64_t>(99, done * 100 / bytes));
    }

    void takeRow(SheetTable& table, const pugi::xml_node& row);
    void takeCell(SheetTable& table, const pugi::xml_node& cell, int column);
    void takeNumber(SheetTable& table, int column, const char* written, const pugi::xml_node& cell);

    Workbook& book;
    std::string part;
    std::unique_ptr<XmlPieces> shared;
    std::unique_ptr<XmlPieces> rows;
    std::vector<SheetTable::Kept> strings;
    std::int64_t bytes = 0; // of both parts
    int row = 0;            // the last one's number
    bool sharedRead = false;
};

// Cells without a value, only with a look, are left out.
void SheetReading::State::takeRow(SheetTable& table, const pugi::xml_node& node) {
    row = numberOr(node.attribute("r").value(), row + 1);
    table.beginRow(row, isOn(node.attribute("hidden")));
    int column = -1;
    for (const pugi::xml_node cell : node.children()) {
        if (localName(cell.name()) != "c")
            continue;
        const CellPlace place = placeOf(cell.attribute("r").value());
        column = place.column >= 0 ? place.column : column + 1;
        takeCell(table, cell, column);
    }
}

void SheetReading::State::takeCell(SheetTable& table, const pugi::xml_node& cell, int column) {
    const std::string_view type = cell.attribute("t").value();
    if (type == "inlineStr") {
        if (const std::string text = joinedText(childNamed(cell, "is")); !text.empty())
            table.add(column, CellKind::Text, text);
        return;
    }
    const char* const written = childNamed(cell, "v").child_value();
    if (*written == '\0')
        return;
    if (type == "s") {
        const int index = numberOr(written, -1);
        if (index < 0 || static_cast<std::size_t>(index) >= strings.size())
            throw FileRefused("The workbook is damaged: the text of a cell in row " + std::to_string(row) + " is not there.");
        if (const SheetTable::Kept text = strings[static_cast<std::size_t>(index)]; text.length > 0)
            table.addKept(column, CellKind::Text, text);
    } else if (type == "str") {
        table.add(column, CellKind::Text, unescaped(written));
    } else if (type == "b") {
        table.add(column, CellKind::Flag, *written == '1' || *written == 't' ? "TRUE" : "FALSE");
    } else if (type == "e") {
        table.add(column, CellKind::Error, written);
    } else if (type == "d") {
        table.add(column, CellKind::Date, replaced(written, "T", " "));
    } else {
        takeNumber(table, column, written, cell);
    }
}

void SheetReading::State::takeNumber(SheetTable& table, int column, const char* written, const pugi::xml_node& cell) {
    const auto decimal = decimalText(written);
    if (!decimal)
        return table.add(column, CellKind::Error, written);
    const int style = numberOr(cell.attribute("s").value(), 0);
    const bool known = style >= 0 && static_cast<std::size_t>(style) < book.numberKind_.size();
    const CellKind kind = known ? book.numberKind_[static_cast<std::size_t>(style)] : CellKind::Number;
    if (kind == CellKind::Percent)
        return table.add(column, kind, decimalText(*decimal + "E2").value_or(*decimal) + "%");
    if (kind == CellKind::Number)
        return table.add(column, kind, *decimal);
    if (const auto date = dateText(*decimal, book.from1904_))
        return table.add(column, CellKind::Date, *date);
    table.add(column, CellKind::Error, *decimal + " (no day)");
}

SheetReading::SheetReading(Workbook& book, std::size_t sheet)
    : book_(book), state_(std::make_unique<State>(book, book.sheets().at(sheet))) {}

SheetReading::~SheetReading() = default;

int SheetReading::step() {
    if (state_ == nullptr)
        return 100;
    if (state_->shared && !state_->sharedRead)
        readShared();
    else
        readRows();
    return state_ == nullptr ? 100 : state_->percent();
}

void SheetReading::readShared() {
    const pugi::xml_document* items = state_->shared->next();
    state_->sharedRead = items == nullptr;
    if (items != nullptr)
        for (const pugi::xml_node item : items->children())
            state_->strings.push_back(table_.keep(joinedText(item)));
}

void SheetReading::readRows() {
    if (state_->rows == nullptr)
        state_->rows = std::make_unique<XmlPieces>(*book_.file_, state_->part, "sheetData", "row");
    const pugi::xml_document* rows = state_->rows->next();
    if (rows == nullptr)
        return finish();
    for (const pugi::xml_node row : rows->children())
        state_->takeRow(table_, row);
}

// What stands around the rows.
void SheetReading::finish() {
    const pugi::xml_document columns = elementIn(state_->rows->head(), "cols");
    const pugi::xml_document merges = elementIn(state_->rows->tail(), "mergeCells");
    takeHiddenColumns(columns.document_element());
    takeMerged(merges.document_element());
    table_.finish();
    state_.reset();
}

void SheetReading::takeHiddenColumns(const pugi::xml_node& columns) {
    table_.hiddenColumns.resize(static_cast<std::size_t>(table_.columns()));
    for (const pugi::xml_node column : columns.children()) {
        if (!isOn(column.attribute("hidden")))
            continue;
        const int first = std::max(1, numberOr(column.attribute("min").value(), 1));
        const int last = std::min(numberOr(column.attribute("max").value(), 0), table_.columns());
        for (int i = first; i <= last; ++i)
            table_.hiddenColumns[static_cast<std::size_t>(i - 1)] = true;
    }
}

// The first cell of a merged area has its value; what others hold is not seen in the spreadsheet.
void SheetReading::takeMerged(const pugi::xml_node& merges) {
    std::size_t steps = 0;
    for (const pugi::xml_node merge : merges.children()) {
        const std::vector<std::string> ends = split(attributeNamed(merge, "ref").value(), ":");
        if (ends.size() != 2)
            continue;
        const CellPlace first = placeOf(ends[0]);
        const CellPlace last = placeOf(ends[1]);
        ++table_.merged;
        for (int row = table_.rowAt(first.row); row < table_.rows() && table_.number(row) <= last.row; ++row) {
            steps += static_cast<std::size_t>(table_.cells(row)) + 1;
            if (steps > kMostMergeSteps)
                throw FileRefused("The workbook has too many merged cells to be read.");
            for (int column = first.column; column <= std::min(last.column, table_.cells(row) - 1); ++column)
                if (table_.number(row) != first.row || column != first.column)
                    table_.clear(row, column);
        }
    }
}

} // namespace merchantry::exchange
