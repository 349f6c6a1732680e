#include "exchange/import/filepage.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/characters.h"
#include "base/counted.h"
#include "base/guard.h"
#include "base/text.h"
#include "exchange/import/decimals.h"
#include "exchange/import/importwriting.h"
#include "ui/desk.h"
#include "ui/longwork.h"

#include <algorithm>

namespace merchantry::exchange {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kFolder = "folder"; // remembered for the user
constexpr int kSampleRows = 200;
constexpr int kSampleColumns = 30;

enum Decimals { kPoint, kComma, kUnsaid };

int hiddenRows(const SheetTable& table) {
    int count = 0;
    for (int row = 0; row < table.rows(); ++row)
        count += table.hidden(row) ? 1 : 0;
    return count;
}

int positionOf(char delimiter) {
    const auto& signs = delimiters();
    const auto sign = std::find_if(signs.begin(), signs.end(), [&](const Delimiter& one) { return one.sign == delimiter; });
    return sign == signs.end() ? -1 : static_cast<int>(sign - signs.begin());
}

} // namespace

FilePage::FilePage(ImportScreen& screen, MatchedTable& matched)
    : screen_(screen), matched_(matched), txtFile(screen.form(), "txtFile"), cmdBrowse(screen.form(), "cmdBrowse", "Choose &File..."),
      lbxTarget(screen.form(), "lbxTarget"), lbxSheet(screen.form(), "lbxSheet"), lbxEncoding(screen.form(), "lbxEncoding"),
      lbxDelimiter(screen.form(), "lbxDelimiter"), lbxDecimals(screen.form(), "lbxDecimals"), txtHeadings(screen.form(), "txtHeadings"),
      chkHidden(screen.form(), "chkHidden", "Take &hidden rows, too"), lblFound(screen.form(), "lblFound"),
      grdSample(screen.form(), "grdSample") {
    for (const TargetName& one : targets())
        lbxTarget.add(one.caption);
    for (const std::string& one : encodings())
        lbxEncoding.add(one);
    for (const Delimiter& one : delimiters())
        lbxDelimiter.add(one.name);
    for (const char* one : {"Point: 1,234.50", "Comma: 1.234,50", "Please choose"})
        lbxDecimals.add(one);
    txtFile.setLocked(true);
    txtFile.placeholder = "No file is chosen yet";
    txtHeadings.alignRight = true;
    txtHeadings.maxLength = 7;
    txtHeadings.setToolTip("The row with the headings; what stands above it is left out. Empty for a file without headings.");
    grdSample.editable = false;
    grdSample.emptyText = "Choose a workbook (.xlsx) or a file of delimited text (.csv, .txt).";
    cmdBrowse.click = [this] { cmdBrowse_Click(); };
    lbxTarget.click = [this] { lbxTarget_Click(); };
    lbxSheet.click = lbxEncoding.click = lbxDelimiter.click = [this] { takeShape(); };
    txtHeadings.lostFocus = [this] { txtHeadings_LostFocus(); };
    lbxDecimals.click = [this] { lbxDecimals_Click(); };
    chkHidden.click = [this] { screen_.outdated(); };
}

Item FilePage::item() {
    return column({
        fields({field("File:", txtFile, {at(cmdBrowse)}).wide(50)}),
        row({fields({field("It h&olds:", lbxTarget).wide(26), field("Shee&t:", lbxSheet).wide(26),
                     field("Headings in ro&w:", txtHeadings, {at(chkHidden)}).wide(8)}),
             gap(),
             fields({field("Encodin&g:", lbxEncoding).wide(17), field("Deli&miter:", lbxDelimiter).wide(17),
                     field("&Decimals:", lbxDecimals).wide(17)}),
             stretch()}),
        at(lblFound).high(2).wide(60),
        at(grdSample).high(4).wide(60).stretched(),
    });
}

void FilePage::load() {
    const Restore filling(filling_, true);
    lbxTarget.setListIndex(0);
    lbxDecimals.setListIndex(0);
    showShape();
}

void FilePage::cmdBrowse_Click() {
    const std::string& screen = screen_.form().name();
    const std::string folder = desk().remembered(screen, kFolder);
    const auto file =
        desk().file({"Choose a File to Import", "Workbooks and Text (*.xlsx;*.csv;*.txt)|*.xlsx;*.csv;*.txt|All Files (*.*)|*.*",
                     folder.empty() ? desk().documentsFolder().string() : folder, false});
    if (!file)
        return;
    desk().remember(screen, kFolder, file->parent_path().string());
    open(*file);
}

void FilePage::open(const std::filesystem::path& file) {
    try {
        source_ = std::make_unique<ImportSource>(file);
    } catch (const FileRefused& refused) {
        desk().message(refused.what(), kProduct, MessageIcon::Exclamation);
        return;
    }
    txtFile.setText(file.string());
    decimalsSaid_ = false;
    showShape();
    read();
}

