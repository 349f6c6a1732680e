#include "exchange/import/frmExcelImport.h"

#include "app/modMain.h"
#include "base/characters.h"
#include "base/counted.h"
#include "base/guard.h"
#include "base/numbers.h"
#include "base/text.h"
#include "exchange/import/decimals.h"
#include "ui/desk.h"
#include "ui/gridexport.h"
#include "ui/longwork.h"

#include <algorithm>
#include <map>

namespace merchantry::exchange {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmExcelImport";
constexpr const char* kProduct = "Velmora Tillmark Professional";
constexpr const char* kFolder = "folder"; // remembered for the user
constexpr int kColumnsPage = 1;
constexpr int kCheckPage = 2;
constexpr int kRunsPage = 3;
constexpr int kSampleRows = 200;
constexpr int kSampleColumns = 30;
constexpr std::size_t kSampleText = 60;
constexpr std::size_t kReasonsShown = 10;
constexpr const char* kLeftAside = "(left aside)";

enum ColumnsColumn { kLetter, kHeading, kValues, kField };
enum Decimals { kPoint, kComma, kUnsaid };
enum RunsColumn { kRun, kMade, kWhat, kFile, kWords, kUndone };

int hiddenRows(const SheetTable& table) {
    int count = 0;
    for (int row = 0; row < table.rows(); ++row)
        count += table.hidden(row) ? 1 : 0;
    return count;
}

// The first values below the headings, to know a column by.
std::string firstValues(const SheetTable& table, int headingRow, int column) {
    std::vector<std::string> values;
    for (int row = headingRow + 1; row < std::min(table.rows(), headingRow + 50) && values.size() < 3; ++row)
        if (const auto text = trimmed(table.cell(row, column).text); !text.empty())
            values.emplace_back(characters(text, 0, kSampleText));
    return joined(values, ", ");
}

std::string reasonsInWords(const std::vector<std::string>& reasons) {
    std::string words;
    for (std::size_t i = 0; i < std::min(reasons.size(), kReasonsShown); ++i)
        words += "\n" + reasons[i];
    if (reasons.size() > kReasonsShown)
        words += "\n(and more)";
    return words;
}

} // namespace

frmExcelImport::frmExcelImport(Desk& desk) : Form(desk, "frmExcelImport", "Excel Import") {
    setIcon("import");
    setUpGrids();
    for (const TargetName& one : targets())
        lbxTarget.add(one.caption);
    for (const std::string& one : encodings())
        lbxEncoding.add(one);
    for (const Delimiter& one : delimiters())
        lbxDelimiter.add(one.name);
    for (const char* one : {"Point: 1,234.50", "Comma: 1.234,50", "Please choose"})
        lbxDecimals.add(one);
    for (const char* one : {"Tell them as bad cells", "Mend them", "Take them as they are"})
        lbxCodes.add(one);
    txtFile.setLocked(true);
    txtFile.placeholder = "No file is chosen yet";
    txtHeadings.alignRight = true;
    txtHeadings.maxLength = 7;
    txtHeadings.setToolTip("The row with the headings; what stands above it is left out. Empty for a file without headings.");
    lbxCodes.setToolTip("Codes that a spreadsheet took for numbers: zeros dropped in front, \".0\" behind.");
    lbxSupplier.setToolTip("Whose costs and part numbers these are, where a row names no supplier.");
    lbxReason.setToolTip("The adjustment code under which stock is posted.");
    chkRound.setToolTip(
        "Amounts of more than two decimals are rounded as the spreadsheet shows them. Without the tick, those of more than four are bad "
        "cells.");
    cmdImport.setToolTip("Writes all rows in one go, or none. Asks before.");
    cmdImport.isDefault = true;
    cmdExit.isCancel = true;
    wire();
    setLayout(column({
        row({title(lblHeading), stretch(), figure("New", lblNew), figure("Changed", lblChanged), figure("As they were", lblSame),
             figure("Bad rows", lblBad)}),
        pages(tabImport, {filePage(), columnsPage(), checkPage(), runsPage()}).stretched(),
        buttons({at(chkLeaveOut), stretch(), at(cmdCheck), at(cmdExit), at(cmdImport)}),
    }));
}

