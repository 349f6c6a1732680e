#include "exchange/frmQuickBooks.h"

#include "app/aside.h"
#include "app/modMain.h"
#include "base/counted.h"
#include "base/newfile.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/textorder.h"
#include "ui/calls.h"
#include "ui/desk.h"

#include <utility>

namespace merchantry::exchange {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmQuickBooks";
constexpr const char* kFilter = "QuickBooks Files (*.iif)|*.iif";
constexpr Twips kDayWidth = 1600;
constexpr std::size_t kMostTold = 5; // faults in one box
enum AccountColumn { kWhat, kAccount, kType };
enum SentColumn { kFileNumber };

GridColumn amountColumn(const char* heading) {
    return {.heading = heading, .alignRight = true, .characters = 11};
}

std::string daysCounted(std::size_t number) {
    return counted(static_cast<std::int64_t>(number), "day");
}

std::string between(Date first, Date last) {
    return first == last ? first.toShortText() : first.toShortText() + " to " + last.toShortText();
}

std::string isoDay(Date day) {
    return day.toIsoText().substr(0, 10);
}

std::string amountOrNothing(Currency amount) {
    return amount == Currency() ? "" : amount.toDisplay();
}

// The code of the type that is called so.
std::string typeNamed(const std::string& what) {
    for (const AccountType& type : accountTypes())
        if (sameText(type.what, what))
            return type.code;
    return what;
}

void writeFile(const std::filesystem::path& file, const std::string& bytes) {
    NewFile target(file);
    target.out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    target.finish();
}

} // namespace

frmQuickBooks::frmQuickBooks(Desk& desk) : Form(desk, "frmQuickBooks", "QuickBooks Export") {
    setIcon("quickbooks");
    grdDays.setColumns({{.heading = "Day", .characters = 11, .width = kDayWidth},
                        {.heading = "Receipts", .alignRight = true, .characters = 8},
                        amountColumn("Sales"),
                        amountColumn("Tax"),
                        amountColumn("Tenders"),
                        amountColumn("Bills"),
                        amountColumn("Accounts"),
                        {.heading = "State", .characters = 26}});
    grdDays.editable = false;
    grdDays.rowColChange = [this] { showLines(); };
    grdLines.setColumns({{.heading = "Entry", .characters = 12},
                         {.heading = "Account", .characters = 28},
                         {.heading = "For", .characters = 30},
                         amountColumn("Debit"),
                         amountColumn("Credit")});
    grdLines.editable = false;
    GridColumn types{.heading = "Type", .editor = GridColumn::Editor::Combo, .characters = 20};
    for (const AccountType& type : accountTypes())
        types.choices.emplace_back(type.what, type.code);
    grdAccounts.setColumns({{.heading = "Amount", .characters = 36}, {.heading = "Account", .characters = 36}, types});
    grdAccounts.setToolTip("A colon parts an account from the one above it, like Sales:Garden. Each change is kept at once.");
    grdAccounts.beforeEdit = [](int, int column, bool& cancel) { cancel = column == kWhat; };
    grdAccounts.validateEdit = [this](int row, int column, const std::string& text, bool& cancel) {
        grdAccounts_ValidateEdit(row, column, text, cancel);
    };
    grdAccounts.afterEdit = calls(this, &frmQuickBooks::grdAccounts_AfterEdit);
    grdSent.setColumns({{.heading = "File", .alignRight = true, .characters = 6},
                        {.heading = "Made", .characters = 22},
                        {.heading = "Days", .characters = 26},
                        {.heading = "Count", .alignRight = true, .characters = 7},
                        {.heading = "Bytes", .alignRight = true, .characters = 12}});
    grdSent.editable = false;
    grdSent.emptyText = "Nothing went out yet.";
    grdSent.rowColChange = [this] { cmdSendAgain.setEnabled(grdSent.selected()); };
    grdSent.dblClick = [this] { cmdSendAgain_Click(); };
    for (TextBox* day : {&txtFrom, &txtTo})
        day->gotFocus = [day] { day->selectAll(); };
    cmdShow.isDefault = true;
    cmdShow.click = [this] { cmdShow_Click(); };
    cmdExport.click = [this] { cmdExport_Click(); };
    cmdSendAgain.click = [this] { cmdSendAgain_Click(); };
    cmdSendAgain.setToolTip("Writes the marked file once more, byte for byte.");
    cmdExit.isCancel = true;
    cmdExit.click = [this] { unload(); };

    setLayout(column({
        row({fields({field("&From:", txtFrom).wide(12)}), fields({field("&To:", txtTo, {at(cmdShow)}).wide(12)}), stretch(),
             figure("To send", lblDays), figure("Sales", lblSales), figure("Tax", lblTax), figure("Bills", lblBills)}),
        pages(tabBooks, {column({at(grdDays).high(6).wide(150).stretched(3), at(lblDay), at(grdLines).high(6).stretched(2)}),
                         column({at(grdAccounts).high(9).stretched()}),
                         column({at(grdSent).high(8).stretched(), row({at(cmdSendAgain), stretch()})})})
            .stretched(),
        at(lblState),
        buttons({stretch(), note("Nothing goes out before Export"), at(cmdExit), at(cmdExport)}),
    }));
}

