#include "setup/frmTenderTypes.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/characters.h"
#include "base/text.h"
#include "base/textorder.h"
#include "ui/desk.h"

namespace merchantry::setup {

using namespace app;
using namespace ui;
using db::Sql;

namespace {

constexpr const char* kTag = "MR_frmTenderTypes";
constexpr int kAvailable = 0;
constexpr int kName = 1;
constexpr int kLeastRows = 8;
constexpr std::size_t kLongestName = 50;

std::size_t placeOf(int row) {
    return static_cast<std::size_t>(row - 1);
}

// A row as it stands in the store: all that the screen writes of it but its place.
std::string tenderOf(db::Recordset& row) {
    std::string cells;
    for (const char* column : {"TenderType", "Available", "DisplayName"})
        cells += row[column].text() + '\t';
    return cells;
}

} // namespace

frmTenderTypes::frmTenderTypes(Desk& desk) : Form(desk, "frmTenderTypes", "Tender Type Configuration") {
    setIcon("options");
    grdTenders.setColumns({{.heading = "Available", .editor = GridColumn::Editor::Check, .fixedWidth = true, .characters = 9},
                           {.heading = "Tender Type", .characters = 50}});
    cmdOK.isDefault = true;
    cmdCancel.isCancel = true;

    grdTenders.beforeEdit = [this](int row, int, bool& cancel) { grdTenders_BeforeEdit(row, cancel); };
    grdTenders.validateEdit = [this](int row, int column, const std::string& text, bool& cancel) {
        grdTenders_ValidateEdit(row, column, text, cancel);
    };
    grdTenders.endEdit = [](int, int column, std::string& text) {
        if (column == kName)
            text = trimmed(text);
    };
    grdTenders.afterEdit = [this](int, int) { changed_ = true; };
    grdTenders.rowColChange = [this] { grdTenders_RowColChange(); };
    cmdUP.click = [this] { cmdUP_Click(); };
    cmdDown.click = [this] { cmdDown_Click(); };
    cmdOK.click = [this] { cmdOK_Click(); };
    cmdCancel.click = [this] { unload(); };
    onKey("Alt+Up", [this] { cmdUP_Click(); });
    onKey("Alt+Down", [this] { cmdDown_Click(); });
    asksBeforeLeaving();

    setLayout(column({
        title(lblHeading),
        at(lblWhat),
        row({at(grdTenders).high(9).wide(60).stretched(), column({at(cmdUP), at(cmdDown), stretch()})}).stretched(),
        buttons({stretch(), at(cmdCancel), at(cmdOK)}),
    }));
}

void frmTenderTypes::Form_Load() {
    guarded({kTag, "Form_Load", caption() + " - Critical Error"}, [this] { loadTenders(); });
    grdTenders_RowColChange();
}

void frmTenderTypes::loadTenders() {
    const auto rows = modMain().Conn->Execute("sp_GetTenderTypes 1");
    tenders_ = rows->Eof() ? 0 : (*rows)["TenderCount"].Value().toInt16();
    grdTenders.setDataRows(std::max(tenders_, kLeastRows));
    for (int row = 1; !rows->Eof(); rows->MoveNext(), ++row) {
        loaded_ += tenderOf(*rows);
        names_.push_back((*rows)["TenderType"].text());
        grdTenders.setText(row, kAvailable, (*rows)["Available"].Value().toFlag() ? "1" : "0");
        grdTenders.setText(row, kName, (*rows)["DisplayName"].isNull() ? names_.back() : (*rows)["DisplayName"].text());
    }
    if (tenders_ > 0)
        grdTenders.setCurrent(1, kName);
}

// All rows as they stand now, in their order.
std::string frmTenderTypes::storedTenders() {
    std::string all;
    const auto rows = modMain().Conn->Execute("sp_GetTenderTypes 1");
    for (; !rows->Eof(); rows->MoveNext())
        all += tenderOf(*rows);
    return all;
}

void frmTenderTypes::grdTenders_BeforeEdit(int row, bool& cancel) {
    cancel = !isTender(row);
}

std::string frmTenderTypes::complaint(int row, const std::string& name) const {
    if (name.empty())
        return "Tender type required";
    if (characterCount(name) > kLongestName)
        return "Tender type name may not exceed " + std::to_string(kLongestName) + " characters";
    for (int other = 1; other <= tenders_; ++other)
        if (other != row && sameText(name, grdTenders.text(other, kName)))
            return "Duplicate tender types not allowed";
    return "";
}

void frmTenderTypes::grdTenders_ValidateEdit(int row, int column, const std::string& text, bool& cancel) {
    if (column != kName)
        return;
    const std::string wrong = complaint(row, std::string(trimmed(text)));
    cancel = !wrong.empty();
    if (cancel)
        desk().message(wrong, kProduct, MessageIcon::Information, MessageButtons::OkCancel);
}

void frmTenderTypes::grdTenders_RowColChange() {
    const int row = grdTenders.row();
    cmdUP.setEnabled(isTender(row) && row > 1);
    cmdDown.setEnabled(isTender(row) && row < tenders_);
    grdTenders.setStatusText(isTender(row) ? "The registers and reports know this one as " + names_[placeOf(row)] + "." : "");
}

void frmTenderTypes::cmdUP_Click() {
    if (cmdUP.enabled())
        swapRows(grdTenders.row(), grdTenders.row() - 1);
}

void frmTenderTypes::cmdDown_Click() {
    if (cmdDown.enabled())
        swapRows(grdTenders.row(), grdTenders.row() + 1);
}

void frmTenderTypes::swapRows(int row, int other) {
    for (const int column : {kAvailable, kName}) {
        const std::string text = grdTenders.text(row, column);
        grdTenders.setText(row, column, grdTenders.text(other, column));
        grdTenders.setText(other, column, text);
    }
    std::swap(names_[placeOf(row)], names_[placeOf(other)]);
    changed_ = true;
    touched(grdTenders);
    grdTenders.setCurrent(other, grdTenders.col());
}

int frmTenderTypes::offered() const {
    int count = 0;
    for (int row = 1; row <= tenders_; ++row)
        count += grdTenders.text(row, kAvailable) == "1" ? 1 : 0;
    return count;
}

// False when somebody else saved other tenders meanwhile and the user would rather keep those.
bool frmTenderTypes::mayOverwrite() {
    return !changed_ || storedTenders() == loaded_ ||
           desk().message("Someone else changed the tender types meanwhile. Save yours in their place?", caption(),
                          MessageIcon::Exclamation, MessageButtons::YesNo) == Answer::Yes;
}

void frmTenderTypes::cmdOK_Click() {
    if (changed_ && offered() == 0) {
        desk().message("You have to select at least one tender type", kProduct);
        return;
    }
    bool may = true;
    guarded({kTag, "cmdOK_Click"}, [&] { may = mayOverwrite(); });
    if (!may)
        return;
    if (changed_ && !guarded({kTag, "cmdOK_Click"}, [this] { write(); }))
        return;
    unload();
}

// A name that no statement can take fails before anything is written.
void frmTenderTypes::write() {
    std::vector<Sql> statements;
    for (int row = 1; row <= tenders_; ++row)
        statements.push_back(Sql("sp_UpdateTenderType 1, '") + names_[placeOf(row)] + "', '" + grdTenders.text(row, kName) + "', " +
                             (grdTenders.text(row, kAvailable) == "1" ? 1 : 0) + ", " + (row - 1));
    for (const Sql& statement : statements)
        statement.check();
    for (const Sql& statement : statements)
        modMain().Conn->Execute(statement);
}

} // namespace merchantry::setup