frmExcelImport::~frmExcelImport() {
    grdRows.bind(nullptr);
    grdFindings.bind(nullptr);
}

void frmExcelImport::setUpGrids() {
    using Format = GridColumn::Format;
    for (Grid* grid : {&grdSample, &grdFindings, &grdRows, &grdRuns})
        grid->editable = false;
    grdSample.emptyText = "Choose a workbook (.xlsx) or a file of delimited text (.csv, .txt).";
    grdColumns.setColumns({{.heading = "Column", .characters = 7},
                           {.heading = "Heading", .characters = 22},
                           {.heading = "First Values", .characters = 34},
                           {.heading = "Goes To", .editor = GridColumn::Editor::Combo, .characters = 20}});
    grdColumns.emptyText = "Choose a file first.";
    grdColumns.beforeEdit = [](int, int column, bool& cancel) { cancel = column != kField; };
    grdColumns.afterEdit = [this](int row, int) { grdColumns_AfterEdit(row); };
    grdFindings.setColumns({{.heading = "Row", .format = Format::Number, .characters = 7},
                            {.heading = "Column", .characters = 16},
                            {.heading = "Value", .characters = 18},
                            {.heading = "Why It Cannot Be Taken", .characters = 60}});
    grdFindings.emptyText = "No bad cells.";
    grdFindings.dblClick = [this] { cmdJump_Click(); };
    grdFindings.rowColChange = [this] { showReason(grdFindings); };
    grdRows.setColumns({{.heading = "Row", .format = Format::Number, .characters = 7},
                        {.heading = "What", .characters = 9},
                        {.heading = "Code", .fixedWidth = true, .characters = 14},
                        {.heading = "Name", .characters = 22},
                        {.heading = "What Changes, or Why It Cannot Be Taken", .characters = 50}});
    grdRows.emptyText = "No rows.";
    grdRows.rowColChange = [this] { showReason(grdRows); };
    grdRows.colorOf = [this](int row, int column) {
        const RowState state = plannedRows_.stateAt(row - 1);
        return column != 1 ? Color::None : state == RowState::Bad ? Color::Red : state == RowState::New ? Color::Green : Color::None;
    };
    grdRuns.setColumns({{.heading = "Import", .hidden = true},
                        {.heading = "Made", .format = Format::Date, .characters = 22},
                        {.heading = "What", .characters = 10},
                        {.heading = "File", .characters = 28},
                        {.heading = "Rows", .characters = 40},
                        {.heading = "Undone", .format = Format::Date, .characters = 22}});
    grdRuns.emptyText = "Nothing was imported yet.";
    grdRuns.rowColChange = [this] { setAvailable(); };
}

void frmExcelImport::wire() {
    cmdBrowse.click = [this] { cmdBrowse_Click(); };
    lbxTarget.click = [this] { lbxTarget_Click(); };
    lbxSheet.click = lbxEncoding.click = lbxDelimiter.click = [this] { takeShape(); };
    txtHeadings.lostFocus = [this] { txtHeadings_LostFocus(); };
    lbxDecimals.click = [this] { lbxDecimals_Click(); };
    for (ListBox* one : {&lbxCodes, &lbxSupplier, &lbxReason})
        one->click = [this] { outdated(); };
    for (CheckBox* one : {&chkHidden, &chkDepartments, &chkSuppliers, &chkRound})
        one->click = [this] { outdated(); };
    tabImport.change = [this](int) { tabImport_Change(); };
    lbxFindings.click = [this] { showFindings(); };
    lbxRows.click = [this] { showRows(); };
    chkLeaveOut.click = [this] { setAvailable(); };
    cmdJump.click = [this] { cmdJump_Click(); };
    cmdExportBad.click = [this] { cmdExportBad_Click(); };
    cmdUndo.click = [this] { cmdUndo_Click(); };
    cmdCheck.click = [this] { cmdCheck_Click(); };
    cmdImport.click = [this] { cmdImport_Click(); };
    cmdExit.click = [this] { unload(); };
}

