#include "customers/frmStatements.h"

#include "app/db/again.h"
#include "app/modMain.h"
#include "base/counted.h"
#include "base/guard.h"
#include "base/numbers.h"
#include "base/shown.h"
#include "base/text.h"
#include "ui/desk.h"

#include <utility>

namespace merchantry::customers {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmStatements";
constexpr const char* kReport = "CustomerStatement.rpt";
constexpr int kPostedPage = 1;
constexpr int kFirstAmount = 2;                 // column
constexpr Twips kWidth = 1340 * kTwipsPerPixel; // so that the ages are in sight, too
constexpr Twips kHeight = 700 * kTwipsPerPixel;

// An amount of the grid; nothing where there is none, so that what there is stands out.
std::string amountText(Currency amount) {
    return amount == Currency() ? "" : shownCost(amount);
}

std::size_t charged(const StatementRun& run) {
    return static_cast<std::size_t>(std::count_if(run.statements.begin(), run.statements.end(),
                                                  [](const auto& one) { return one.figures.financeCharge != Currency(); }));
}

GridColumn amountColumn(const char* heading) {
    return {.heading = heading, .alignRight = true};
}

} // namespace

frmStatements::frmStatements(Desk& desk) : Form(desk, "frmStatements", "Customer Statements") {
    setIcon("customers");
    setSize(kWidth, kHeight);
    shapeGrids();
    txtAsAt.setToolTip("Proposed is the last billing day of the store's options.");
    txtAsAt.gotFocus = [this] { txtAsAt.selectAll(); };
    cmdTakeBack.isDanger = true;
    cmdTakeBack.setToolTip("Takes the last run back with its finance charges, as long as nothing was applied to one of them.");
    cmdDrawUp.isDefault = true;
    cmdExit.isCancel = true;
    prgWork.setVisible(false);
    cmdDrawUp.click = [this] { cmdDrawUp_Click(); };
    cmdPost.click = [this] { cmdPost_Click(); };
    cmdPrint.click = [this] { cmdPrint_Click(); };
    cmdTakeBack.click = [this] { cmdTakeBack_Click(); };
    cmdStop.click = [this] { stop_ = true; };
    cmdExit.click = [this] { unload(); };
    txtAsAt.change = [this] {
        fresh_ = false;
        setAvailable();
    };

    setLayout(column({
        title(lblHeading),
        row({fields({field("&As at:", txtAsAt, {at(cmdDrawUp)}).wide(12)}), stretch(), figure("Statements", lblCount),
             figure("Finance charges", lblCharges), figure("Balances", lblBalances)}),
        pages(tabStatements, {column({
                                  at(grdStatements).high(8).wide(150).stretched(),
                                  at(lblReckoning).high(3),
                              }),
                              column({
                                  at(grdRuns).high(8).stretched(),
                                  row({at(cmdPrint), stretch(), at(cmdTakeBack)}),
                              })})
            .stretched(),
        at(lblState),
        at(prgWork),
        buttons({at(cmdStop), stretch(), note("Nothing is written before Post"), at(cmdExit), at(cmdPost)}),
    }));
}

void frmStatements::shapeGrids() {
    grdStatements.setColumns({{.heading = "No.", .alignRight = true, .characters = 5},
                              {.heading = "Customer", .characters = 20},
                              amountColumn("Brought Fwd"),
                              amountColumn("Charged"),
                              amountColumn("Paid"),
                              amountColumn("Credited"),
                              amountColumn("Finance Chg"),
                              amountColumn("Balance"),
                              amountColumn("Current"),
                              amountColumn("1 to 30"),
                              amountColumn("31 to 60"),
                              amountColumn("61 to 90"),
                              amountColumn("Over 90"),
                              amountColumn("Unapplied")});
    grdStatements.editable = false;
    grdStatements.setToolTip("The ages are days since an amount was due. Unapplied is what was paid and not matched yet.");
    grdStatements.rowColChange = [this] { showReckoning(); };
    grdRuns.setColumns({{.heading = "Run", .hidden = true},
                        {.heading = "As At", .format = GridColumn::Format::Date, .characters = 11},
                        {.heading = "Posted", .format = GridColumn::Format::Date, .characters = 22},
                        {.heading = "Statements", .format = GridColumn::Format::Number, .characters = 11},
                        {.heading = "Finance Charges", .format = GridColumn::Format::Currency, .characters = 15},
                        {.heading = "Balances", .format = GridColumn::Format::Currency, .characters = 15}});
    grdRuns.editable = false;
    grdRuns.emptyText = "No statements were posted yet.";
    grdRuns.rowColChange = [this] { setAvailable(); };
    grdRuns.dblClick = [this] { cmdPrint_Click(); };
}

