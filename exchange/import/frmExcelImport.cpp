#include "exchange/import/frmExcelImport.h"

#include "app/modMain.h"
#include "app/titles.h"
#include "base/counted.h"
#include "base/numbers.h"
#include "base/text.h"
#include "exchange/import/importwork.h"
#include "exchange/import/importwriting.h"
#include "exchange/import/itemplan.h"
#include "ui/desk.h"
#include "ui/longwork.h"

namespace merchantry::exchange {

using namespace app;
using namespace ui;

namespace {

constexpr int kColumnsPage = 1;
constexpr int kCheckPage = 2;
constexpr int kRunsPage = 3;

std::string newAndChanged(const ImportPlan& plan) {
    return counted(plan.count(RowState::New), "new row") + " and " + counted(plan.count(RowState::Changed), "changed one");
}

} // namespace

frmExcelImport::frmExcelImport(Desk& desk) : Form(desk, "frmExcelImport", "Excel Import") {
    setIcon("import");
    cmdImport.setToolTip("Writes all rows in one go, or none. Asks before.");
    cmdImport.isDefault = true;
    cmdExit.isCancel = true;
    tabImport.change = [this](int) { tabImport_Change(); };
    cmdCheck.click = [this] { cmdCheck_Click(); };
    cmdImport.click = [this] { cmdImport_Click(); };
    cmdExit.click = [this] { unload(); };
    setLayout(column({
        row({title(lblHeading), stretch(), figure("New", lblNew), figure("Changed", lblChanged), figure("As they were", lblSame),
             figure("Bad rows", lblBad)}),
        pages(tabImport, {file_.item(), columns_.item(), check_.item(), runs_.item()}).stretched(),
        buttons({at(chkLeaveOut), stretch(), at(cmdCheck), at(cmdExit), at(cmdImport)}),
    }));
}

void frmExcelImport::Form_Load() {
    guarded({kImportTag, "Form_Load"}, [this] {
        file_.load();
        columns_.load();
        runs_.load();
    });
    showPlan();
}

void frmExcelImport::Form_Unload(bool& /*cancel*/) {
    runs_.release();
}

void frmExcelImport::columnsMatched() {
    columns_.show();
    columnMoved();
}

void frmExcelImport::columnMoved() {
    file_.showDecimals();
    outdated();
}

void frmExcelImport::outdated() {
    dropPlan();
    showPlan();
}

// --- the check ---

void frmExcelImport::tabImport_Change() {
    if (tabImport.current() == kCheckPage && plan_ == nullptr && file_.source() != nullptr)
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
    const bool codes = matched_.target != Target::Items || matched_.match.columnOf(item::Code) >= 0;
    if (!codes || !matched_.goesAnywhere()) {
        desk().message(codes ? "No column goes anywhere yet. Please choose what the columns are."
                             : "No column is the code of the items. Please choose which one it is.",
                       kProduct);
        tabImport.setCurrent(kColumnsPage);
        return;
    }
    bool whole = false;
    guarded({kImportTag, "Check_File"}, [&] { whole = checkAll(); });
    if (!whole)
        dropPlan();
    showPlan();
}

// False when the user stopped it.
bool frmExcelImport::checkAll() {
    dropPlan();
    return longWork(desk(), "Checking " + file_.source()->name() + " ...", [this] { return stepPlan(); });
}

// The first step reads of the store what the columns ask for.
int frmExcelImport::stepPlan() {
    if (plan_ != nullptr)
        return plan_->step();
    beginPlan();
    return 0;
}

void frmExcelImport::beginPlan() {
    db::Session& session = modMain().Conn->session();
    ImportOptions options;
    file_.addTo(options);
    columns_.addTo(options);
    const auto& [table, target, match] = matched_;
    if (target == Target::Items) {
        items_ = std::make_unique<ItemsInStore>(session, match);
        plan_ = std::make_unique<ItemPlan>(table, match, options, *items_);
    } else {
        records_ = std::make_unique<RecordsInStore>(session, target, match);
        plan_ = std::make_unique<RecordPlan>(table, match, target, options, *records_);
    }
}

// The page shows nothing of a plan that is gone.
void frmExcelImport::dropPlan() {
    check_.letGo();
    plan_.reset();
}

void frmExcelImport::showPlan() {
    const auto figure = [this](Label& label, RowState state) {
        label.setCaption(plan_ == nullptr ? "-" : withThousands(plan_->count(state)));
    };
    figure(lblNew, RowState::New);
    figure(lblChanged, RowState::Changed);
    figure(lblSame, RowState::Same);
    figure(lblBad, RowState::Bad);
    check_.show(plan_.get());
    setAvailable();
}

// --- the import ---

void frmExcelImport::cmdImport_Click() {
    if (plan_ == nullptr || !mayImport())
        return;
    write();
}

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
    return guarded({kImportTag, "cmdImport_Click"},
                   [&] { earlier = earlierImport(modMain().Conn->session(), matched_.target, file_.source()->hash()); }) &&
           desk().message(questionBefore(earlier), kProduct, MessageIcon::Question, MessageButtons::YesNo) == Answer::Yes;
}

std::string frmExcelImport::questionBefore(const std::string& earlier) const {
    std::string question = "Do you wish to import " + newAndChanged(*plan_) + "?";
    if (const int bad = plan_->count(RowState::Bad); bad > 0)
        question += " " + counted(bad, "row with bad cells is", "rows with bad cells are") + " left out.";
    if (!plan_->sums().empty())
        question += "\n\n" + joined(plan_->sums(), "\n");
    if (!earlier.empty())
        question += "\n\n" + earlier;
    return question;
}

void frmExcelImport::write() {
    const ImportSource& source = *file_.source();
    const bool done = workOnTheStore(desk(), "cmdImport_Click", "Importing " + source.name() + " ...", [&](db::Session& session) {
        const std::shared_ptr<ImportWriting> writing = writingOf(session, *plan_, {source.name(), source.hash()});
        return [writing] { return writing->step(); };
    });
    const std::string said = newAndChanged(*plan_) + " imported";
    outdated();
    runs_.reload();
    if (!done)
        return;
    desk().status(said);
    tabImport.setCurrent(kRunsPage);
}

void frmExcelImport::setAvailable() {
    cmdCheck.setEnabled(file_.source() != nullptr && matched_.table.rows() > 0);
    cmdImport.setEnabled(plan_ != nullptr && plan_->count(RowState::New) + plan_->count(RowState::Changed) > 0);
    chkLeaveOut.setEnabled(plan_ != nullptr && plan_->count(RowState::Bad) > 0);
}

} // namespace merchantry::exchange