Item frmExcelImport::filePage() {
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

Item frmExcelImport::columnsPage() {
    return row({
        at(grdColumns).high(6).wide(60).stretched(3),
        column({
            fields({field("Changed codes:", lbxCodes).wide(20), field("Su&pplier of all rows:", lbxSupplier).wide(20),
                    field("Adjustm&ent code:", lbxReason).wide(20)}),
            gap(),
            at(chkDepartments),
            at(chkSuppliers),
            at(chkRound),
            stretch(),
        }),
    });
}

Item frmExcelImport::checkPage() {
    return column({
        row({fields({field("&Bad cells:", lbxFindings).wide(30)}), stretch(), at(cmdJump), at(cmdExportBad)}),
        at(grdFindings).high(3).wide(60).stretched(2),
        row({fields({field("R&ows:", lbxRows).wide(20)}), gap(), at(lblSums).high(1).stretched()}),
        at(grdRows).high(4).stretched(3),
        at(lblReason).high(2).wide(60),
    });
}

Item frmExcelImport::runsPage() {
    return column({
        at(grdRuns).high(6).stretched(),
        row({note("An import is taken back as one, as long as what it changed was not changed since"), stretch(), at(cmdUndo)}),
    });
}

void frmExcelImport::Form_Load() {
    guarded({kTag, "Form_Load"}, [this] {
        const Restore filling(filling_, true);
        lbxTarget.setListIndex(0);
        lbxDecimals.setListIndex(0);
        lbxCodes.setListIndex(0);
        loadChoices();
        loadRuns();
        showShape();
    });
    showPlan();
}

void frmExcelImport::Form_Unload(bool& /*cancel*/) {
    grdRuns.bind(nullptr);
    closeRows(runs_);
}

void frmExcelImport::loadChoices() {
    lbxSupplier.add("(told by the rows)", -1);
    const auto suppliers = openDirect("SELECT SupID, Supplier FROM Suppliers ORDER BY SupID");
    for (; !suppliers->Eof(); suppliers->MoveNext())
        lbxSupplier.add((*suppliers)[1].text(), static_cast<int>((*suppliers)[0].Value().toInteger()));
    lbxSupplier.setListIndex(0);
    const auto reasons = openDirect("SELECT ReasonCode FROM InvReasonCodes ORDER BY ReasonID");
    for (; !reasons->Eof(); reasons->MoveNext())
        lbxReason.add((*reasons)[0].text());
    if (lbxReason.count() > 0)
        lbxReason.setListIndex(0);
}

Target frmExcelImport::target() const {
    return targets()[static_cast<std::size_t>(std::max(0, lbxTarget.listIndex()))].target;
}

// --- the file ---

void frmExcelImport::cmdBrowse_Click() {
    const std::string folder = desk().remembered(name(), kFolder);
    const auto file =
        desk().file({"Choose a File to Import", "Workbooks and Text (*.xlsx;*.csv;*.txt)|*.xlsx;*.csv;*.txt|All Files (*.*)|*.*",
                     folder.empty() ? desk().documentsFolder().string() : folder, false});
    if (!file)
        return;
    desk().remember(name(), kFolder, file->parent_path().string());
    open(*file);
}

void frmExcelImport::open(const std::filesystem::path& file) {
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
void frmExcelImport::showShape() {
    const Restore filling(filling_, true);
    const bool book = source_ != nullptr && source_->isWorkbook();
    const bool text = source_ != nullptr && !book;
    lbxSheet.clear();
    if (book) {
        for (const Workbook::Sheet& one : source_->sheets())
            lbxSheet.add(one.name + (one.hidden ? " (hidden)" : ""));
        lbxSheet.setListIndex(static_cast<int>(source_->sheet));
    }
    const auto& signs = delimiters();
    const auto sign =
        std::find_if(signs.begin(), signs.end(), [&](const Delimiter& one) { return text && one.sign == source_->shape.delimiter; });
    lbxDelimiter.setListIndex(sign == signs.end() ? -1 : static_cast<int>(sign - signs.begin()));
    lbxEncoding.setListIndex(text ? lbxEncoding.indexOf(source_->shape.encoding) : -1);
    lbxSheet.setEnabled(book);
    for (Control* one : {static_cast<Control*>(&lbxEncoding), static_cast<Control*>(&lbxDelimiter)})
        one->setEnabled(text);
    for (Control* one : std::initializer_list<Control*>{&lbxDecimals, &txtHeadings, &chkHidden})
        one->setEnabled(source_ != nullptr);
}

void frmExcelImport::lbxDecimals_Click() {
    if (filling_)
        return;
    decimalsSaid_ = lbxDecimals.listIndex() != kUnsaid;
    outdated();
}

// What is guessed, until the user says it: where the columns of amounts tell nothing, it is asked.
void frmExcelImport::showDecimals() {
    if (decimalsSaid_)
        return;
    const Restore filling(filling_, true);
    const bool comma = source_ != nullptr && !source_->isWorkbook() && source_->shape.decimalComma;
    lbxDecimals.setListIndex(comma ? kComma : decimalsUnclear(table_, match_, target()) ? kUnsaid : kPoint);
}

void frmExcelImport::takeShape() {
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

void frmExcelImport::read() {
    outdated();
    table_ = {};
    try {
        source_->begin();
        if (longWork(desk(), "Reading " + source_->name() + " ...", [this] { return source_->step(); }))
            table_ = source_->take();
    } catch (const FileRefused& refused) {
        desk().message(refused.what(), kProduct, MessageIcon::Exclamation);
    }
    guarded({kTag, "Read_File"}, [this] { match(); });
}

// By the headings, or as the columns of such a file went last.
void frmExcelImport::match() {
    match_ = matched(target(), table_);
    const std::string key = headingsKey(table_, match_.headingRow);
    const std::string before = key.empty() ? "" : rememberedColumns(modMain().Conn->session(), target(), key);
    if (!before.empty())
        recall(target(), before, match_);
    earlier_ = source_ == nullptr ? "" : earlierImport(modMain().Conn->session(), target(), source_->hash());
    showFound();
    showSample();
    showColumns();
    showDecimals();
    outdated();
}

void frmExcelImport::lbxTarget_Click() {
    if (!filling_)
        guarded({kTag, "lbxTarget_Click"}, [this] { match(); });
}

void frmExcelImport::txtHeadings_LostFocus() {
    const int number = static_cast<int>(Value(txtHeadings.text()).toInteger());
    const int row = table_.rowAt(number);
    const bool there = number > 0 && row < table_.rows() && table_.number(row) == number;
    const int wanted = there ? row : -1;
    if (source_ == nullptr || wanted == match_.headingRow)
        return showFound();
    match_ = matchedBy(target(), table_, wanted);
    showFound();
    showColumns();
    showDecimals();
    outdated();
}

void frmExcelImport::showFound() {
    txtHeadings.setText(match_.headingRow < 0 ? "" : std::to_string(table_.number(match_.headingRow)));
    if (source_ == nullptr)
        return lblFound.setCaption("");
    std::string words = counted(table_.rows(), "row") + " in " + counted(table_.columns(), "column") + ".";
    if (!source_->isWorkbook())
        words += " Lines end with " + source_->shape.lineEnd + ".";
    if (const int hidden = hiddenRows(table_); hidden > 0)
        words += " " + counted(hidden, "row is hidden", "rows are hidden") + " and left out unless you tick them.";
    const auto columns = std::count(table_.hiddenColumns.begin(), table_.hiddenColumns.end(), true);
    if (columns > 0)
        words += " " + counted(columns, "hidden column is", "hidden columns are") + " left aside.";
    if (table_.merged > 0)
        words += " " + counted(table_.merged, "area is merged: its", "areas are merged: their") + " value counts for the first cell alone.";
    words += match_.headingRow < 0 && table_.rows() > 0 ? " No headings were recognised." : "";
    words += earlier_.empty() ? "" : " " + earlier_;
    lblFound.setCaption(words);
}

void frmExcelImport::showSample() {
    const int shown = std::min(table_.columns(), kSampleColumns);
    std::vector<GridColumn> columns{{.heading = "Row", .format = GridColumn::Format::Number}};
    for (int column = 0; column < shown; ++column)
        columns.push_back({.heading = columnLetters(column)});
    grdSample.setDataRows(0);
    grdSample.setColumns(std::move(columns));
    for (int row = 0; row < std::min(table_.rows(), kSampleRows); ++row) {
        std::vector<std::string> cells{std::to_string(table_.number(row)) + (table_.hidden(row) ? " (hidden)" : "")};
        for (int column = 0; column < shown; ++column)
            cells.emplace_back(characters(table_.cell(row, column).text, 0, kSampleText));
        grdSample.addRow(cells);
    }
    grdSample.setStatusText(table_.rows() > kSampleRows ? "The first " + std::to_string(kSampleRows) + " rows." : "");
}

// --- the columns ---

void frmExcelImport::showColumns() {
    GridColumn goesTo = grdColumns.column(kField);
    goesTo.choices = {{kLeftAside, "-1"}};
    const auto fields = fieldsOf(target());
    for (std::size_t i = 0; i < fields.size(); ++i)
        goesTo.choices.emplace_back(fields[i].caption, std::to_string(i));
    grdColumns.setDataRows(0);
    grdColumns.setColumn(kField, goesTo);
    for (int column = 0; column < table_.columns(); ++column) {
        const std::string heading =
            match_.headingRow < 0 ? "" : std::string(characters(trimmed(table_.cell(match_.headingRow, column).text), 0, kSampleText));
        grdColumns.addRow({columnLetters(column), heading, firstValues(table_, match_.headingRow, column),
                           std::to_string(match_.fields[static_cast<std::size_t>(column)])});
    }
    const bool items = target() == Target::Items;
    for (Control* one : std::initializer_list<Control*>{&lbxSupplier, &lbxReason, &chkDepartments, &chkSuppliers, &chkRound})
        one->setEnabled(items);
}

void frmExcelImport::grdColumns_AfterEdit(int row) {
    const int wanted = static_cast<int>(Value(grdColumns.rawText(row, kField)).toInteger());
    match_.set(row - 1, wanted);
    for (int other = 1; other <= grdColumns.dataRows(); ++other) // one that had the field is left aside now
        grdColumns.setText(other, kField, std::to_string(match_.fields[static_cast<std::size_t>(other - 1)]));
    showDecimals();
    outdated();
}

ImportOptions frmExcelImport::options() const {
    ImportOptions chosen;
    chosen.reading.decimalComma = lbxDecimals.listIndex() == kComma;
    chosen.reading.decimalsSaid = decimalsSaid_;
    chosen.reading.roundMoney = chkRound.value();
    chosen.codes = static_cast<ImportOptions::Codes>(std::max(0, lbxCodes.listIndex()));
    chosen.makeDepartments = chkDepartments.value();
    chosen.makeSuppliers = chkSuppliers.value();
    chosen.hiddenRows = chkHidden.value();
    if (lbxSupplier.listIndex() > 0)
        chosen.supplier = static_cast<std::int16_t>(lbxSupplier.itemData());
    chosen.reason = lbxReason.text();
    return chosen;
}

// What was checked holds no more.
void frmExcelImport::outdated() {
    if (filling_)
        return;
    dropPlan();
    showPlan();
}

// The grids show nothing of a plan that is gone.
void frmExcelImport::dropPlan() {
    grdRows.bind(nullptr);
    grdFindings.bind(nullptr);
    plannedRows_.show(nullptr, std::nullopt);
    findingRows_.show(nullptr, std::nullopt);
    plan_.reset();
}

// --- the check ---

void frmExcelImport::tabImport_Change() {
    if (tabImport.current() == kCheckPage && plan_ == nullptr && source_ != nullptr)
        check();
    setAvailable();
}

void frmExcelImport::cmdCheck_Click() {
    dropPlan(); // the store may be another one by now
    if (tabImport.current() == kCheckPage)
        check();
    else
        tabImport.setCurrent(kCheckPage);
}

void frmExcelImport::check() {
    const bool codes = target() != Target::Items || match_.columnOf(item::Code) >= 0;
    if (!codes || std::all_of(match_.fields.begin(), match_.fields.end(), [](int field) { return field < 0; })) {
        desk().message(codes ? "No column goes anywhere yet. Please choose what the columns are."
                             : "No column is the code of the items. Please choose which one it is.",
                       kProduct);
        tabImport.setCurrent(kColumnsPage);
        return;
    }
    bool whole = false;
    guarded({kTag, "Check_File"}, [&] { whole = checkAll(); });
    if (!whole)
        dropPlan();
    showPlan();
}

// False when the user stopped it.
bool frmExcelImport::checkAll() {
    dropPlan();
    return longWork(desk(), "Checking " + source_->name() + " ...", [this] {
        if (plan_ != nullptr)
            return plan_->step();
        db::Session& session = modMain().Conn->session();
        if (target() == Target::Items) {
            items_ = std::make_unique<ItemsInStore>(session, match_);
            plan_ = std::make_unique<ItemPlan>(table_, match_, options(), *items_);
        } else {
            records_ = std::make_unique<RecordsInStore>(session, target(), match_);
            plan_ = std::make_unique<RecordPlan>(table_, match_, target(), options(), *records_);
        }
        return 0;
    });
}

void frmExcelImport::showPlan() {
    const auto figure = [this](Label& label, RowState state) {
        label.setCaption(plan_ == nullptr ? "-" : withThousands(plan_->count(state)));
    };
    figure(lblNew, RowState::New);
    figure(lblChanged, RowState::Changed);
    figure(lblSame, RowState::Same);
    figure(lblBad, RowState::Bad);
    lblSums.setCaption(plan_ == nullptr ? "" : joined(plan_->sums(), " "));
    {
        const Restore filling(filling_, true);
        lbxFindings.clear();
        lbxFindings.add("All" + (plan_ == nullptr ? "" : " (" + withThousands(static_cast<std::int64_t>(plan_->findings().size())) + ")"),
                        -1);
        std::map<int, int> kinds;
        if (plan_ != nullptr)
            for (const Finding& one : plan_->findings())
                ++kinds[static_cast<int>(one.kind)];
        for (const auto& [kind, count] : kinds)
            lbxFindings.add(std::string(captionOf(static_cast<FindingKind>(kind))) + " (" + withThousands(count) + ")", kind);
        lbxFindings.setListIndex(0);
        lbxRows.clear();
        lbxRows.add("All", -1);
        const char* const states[] = {"New", "Changed", "As they were", "With bad cells"};
        for (int state = 0; state < 4; ++state)
            lbxRows.add(states[state], state);
        lbxRows.setListIndex(0);
    }
    showFindings();
    showRows();
}

void frmExcelImport::showFindings() {
    if (filling_)
        return;
    const int kind = lbxFindings.listIndex() < 0 ? -1 : lbxFindings.itemData();
    grdFindings.bind(nullptr);
    findingRows_.show(plan_.get(), kind < 0 ? std::nullopt : std::optional(static_cast<FindingKind>(kind)));
    grdFindings.emptyText = plan_ == nullptr ? "Press Check to see what the file would change." : "No bad cells.";
    grdFindings.bind(&findingRows_);
    if (grdFindings.dataRows() > 0)
        grdFindings.setCurrent(1, 0);
    setAvailable();
}

void frmExcelImport::showRows() {
    if (filling_)
        return;
    const int state = lbxRows.listIndex() < 0 ? -1 : lbxRows.itemData();
    grdRows.bind(nullptr);
    plannedRows_.show(plan_.get(), state < 0 ? std::nullopt : std::optional(static_cast<RowState>(state)));
    grdRows.bind(&plannedRows_);
    if (grdRows.dataRows() > 0)
        grdRows.setCurrent(1, 0);
    showReason(grdFindings.selected() ? grdFindings : grdRows);
}

// All of what the marked row of a list says, which its cell has no room for.
void frmExcelImport::showReason(const Grid& grid) {
    setAvailable();
    if (plan_ == nullptr || !grid.selected())
        return lblReason.setCaption("");
    const int row = grid.row() - 1;
    if (&grid == &grdFindings) {
        const Finding& one = findingRows_.at(row);
        lblReason.setCaption("Row " + withThousands(table_.number(one.row)) + ": " + one.reason);
    } else {
        const int planned = plannedRows_.planRow(row);
        const std::string words = plan_->changes(planned);
        lblReason.setCaption("Row " + withThousands(table_.number(plan_->tableRow(planned))) + ": " +
                             (words.empty() ? "nothing changes" : words));
    }
}

void frmExcelImport::cmdJump_Click() {
    if (plan_ == nullptr || !grdFindings.selected())
        return;
    const int wanted = plan_->rowOf(findingRows_.at(grdFindings.row() - 1).row);
    if (plannedRows_.positionOf(wanted) < 0)
        lbxRows.setListIndex(0);
    if (const int position = plannedRows_.positionOf(wanted); position >= 0) {
        grdRows.setCurrent(position + 1, 0);
        grdRows.showCurrent();
        grdRows.setFocus();
    }
}

void frmExcelImport::cmdExportBad_Click() {
    const auto file = desk().file({"Export Bad Cells", "CSV Files (*.csv)|*.csv", desk().documentsFolder().string(), true, "bad cells"});
    if (!file)
        return;
    try {
        const auto writer = csvWriter(grdFindings, *file);
        if (!longWork(desk(), "Writing " + file->filename().string() + " ...", [&] { return writer->step(); }))
            return;
        writer->finish();
        desk().status(counted(grdFindings.dataRows(), "bad cell") + " written to " + file->filename().string());
    } catch (const std::exception& error) {
        desk().message(error.what(), kProduct, MessageIcon::Exclamation);
    }
}

// --- the import ---

bool frmExcelImport::mayImport() {
    const int bad = plan_->count(RowState::Bad);
    if (bad > 0 && !chkLeaveOut.value()) {
        desk().message(
            counted(bad, "row has", "rows have") +
                " cells that cannot be taken. Mend them in the file and choose it again, or tick \"Leave rows with bad cells out\".",
            kProduct, MessageIcon::Exclamation);
        return false;
    }
    std::string earlier;
    if (!guarded({kTag, "cmdImport_Click"}, [&] { earlier = earlierImport(modMain().Conn->session(), target(), source_->hash()); }))
        return false;
    std::string question = "Do you wish to import " + counted(plan_->count(RowState::New), "new row") + " and " +
                           counted(plan_->count(RowState::Changed), "changed one") + "?";
    if (bad > 0)
        question += " " + counted(bad, "row with bad cells is", "rows with bad cells are") + " left out.";
    if (!plan_->sums().empty())
        question += "\n\n" + joined(plan_->sums(), "\n");
    if (!earlier.empty())
        question += "\n\n" + earlier;
    return desk().message(question, kProduct, MessageIcon::Question, MessageButtons::YesNo) == Answer::Yes;
}

void frmExcelImport::cmdImport_Click() {
    if (plan_ == nullptr || !mayImport())
        return;
    write();
}

// Runs steps on a connection of its own, which a stop or a failure leaves without a trace. False when it was stopped or failed, which was
// said.
bool frmExcelImport::work(const char* procedure, const std::string& what, const std::function<std::function<int()>(db::Session&)>& begun) {
    bool done = false;
    std::string changed;
    guarded({.tag = kTag, .procedure = procedure, .plain = "Nothing was changed."}, [&] {
        db::Connection own(*modMain().provider);
        own.Open(modMain().Conn->ConnectionString());
        try {
            // Lent only: the window of the progress lives on for a while, and the work must go before its session does.
            const std::function<int()> step = begun(own.session());
            done = longWork(desk(), what, [&step] { return step(); });
        } catch (const StoreChanged& news) {
            changed = news.what();
        } catch (const ImportKept& kept) {
            changed = "The import was not taken back:" + reasonsInWords(kept.reasons());
        }
    });
    if (!changed.empty())
        desk().message(changed, kProduct, MessageIcon::Exclamation);
    return done;
}

void frmExcelImport::write() {
    const bool done = work("cmdImport_Click", "Importing " + source_->name() + " ...", [this](db::Session& session) {
        const std::shared_ptr<ImportWriting> writing = writingOf(session, *plan_, {source_->name(), source_->hash()});
        return [writing] { return writing->step(); };
    });
    const std::string said =
        counted(plan_->count(RowState::New), "new row") + " and " + counted(plan_->count(RowState::Changed), "changed one") + " imported";
    outdated();
    guarded({kTag, "Load_Runs"}, [this] { loadRuns(); });
    if (!done)
        return;
    desk().status(said);
    tabImport.setCurrent(kRunsPage);
}

void frmExcelImport::loadRuns() {
    grdRuns.bind(nullptr);
    closeRows(runs_);
    runs_ = openDirect("bsp_ImportRuns", db::CursorType::Static);
    grdRuns.bind(runs_.get());
    if (grdRuns.dataRows() > 0)
        grdRuns.setCurrent(1, kMade);
    setAvailable();
}

void frmExcelImport::cmdUndo_Click() {
    if (!grdRuns.selected())
        return;
    const int row = grdRuns.row();
    if (desk().message("Do you wish to take the import of " + grdRuns.text(row, kMade) + " back (" + grdRuns.text(row, kFile) + ")?\n\n" +
                           "What it made goes, and what it changed becomes what it was.",
                       kProduct, MessageIcon::Question, MessageButtons::YesNo) != Answer::Yes)
        return;
    undo(static_cast<std::int32_t>(grdRuns.value(row, kRun).toInteger()));
}

void frmExcelImport::undo(std::int32_t run) {
    const bool done = work("cmdUndo_Click", "Taking the import back ...", [run](db::Session& session) {
        const auto undoing = std::make_shared<ImportUndoing>(session, run);
        return [undoing] { return undoing->step(); };
    });
    outdated();
    guarded({kTag, "Load_Runs"}, [this] { loadRuns(); });
    if (done)
        desk().status("The import was taken back");
}

void frmExcelImport::setAvailable() {
    const bool file = source_ != nullptr && table_.rows() > 0;
    const bool something = plan_ != nullptr && plan_->count(RowState::New) + plan_->count(RowState::Changed) > 0;
    cmdCheck.setEnabled(file);
    cmdImport.setEnabled(something);
    cmdJump.setEnabled(plan_ != nullptr && grdFindings.selected());
    cmdExportBad.setEnabled(grdFindings.dataRows() > 0);
    chkLeaveOut.setEnabled(plan_ != nullptr && plan_->count(RowState::Bad) > 0);
    cmdUndo.setEnabled(grdRuns.selected() && grdRuns.text(grdRuns.row(), kUndone).empty());
}

} // namespace merchantry::exchange