void frmStatements::Form_Load() {
    guarded({kTag, "Form_Load"}, [this] {
        const Date today = desk().clock().now().dateOnly();
        txtAsAt.setText(lastBillingDay(today.plusDays(-1), billingDayOfMonth(modMain().Conn->session())).toShortText());
        loadRuns();
    });
    setAvailable();
}

void frmStatements::Form_Activate() {
    if (!std::exchange(activated_, true))
        cmdDrawUp_Click();
}

void frmStatements::Form_Unload(bool& cancel) {
    cancel = working_;
    stop_ = leave_ = working_;
    if (cancel)
        return;
    grdRuns.bind(nullptr);
    closeRows(runs_);
}

void frmStatements::loadRuns() {
    grdRuns.bind(nullptr);
    closeRows(runs_);
    runs_ = openDirect("bsp_StatementRuns", db::CursorType::Static);
    grdRuns.bind(runs_.get());
    if (grdRuns.dataRows() > 0)
        grdRuns.setCurrent(1, 1);
}

// The run posted as at the day; 0 for none.
std::int32_t frmStatements::runOf(Date day) const {
    for (int row = 1; row <= grdRuns.dataRows(); ++row)
        if (grdRuns.value(row, 1).as<Date>() == day)
            return static_cast<std::int32_t>(grdRuns.value(row, 0).toInteger());
    return 0;
}

// The last run stands first.
std::optional<Date> frmStatements::lastPosted() const {
    if (grdRuns.dataRows() == 0)
        return std::nullopt;
    return grdRuns.value(1, 1).as<Date>();
}

void frmStatements::setAvailable() {
    txtAsAt.setEnabled(!working_);
    cmdDrawUp.setEnabled(!working_);
    cmdStop.setEnabled(working_);
    cmdPost.setEnabled(!working_ && fresh_ && !drawn_.statements.empty());
    cmdPrint.setEnabled(!working_ && grdRuns.selected());
    cmdTakeBack.setEnabled(!working_ && grdRuns.row() == 1);
}

// On a connection of its own, which a stop or a failure leaves without a trace. False when it failed, which was reported.
bool frmStatements::work(const char* procedure, const std::function<void(db::Session&, const RunProgress&)>& body) {
    working_ = true;
    stop_ = false;
    lblState.setCaption("");
    prgWork.set(0);
    prgWork.setVisible(true);
    setAvailable();
    const bool done = guarded({kTag, procedure}, [&] {
        const AtEnd ended([this] {
            prgWork.setVisible(false);
            working_ = false;
        });
        db::Connection own(*modMain().provider);
        own.Open(modMain().Conn->ConnectionString());
        body(own.session(), [this](int percent) {
            prgWork.set(percent);
            desk().yield();
            return !stop_;
        });
    });
    setAvailable();
    return done;
}

// Nothing, after saying so, when it is no day or one still to come.
std::optional<Date> frmStatements::dayTyped() {
    const auto day = Date::fromText(trimmed(txtAsAt.text()));
    const char* refusal = !day ? "Please enter the day of the statements, like 11/5/2026."
                          : day->dateOnly() > desk().clock().now().dateOnly()
                              ? "That day is still to come. Statements are drawn up as at today, or a day before."
                              : nullptr;
    if (refusal == nullptr)
        return day->dateOnly();
    desk().message(refusal, caption(), MessageIcon::Exclamation);
    txtAsAt.setFocus();
    return std::nullopt;
}