// The sheets or the shape of the file as they are guessed or chosen.
void FilePage::showShape() {
    const Restore filling(filling_, true);
    const bool book = source_ != nullptr && source_->isWorkbook();
    const bool text = source_ != nullptr && !book;
    lbxSheet.clear();
    if (book) {
        for (const Workbook::Sheet& one : source_->sheets())
            lbxSheet.add(one.name + (one.hidden ? " (hidden)" : ""));
        lbxSheet.setListIndex(static_cast<int>(source_->sheet));
    }
    lbxDelimiter.setListIndex(text ? positionOf(source_->shape.delimiter) : -1);
    lbxEncoding.setListIndex(text ? lbxEncoding.indexOf(source_->shape.encoding) : -1);
    lbxSheet.setEnabled(book);
    for (ListBox* one : {&lbxEncoding, &lbxDelimiter})
        one->setEnabled(text);
    for (Control* one : std::initializer_list<Control*>{&lbxDecimals, &txtHeadings, &chkHidden})
        one->setEnabled(source_ != nullptr);
}

void FilePage::takeShape() {
    if (filling_ || source_ == nullptr)
        return;
    if (source_->isWorkbook()) {
        source_->sheet = static_cast<std::size_t>(std::max(0, lbxSheet.listIndex()));
    } else {
        source_->shape.encoding = lbxEncoding.text();
        source_->shape.delimiter = delimiters()[static_cast<std::size_t>(std::max(0, lbxDelimiter.listIndex()))].sign;
    }
    read();
}

void FilePage::read() {
    screen_.outdated();
    matched_.table = {};
    try {
        source_->begin();
        if (longWork(desk(), "Reading " + source_->name() + " ...", [this] { return source_->step(); }))
            matched_.table = source_->take();
    } catch (const FileRefused& refused) {
        desk().message(refused.what(), kProduct, MessageIcon::Exclamation);
    }
    guarded({kImportTag, "Read_File"}, [this] { match(); });
}

void FilePage::match() {
    matched_.matchAnew(modMain().Conn->session());
    earlier_ = source_ == nullptr ? "" : earlierImport(modMain().Conn->session(), matched_.target, source_->hash());
    showFound();
    showSample();
    screen_.columnsMatched();
}

void FilePage::lbxTarget_Click() {
    matched_.target = targets()[static_cast<std::size_t>(std::max(0, lbxTarget.listIndex()))].target;
    if (!filling_)
        guarded({kImportTag, "lbxTarget_Click"}, [this] { match(); });
}

void FilePage::txtHeadings_LostFocus() {
    const int number = static_cast<int>(Value(txtHeadings.text()).toInteger());
    const bool changed = source_ != nullptr && matched_.matchBy(number);
    showFound();
    if (changed)
        screen_.columnsMatched();
}

void FilePage::lbxDecimals_Click() {
    if (filling_)
        return;
    decimalsSaid_ = lbxDecimals.listIndex() != kUnsaid;
    screen_.outdated();
}

void FilePage::showDecimals() {
    if (decimalsSaid_)
        return;
    const Restore filling(filling_, true);
    const bool comma = source_ != nullptr && !source_->isWorkbook() && source_->shape.decimalComma;
    const bool unclear = !comma && decimalsUnclear(matched_.table, matched_.match, matched_.target);
    lbxDecimals.setListIndex(comma ? kComma : unclear ? kUnsaid : kPoint);
}

void FilePage::showFound() {
    const int row = matched_.match.headingRow;
    txtHeadings.setText(row < 0 ? "" : std::to_string(matched_.table.number(row)));
    lblFound.setCaption(source_ == nullptr ? "" : found());
}

std::string FilePage::found() const {
    const SheetTable& table = matched_.table;
    std::string words = counted(table.rows(), "row") + " in " + counted(table.columns(), "column") + ".";
    if (!source_->isWorkbook())
        words += " Lines end with " + source_->shape.lineEnd + ".";
    if (const int hidden = hiddenRows(table); hidden > 0)
        words += " " + counted(hidden, "row is hidden", "rows are hidden") + " and left out unless you tick them.";
    const auto columns = std::count(table.hiddenColumns.begin(), table.hiddenColumns.end(), true);
    if (columns > 0)
        words += " " + counted(columns, "hidden column is", "hidden columns are") + " left aside.";
    if (table.merged > 0)
        words += " " + counted(table.merged, "area is merged: its", "areas are merged: their") + " value counts for the first cell alone.";
    words += matched_.match.headingRow < 0 && table.rows() > 0 ? " No headings were recognised." : "";
    words += earlier_.empty() ? "" : " " + earlier_;
    return words;
}

void FilePage::showSample() {
    const SheetTable& table = matched_.table;
    const int shown = std::min(table.columns(), kSampleColumns);
    std::vector<GridColumn> columns{{.heading = "Row", .format = GridColumn::Format::Number}};
    for (int column = 0; column < shown; ++column)
        columns.push_back({.heading = columnLetters(column)});
    grdSample.setDataRows(0);
    grdSample.setColumns(std::move(columns));
    for (int row = 0; row < std::min(table.rows(), kSampleRows); ++row) {
        std::vector<std::string> cells{std::to_string(table.number(row)) + (table.hidden(row) ? " (hidden)" : "")};
        for (int column = 0; column < shown; ++column)
            cells.emplace_back(characters(table.cell(row, column).text, 0, kSampleText));
        grdSample.addRow(cells);
    }
    grdSample.setStatusText(table.rows() > kSampleRows ? "The first " + std::to_string(kSampleRows) + " rows." : "");
}

void FilePage::addTo(ImportOptions& chosen) const {
    chosen.reading.decimalComma = lbxDecimals.listIndex() == kComma;
    chosen.reading.decimalsSaid = decimalsSaid_;
    chosen.hiddenRows = chkHidden.value();
}

} // namespace merchantry::exchange