void frmQuickBooks::Form_Load() {
    guarded({kTag, "Form_Load"}, [this] {
        const Date today = desk().clock().now().dateOnly();
        const Date last = today.plusDays(-1);
        txtFrom.setText(std::min(firstUnsent(modMain().Conn->session(), today), last).toShortText());
        txtTo.setText(last.toShortText());
        const auto options = openDirect("bsp_StoreOptions");
        fullYears_ = options->Eof() || (*options)["QBVer"].Value().toInt16() != 0;
        showSent();
    });
    cmdSendAgain.setEnabled(grdSent.selected());
}

void frmQuickBooks::Form_Activate() {
    if (!std::exchange(activated_, true))
        read();
}

// On a session and a thread of their own, with progress and a Stop. False when it was stopped, or failed, which was reported.
bool frmQuickBooks::work(const char* procedure, const std::string& what,
                         const std::function<void(db::Session&, const BookProgress&)>& body) {
    bool ended = false;
    guarded({kTag, procedure}, [&] {
        const auto session = sessionAside();
        ended = runAside(
            desk(), what,
            [&](AsideState& state) {
                body(*session, [&state](int percent) {
                    state.percent = percent;
                    return !state.stop;
                });
            },
            [&session] { session->cancel(); });
    });
    return ended;
}

// Nothing, after saying so, when the box holds no day that is over.
std::optional<Date> frmQuickBooks::dayIn(TextBox& box) {
    const auto day = Date::fromText(trimmed(box.text()));
    const char* refusal = !day ? "Please enter a day, like 11/5/2026."
                          : day->dateOnly() >= desk().clock().now().dateOnly()
                              ? "That day is not over. Days go out when they are: yesterday is the last."
                              : nullptr;
    if (refusal == nullptr)
        return day->dateOnly();
    desk().message(refusal, caption(), MessageIcon::Exclamation);
    box.setFocus();
    return std::nullopt;
}

void frmQuickBooks::cmdShow_Click() {
    read();
}

void frmQuickBooks::read() {
    const auto first = dayIn(txtFrom);
    const auto last = first ? dayIn(txtTo) : std::nullopt;
    if (!last)
        return;
    if (*last < *first) {
        desk().message("The first day is behind the last one.", caption(), MessageIcon::Exclamation);
        return txtFrom.setFocus();
    }
    book_ = {};
    const bool ended = work("cmdShow_Click", "Reading the days …", [&](db::Session& session, const BookProgress& goOn) {
        book_ = readDays(session, *first, *last, goOn);
        sentDays_ = exchange::sentDays(session);
        changed_ = changedSince(session);
    });
    const std::string late =
        changed_.empty() ? "" : "Something was posted after they went out to " + daysNamed(changed_) + ". From and To show them.";
    lblState.setCaption(ended && !book_.stopped ? late : "The days were not read. Press Show to begin anew.");
    showDays();
    showAccounts();
}

std::string frmQuickBooks::stateOf(const BookedDay& day) const {
    const auto sent = sentDays_.find(day.day);
    if (sent == sentDays_.end())
        return day.fault.empty() ? "" : "Does not agree";
    const std::string state = "Sent in file " + std::to_string(sent->second.file);
    return sent->second.figures == day.figures ? state : state + ", changed since";
}