void frmStatements::cmdDrawUp_Click() {
    if (working_)
        return;
    if (const auto day = dayTyped()) {
        txtAsAt.setText(day->toShortText());
        drawUp(*day);
        if (grdStatements.dataRows() > 0)
            grdStatements.setFocus(); // the day's box was off while it worked
    }
    if (leave_)
        unload();
}

// A day that was posted, or one before it, is not drawn up again: what was posted is shown.
void frmStatements::drawUp(Date day) {
    guarded({kTag, "Load_Runs"}, [this] { loadRuns(); });
    const auto last = lastPosted();
    const std::int32_t run = runOf(day);
    const bool over = day < desk().clock().now().dateOnly();
    const bool posted = last && *last >= day;
    drawn_ = {};
    const bool done = work("cmdDrawUp_Click", [&](db::Session& session, const RunProgress& progress) {
        if (run != 0)
            drawn_ = postedStatements(session, run);
        else if (!posted)
            drawn_ = drawUpStatements(session, day, progress);
    });
    fresh_ = done && over && !posted && !drawn_.stopped;
    show(drawn_);
    if (!done)
        lblState.setCaption("The statements could not be drawn up.");
    else if (drawn_.stopped)
        lblState.setCaption("Stopped. Press Draw Up to begin anew.");
    else if (run != 0)
        lblState.setCaption("The statements as at " + day.toShortText() + " were posted. Posted Runs prints them again.");
    else if (posted)
        lblState.setCaption("Statements as at " + last->toShortText() + " were posted already: there are none before that day any more.");
    else
        lblState.setCaption(counted(static_cast<std::int64_t>(charged(drawn_)), "account bears", "accounts bear") + " a finance charge. " +
                            (over ? "Nothing is posted yet." : "The day is not over: it can be posted from tomorrow on."));
    setAvailable();
}

// As wide as the longest amount of all rows; what is left over goes to the names.
void frmStatements::fitAmounts() {
    for (int column = kFirstAmount; column < grdStatements.columnCount(); ++column) {
        GridColumn shape = grdStatements.column(column);
        shape.characters = 0;
        for (int row = 1; row <= grdStatements.dataRows(); ++row)
            shape.characters = std::max(shape.characters, static_cast<int>(grdStatements.text(row, column).size()));
        grdStatements.setColumn(column, shape);
    }
}

void frmStatements::show(const StatementRun& run) {
    grdStatements.setDataRows(0);
    for (const CustomerStatement& one : run.statements) {
        const Statement& s = one.figures;
        grdStatements.addRow({std::to_string(one.customer), one.name, amountText(s.broughtForward), amountText(s.charged),
                              amountText(s.paid), amountText(s.credited), amountText(s.financeCharge), shownCost(s.balance),
                              amountText(s.ages.notDue), amountText(s.ages.days30), amountText(s.ages.days60), amountText(s.ages.days90),
                              amountText(s.ages.over90), amountText(s.ages.unapplied)});
    }
    fitAmounts();
    grdStatements.emptyText = "There is nothing to tell any customer as at that day.";
    lblCount.setCaption(withThousands(static_cast<std::int64_t>(run.statements.size())));
    lblCharges.setCaption(shownCost(run.financeCharges));
    lblBalances.setCaption(shownCost(run.balances));
    if (grdStatements.dataRows() > 0)
        grdStatements.setCurrent(1, 1);
    showReckoning();
}

void frmStatements::showReckoning() {
    const int row = grdStatements.row();
    if (row < 1 || row > static_cast<int>(drawn_.statements.size()))
        return lblReckoning.setCaption("");
    const CustomerStatement& one = drawn_.statements[static_cast<std::size_t>(row - 1)];
    lblReckoning.setCaption(one.figures.reckoning.empty() ? one.name + ": no finance charge."
                                                          : replaced(one.figures.reckoning, "\n", "; "));
}

