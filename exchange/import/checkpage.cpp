#include "exchange/import/checkpage.h"

#include "app/titles.h"
#include "base/counted.h"
#include "base/guard.h"
#include "base/numbers.h"
#include "base/text.h"
#include "ui/desk.h"
#include "ui/gridexport.h"
#include "ui/longwork.h"

#include <map>

namespace merchantry::exchange {

using namespace ui;
using app::kProduct;

namespace {

constexpr int kAll = -1;

enum RowsColumn { kRow, kWhat, kCode, kName, kChanges };

// What the list is narrowed to; nothing for all of it.
template <class Kind> std::optional<Kind> chosenOf(const ListBox& list) {
    const int chosen = list.listIndex() < 0 ? kAll : list.itemData();
    return chosen == kAll ? std::nullopt : std::optional(static_cast<Kind>(chosen));
}

} // namespace

CheckPage::CheckPage(Form& form)
    : lbxFindings(form, "lbxFindings"), cmdJump(form, "cmdJump", "Show Ro&w"), cmdExportBad(form, "cmdExportBad", "Ex&port Bad Cells..."),
      grdFindings(form, "grdFindings"), lbxRows(form, "lbxRows"), lblSums(form, "lblSums"), grdRows(form, "grdRows"),
      lblReason(form, "lblReason") {
    using Format = GridColumn::Format;
    grdFindings.editable = grdRows.editable = false;
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
        return column != kWhat ? Color::None : state == RowState::Bad ? Color::Red : state == RowState::New ? Color::Green : Color::None;
    };
    lbxFindings.click = [this] { showFindings(); };
    lbxRows.click = [this] { showRows(); };
    cmdJump.click = [this] { cmdJump_Click(); };
    cmdExportBad.click = [this] { cmdExportBad_Click(); };
}

Item CheckPage::item() {
    return column({
        row({fields({field("&Bad cells:", lbxFindings).wide(30)}), stretch(), at(cmdJump), at(cmdExportBad)}),
        at(grdFindings).high(3).wide(60).stretched(2),
        row({fields({field("R&ows:", lbxRows).wide(20)}), gap(), at(lblSums).high(1).stretched()}),
        at(grdRows).high(4).stretched(3),
        at(lblReason).high(2).wide(60),
    });
}

void CheckPage::show(const ImportPlan* plan) {
    plan_ = plan;
    lblSums.setCaption(plan_ == nullptr ? "" : joined(plan_->sums(), " "));
    fillChoices();
    showFindings();
    showRows();
}

void CheckPage::letGo() {
    grdRows.bind(nullptr);
    grdFindings.bind(nullptr);
    plannedRows_.show(nullptr, std::nullopt);
    findingRows_.show(nullptr, std::nullopt);
    plan_ = nullptr;
}

void CheckPage::fillChoices() {
    const Restore filling(filling_, true);
    lbxFindings.clear();
    lbxFindings.add("All" + (plan_ == nullptr ? "" : " (" + withThousands(static_cast<std::int64_t>(plan_->findings().size())) + ")"),
                    kAll);
    std::map<int, int> kinds;
    if (plan_ != nullptr)
        for (const Finding& one : plan_->findings())
            ++kinds[static_cast<int>(one.kind)];
    for (const auto& [kind, count] : kinds)
        lbxFindings.add(std::string(captionOf(static_cast<FindingKind>(kind))) + " (" + withThousands(count) + ")", kind);
    lbxFindings.setListIndex(0);
    lbxRows.clear();
    lbxRows.add("All", kAll);
    const char* const states[] = {"New", "Changed", "As they were", "With bad cells"};
    for (int state = 0; state < 4; ++state)
        lbxRows.add(states[state], state);
    lbxRows.setListIndex(0);
}

void CheckPage::showFindings() {
    if (filling_)
        return;
    grdFindings.bind(nullptr);
    findingRows_.show(plan_, chosenOf<FindingKind>(lbxFindings));
    grdFindings.emptyText = plan_ == nullptr ? "Press Check to see what the file would change." : "No bad cells.";
    grdFindings.bind(&findingRows_);
    if (grdFindings.dataRows() > 0)
        grdFindings.setCurrent(1, 0);
    setAvailable();
}

void CheckPage::showRows() {
    if (filling_)
        return;
    grdRows.bind(nullptr);
    plannedRows_.show(plan_, chosenOf<RowState>(lbxRows));
    grdRows.bind(&plannedRows_);
    if (grdRows.dataRows() > 0)
        grdRows.setCurrent(1, 0);
    showReason(grdFindings.selected() ? grdFindings : grdRows);
}

// All of what the marked row of a list says, which its cell has no room for.
void CheckPage::showReason(const Grid& grid) {
    setAvailable();
    if (plan_ == nullptr || !grid.selected())
        return lblReason.setCaption("");
    const int row = grid.row() - 1;
    const auto say = [this](int tableRow, const std::string& words) {
        lblReason.setCaption("Row " + withThousands(plan_->table().number(tableRow)) + ": " + words);
    };
    if (&grid == &grdFindings) {
        const Finding& one = findingRows_.at(row);
        say(one.row, one.reason);
    } else {
        const int planned = plannedRows_.planRow(row);
        const std::string words = plan_->changes(planned);
        say(plan_->tableRow(planned), words.empty() ? "nothing changes" : words);
    }
}

void CheckPage::cmdJump_Click() {
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

void CheckPage::cmdExportBad_Click() {
    Desk& desk = grdFindings.form().desk();
    const auto file = desk.file({"Export Bad Cells", "CSV Files (*.csv)|*.csv", desk.documentsFolder().string(), true, "bad cells"});
    if (!file)
        return;
    try {
        const auto writer = csvWriter(grdFindings, *file);
        if (!longWork(desk, "Writing " + file->filename().string() + " ...", [&] { return writer->step(); }))
            return;
        writer->finish();
        desk.status(counted(grdFindings.dataRows(), "bad cell") + " written to " + file->filename().string());
    } catch (const std::exception& error) {
        desk.message(error.what(), kProduct, MessageIcon::Exclamation);
    }
}

void CheckPage::setAvailable() {
    cmdJump.setEnabled(plan_ != nullptr && grdFindings.selected());
    cmdExportBad.setEnabled(grdFindings.dataRows() > 0);
}

} // namespace merchantry::exchange