void frmQuickBooks::showDays() {
    grdDays.setDataRows(0);
    grdDays.emptyText = "Nothing happened on these days.";
    for (const BookedDay& day : book_.days) {
        const DayFigures& f = day.figures;
        grdDays.addRow({day.day.toShortText(), withThousands(f.receipts), amountOrNothing(f.sales), amountOrNothing(f.tax),
                        amountOrNothing(f.tendered), amountOrNothing(f.bills), amountOrNothing(f.accounts), stateOf(day)});
        if (!day.fault.empty())
            grdDays.setCellColor(grdDays.dataRows(), grdDays.columnCount() - 1, Color::Red);
    }
    if (grdDays.dataRows() > 0)
        grdDays.setCurrent(1, 0);
    showSums();
    showLines();
}

void frmQuickBooks::showSums() {
    const auto days = unsent();
    DayFigures sum;
    for (const BookedDay& day : days) {
        sum.sales += day.figures.sales;
        sum.tax += day.figures.tax;
        sum.bills += day.figures.bills;
    }
    lblDays.setCaption(daysCounted(days.size()));
    lblSales.setCaption(sum.sales.toDisplay());
    lblTax.setCaption(sum.tax.toDisplay());
    lblBills.setCaption(sum.bills.toDisplay());
    cmdExport.setEnabled(!days.empty());
}

void frmQuickBooks::showLines() {
    grdLines.setDataRows(0);
    lblDay.setCaption("");
    const int row = grdDays.row();
    if (row < 1 || row > static_cast<int>(book_.days.size()))
        return;
    const BookedDay& day = book_.days[static_cast<std::size_t>(row - 1)];
    Currency debit;
    Currency credit;
    for (const AccountEntry& entry : day.entries)
        for (const AccountLine& line : entry.lines) {
            const bool isDebit = line.amount > Currency();
            (isDebit ? debit : credit) += isDebit ? line.amount : -line.amount;
            grdLines.addRow(
                {entry.number, line.account, line.memo, isDebit ? line.amount.toDisplay() : "", isDebit ? "" : (-line.amount).toDisplay()});
        }
    const auto sent = sentDays_.find(day.day);
    const bool changed = sent != sentDays_.end() && sent->second.figures != day.figures;
    lblDay.setCaption(!day.fault.empty() ? day.fault
                      : changed          ? "Sales were " + sent->second.figures.sales.toDisplay() + " and accounts " +
                                      sent->second.figures.accounts.toDisplay() +
                                      " when it went out: what was posted since has to be booked by hand."
                                : "Debits " + debit.toDisplay() + ", credits " + credit.toDisplay() + ".");
}

void frmQuickBooks::showAccounts() {
    const int row = grdAccounts.row();
    grdAccounts.setDataRows(0);
    for (const MappedAccount& account : book_.map.all())
        grdAccounts.addRow({account.what, account.account, account.type});
    if (row >= 1 && row <= grdAccounts.dataRows())
        grdAccounts.setCurrent(row, kAccount);
}

void frmQuickBooks::showSent() {
    sentFiles_ = exchange::sentFiles(modMain().Conn->session());
    grdSent.setDataRows(0);
    for (const SentFile& file : sentFiles_)
        grdSent.addRow({std::to_string(file.number), file.made.toShortText(), between(file.first, file.last), withThousands(file.days),
                        withThousands(file.bytes)});
    if (grdSent.dataRows() > 0)
        grdSent.setCurrent(1, kFileNumber);
}

// The accounts that such an edit changes.
std::vector<MappedAccount> frmQuickBooks::edited(int row, int column, const std::string& text) const {
    const auto index = static_cast<std::size_t>(row - 1);
    return column == kAccount ? book_.map.withAccount(index, std::string(trimmed(text))) : book_.map.withType(index, typeNamed(text));
}

void frmQuickBooks::grdAccounts_ValidateEdit(int row, int column, const std::string& text, bool& cancel) {
    for (const MappedAccount& account : edited(row, column, text)) {
        const std::string complaint = accountComplaint(account);
        if (complaint.empty())
            continue;
        cancel = true;
        desk().message(complaint, caption(), MessageIcon::Exclamation);
        return;
    }
}

