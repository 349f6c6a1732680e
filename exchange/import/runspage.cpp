#include "exchange/import/runspage.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "exchange/import/importwork.h"
#include "exchange/import/importwriting.h"
#include "ui/desk.h"

#include <memory>

namespace merchantry::exchange {

using namespace app;
using namespace ui;

namespace {

enum RunsColumn { kRun, kMade, kWhat, kFile, kWords, kUndone };

} // namespace

RunsPage::RunsPage(ImportScreen& screen)
    : screen_(screen), grdRuns(screen.form(), "grdRuns"), cmdUndo(screen.form(), "cmdUndo", "&Undo Import...") {
    using Format = GridColumn::Format;
    grdRuns.editable = false;
    grdRuns.setColumns({{.heading = "Import", .hidden = true},
                        {.heading = "Made", .format = Format::Date, .characters = 22},
                        {.heading = "What", .characters = 10},
                        {.heading = "File", .characters = 28},
                        {.heading = "Rows", .characters = 40},
                        {.heading = "Undone", .format = Format::Date, .characters = 22}});
    grdRuns.emptyText = "Nothing was imported yet.";
    grdRuns.rowColChange = [this] { setAvailable(); };
    cmdUndo.click = [this] { cmdUndo_Click(); };
    setAvailable();
}

Item RunsPage::item() {
    return column({
        at(grdRuns).high(6).stretched(),
        row({note("An import is taken back as one, as long as what it changed was not changed since"), stretch(), at(cmdUndo)}),
    });
}

void RunsPage::load() {
    grdRuns.bind(nullptr);
    closeRows(runs_);
    runs_ = openDirect("bsp_ImportRuns", db::CursorType::Static);
    grdRuns.bind(runs_.get());
    if (grdRuns.dataRows() > 0)
        grdRuns.setCurrent(1, kMade);
    setAvailable();
}

void RunsPage::reload() {
    if (!guarded({kImportTag, "Load_Runs"}, [this] { load(); }))
        setAvailable();
}

void RunsPage::release() {
    grdRuns.bind(nullptr);
    closeRows(runs_);
}

void RunsPage::cmdUndo_Click() {
    if (!grdRuns.selected())
        return;
    const int row = grdRuns.row();
    if (screen_.form().desk().message("Do you wish to take the import of " + grdRuns.text(row, kMade) + " back (" +
                                          grdRuns.text(row, kFile) + ")?\n\nWhat it made goes, and what it changed becomes what it was.",
                                      kProduct, MessageIcon::Question, MessageButtons::YesNo) != Answer::Yes)
        return;
    undo(static_cast<std::int32_t>(grdRuns.value(row, kRun).toInteger()));
}

void RunsPage::undo(std::int32_t run) {
    Desk& desk = screen_.form().desk();
    const bool done = workOnTheStore(desk, "cmdUndo_Click", "Taking the import back ...", [run](db::Session& session) {
        const auto undoing = std::make_shared<ImportUndoing>(session, run);
        return [undoing] { return undoing->step(); };
    });
    screen_.outdated();
    reload();
    if (done)
        desk.status("The import was taken back");
}

void RunsPage::setAvailable() {
    cmdUndo.setEnabled(grdRuns.selected() && grdRuns.text(grdRuns.row(), kUndone).empty());
}

} // namespace merchantry::exchange