bool frmStatements::postingConfirmed() {
    const std::size_t accounts = charged(drawn_);
    const std::string charges = accounts == 0 ? "No finance charge is due."
                                              : "Finance charges of " + drawn_.financeCharges.toDisplay() + " are charged to " +
                                                    counted(static_cast<std::int64_t>(accounts), "account.", "accounts.");
    return desk().message("Do you wish to post " + counted(static_cast<std::int64_t>(drawn_.statements.size()), "statement") + " as at " +
                              drawn_.asAt.toShortText() + "?\n\n" + charges + " The balances come to " + shownCost(drawn_.balances) + ".",
                          caption(), MessageIcon::Exclamation, MessageButtons::YesNo) == Answer::Yes;
}

void frmStatements::cmdPost_Click() {
    if (!fresh_ || drawn_.statements.empty() || !postingConfirmed())
        return;
    post();
    if (leave_)
        unload();
}

void frmStatements::post() {
    std::int32_t number = 0;
    std::string changed;
    Date day = drawn_.asAt;
    const bool done = work("cmdPost_Click", [&](db::Session& session, const RunProgress& progress) {
        try {
            number = postStatements(session, drawn_, progress, StoreId, CashierId);
        } catch (const AccountsChanged& news) {
            changed = news.what();
        } catch (const PostedMeanwhile& news) {
            day = news.day();
            changed = std::string(news.what()) + " They are shown as they were posted; Posted Runs prints them.";
        }
    });
    if (!changed.empty()) {
        txtAsAt.setText(day.toShortText());
        drawUp(day);
        desk().message(changed, caption(), MessageIcon::Exclamation);
        return;
    }
    guarded({kTag, "Load_Runs"}, [this] { loadRuns(); });
    setAvailable();
    if (!done || number == 0) {
        lblState.setCaption(done ? "Stopped. Nothing was posted." : "Nothing was posted.");
        return;
    }
    fresh_ = false;
    lblState.setCaption("Posted " + counted(static_cast<std::int64_t>(drawn_.statements.size()), "statement") + " as at " +
                        drawn_.asAt.toShortText() + ".");
    tabStatements.setCurrent(kPostedPage);
    setAvailable();
    if (!leave_)
        cmdPrint_Click();
}

void frmStatements::cmdPrint_Click() {
    if (grdRuns.selected())
        modMain().doors.ReportWindow(kReport, {grdRuns.rawText(grdRuns.row(), 0)}, true, true);
}

void frmStatements::cmdTakeBack_Click() {
    if (!grdRuns.selected())
        return;
    const std::string day = grdRuns.value(grdRuns.row(), 1).as<Date>().toShortText();
    if (desk().message("Do you wish to take back the statements as at " + day +
                           "?\n\nTheir finance charges are taken off the accounts again.",
                       caption(), MessageIcon::Exclamation, MessageButtons::YesNo) != Answer::Yes)
        return;
    const bool done = takenBack(grdRuns.value(grdRuns.row(), 0).toInteger());
    guarded({kTag, "Load_Runs"}, [this] { loadRuns(); });
    fresh_ = false;
    setAvailable();
    lblState.setCaption(done ? "The statements as at " + day + " were taken back. Press Draw Up to draw them up anew."
                             : "Nothing was taken back.");
}

// What somebody else did meanwhile is no failure: it is said, and what is posted now is shown.
bool frmStatements::takenBack(std::int64_t run) {
    std::string refusal;
    const bool done = guarded({.tag = kTag, .procedure = "cmdTakeBack_Click", .plain = "Nothing was taken back."}, [&] {
        try {
            const auto& conn = modMain().Conn;
            db::againWhenBusy(conn->session(), [&] { conn->Execute(db::Sql("bsp_TakeBackStatementRun ") + run); });
        } catch (const db::DbError& error) {
            if (error.category() != db::DbError::Category::Raised)
                throw;
            refusal = error.what();
        }
    });
    if (!refusal.empty())
        desk().message("Nothing was taken back. " + refusal, caption(), MessageIcon::Exclamation);
    return done && refusal.empty();
}

} // namespace merchantry::customers