void frmQuickBooks::grdAccounts_AfterEdit(int row, int column) {
    const auto changed = edited(row, column, grdAccounts.text(row, column));
    if (guarded({kTag, "grdAccounts_AfterEdit"}, [&] {
            for (const MappedAccount& account : changed)
                keepAccount(modMain().Conn->session(), account);
        }))
        read();
}

std::vector<BookedDay> frmQuickBooks::unsent() const {
    std::vector<BookedDay> days;
    for (const BookedDay& day : book_.days)
        if (!sentDays_.contains(day.day) && (!day.entries.empty() || !day.fault.empty()))
            days.push_back(day);
    return days;
}

// False, after saying why, when a day does not agree or the user thinks better of it.
bool frmQuickBooks::mayGo(const std::vector<BookedDay>& days) {
    std::string faults;
    std::size_t count = 0;
    for (const BookedDay& day : days)
        if (!day.fault.empty() && ++count <= kMostTold)
            faults += "\n\n" + day.day.toShortText() + ": " + day.fault;
    if (count > 0) {
        desk().message("Nothing was sent: " + daysCounted(count) + (count == 1 ? " does" : " do") +
                           " not agree with the store's daily report." + faults + (count > kMostTold ? "\n\nand others." : ""),
                       caption(), MessageIcon::Stop);
        return false;
    }
    return desk().message("Do you wish to send " + daysCounted(days.size()) + ", " + between(days.front().day, days.back().day) +
                              "?\n\nSales of " + lblSales.caption() + ", tax of " + lblTax.caption() + ", bills of " + lblBills.caption() +
                              ". Each day goes out once.",
                          caption(), MessageIcon::Question, MessageButtons::YesNo) == Answer::Yes;
}

std::optional<std::filesystem::path> frmQuickBooks::target(const std::string& name) {
    return desk().file({caption(), kFilter, desk().documentsFolder().string(), true, name});
}

void frmQuickBooks::cmdExport_Click() {
    const auto days = unsent();
    if (days.empty() || !mayGo(days))
        return;
    if (const auto file = target("Books " + isoDay(days.front().day) + " to " + isoDay(days.back().day)))
        send(days, *file);
}

// Kept first: what could not be written can be sent again.
void frmQuickBooks::send(const std::vector<BookedDay>& days, const std::filesystem::path& target) {
    std::string bytes;
    std::string meanwhile;
    int number = 0;
    work("cmdExport_Click", "Sending the days …", [&](db::Session& session, const BookProgress& goOn) {
        bytes = iifText(fileOf(session, days, book_.map), fullYears_);
        if (!goOn(50))
            return;
        try {
            number = keepSent(session, days, bytes);
        } catch (const AlreadySent& news) {
            meanwhile = news.what();
        }
    });
    if (number > 0 &&
        guarded({.tag = kTag, .procedure = "cmdExport_Click", .plain = "The days are kept as sent. Send Again writes the file."},
                [&] { writeFile(target, bytes); }))
        desk().message("Sent " + daysCounted(days.size()) + " to " + target.string() + ".", caption(), MessageIcon::Information);
    if (!meanwhile.empty())
        desk().message(meanwhile, caption(), MessageIcon::Exclamation);
    guarded({kTag, "cmdExport_Click"}, [this] { showSent(); });
    read();
    if (number == 0 && meanwhile.empty())
        lblState.setCaption("Nothing was sent.");
}

void frmQuickBooks::cmdSendAgain_Click() {
    const int row = grdSent.row();
    if (row < 1)
        return;
    const SentFile& file = sentFiles_[static_cast<std::size_t>(row - 1)];
    const auto path = target("Books " + isoDay(file.first) + " to " + isoDay(file.last));
    if (!path)
        return;
    if (guarded({kTag, "cmdSendAgain_Click"}, [&] { writeFile(*path, sentBytes(modMain().Conn->session(), file.number)); }))
        lblState.setCaption("File " + std::to_string(file.number) + " was written again to " + path->string() + ".");
}

} // namespace merchantry::exchange
