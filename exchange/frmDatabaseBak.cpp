#include "exchange/frmDatabaseBak.h"

#include "app/backuplog.h"
#include "app/modMain.h"
#include "app/storefile.h"
#include "app/titles.h"
#include "base/guard.h"
#include "base/text.h"
#include "exchange/backup/restoring.h"
#include "ui/desk.h"
#include "ui/waiting.h"

namespace merchantry::exchange {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmDatabaseBak";
constexpr const char* kHandler = "Dbase_Error";
constexpr const char* kQuestion = "Velmora Tillmark Profesional";

std::string dayAndTime(Date moment) {
    return moment == Date() ? "never" : moment.toShortText();
}

} // namespace

frmDatabaseBak::frmDatabaseBak(Desk& desk) : Form(desk, "frmDatabaseBak", "Database Utility") {
    setIcon("backup");
    cmdFile.click = [this] { cmdFile_Click(); };
    cmdGo.click = [this] { cmdGo_Click(); };
    cmdStop.click = [this] { stop_ = true; };
    CmdExit.click = [this] { unload(); };
    cmdGo.isDefault = true;
    CmdExit.isCancel = true;
    setLayout(column({
        title(lblHeading),
        box("What to do", column({at(optBak), at(optRest)})),
        fields({field("File:", lblFile, {at(cmdFile)}).wide(70), field("Last time:", lblProved).wide(70)}),
        stretch(),
        at(lblState).high(3),
        at(dbBar),
        buttons({at(cmdStop), stretch(), at(CmdExit), at(cmdGo)}),
    }));
}

void frmDatabaseBak::Form_Load() {
    const Waiting waiting(desk());
    optBak.setValue(true);
    optBak.click = [this] { optMode_Click(); };
    optRest.click = [this] { optMode_Click(); };
    lblFile.setCaption("");
    dbBar.setVisible(false);
    guarded({kTag, "Form_Load"}, [this] {
        serverIsLocal_ = true;
        if (locator_.CanTell()) {
            serverName_ = modMain().DBServerName;
            serverIsLocal_ = locator_.IsLocal(serverName_);
        }
    });
    showLast();
    setAvailable();
}

void frmDatabaseBak::Form_Unload(bool& cancel) {
    cancel = working_;
    stop_ = leave_ = working_;
}

bool frmDatabaseBak::backsUp() const {
    return optBak.value();
}

// A file that was chosen to be restored is none to be overwritten without a question, and the other way round.
void frmDatabaseBak::optMode_Click() {
    path_.clear();
    lblFile.setCaption("");
    say("");
    setAvailable();
}

void frmDatabaseBak::cmdFile_Click() {
    if (working_)
        return;
    path_.clear();
    guarded({kTag, "cmdFile_Click"}, [this] {
        const std::string chosen = picker_.Pick(backsUp(), "Tillmark2k-" + nameOfMoment(desk().clock().now()).substr(0, 8) + ".bki");
        const std::string refused = chosen.empty() ? "" : refusal(chosen);
        if (!refused.empty())
            desk().message(refused, kProduct, MessageIcon::Exclamation);
        else
            path_ = chosen;
    });
    lblFile.setCaption(path_);
    const bool hasBlank = std::filesystem::path(path_).filename().string().find(' ') != std::string::npos;
    say(hasBlank ? "The server's commands do not take a file name with a blank: please choose one without." : "", hasBlank);
    setAvailable();
}

// What speaks against the path; empty for nothing.
std::string frmDatabaseBak::refusal(const std::string& path) const {
    if (backsUp() && !serverIsLocal_ && path.find(desk().programFolder().string()) != std::string::npos)
        return "Database backup file cannot be placed under the application directory.";
    std::error_code error;
    return !backsUp() && !std::filesystem::is_regular_file(path, error) ? "Please select a valid file" : "";
}

void frmDatabaseBak::setAvailable() {
    for (Control* control : {static_cast<Control*>(&optBak), static_cast<Control*>(&optRest), static_cast<Control*>(&cmdFile),
                             static_cast<Control*>(&CmdExit)})
        control->setEnabled(!working_);
    cmdGo.setEnabled(!working_ && !path_.empty());
    cmdStop.setEnabled(working_);
}

void frmDatabaseBak::say(const std::string& text, bool bad) {
    lblState.setForeColor(bad ? Color::Red : Color::None);
    lblState.setCaption(text);
}

void frmDatabaseBak::showLast() {
    if (connectedStoreFile().empty()) {
        lblProved.setCaption("The server keeps the list of its backups itself.");
        return;
    }
    const auto last = lastBackupNote(connectedStoreFile());
    const bool bad = last && (last->outcome == BackupOutcome::Failed || last->outcome == BackupOutcome::Unproved);
    lblProved.setForeColor(bad ? Color::Red : Color::None);
    lblProved.setCaption(last ? last->sentence : "There is no backup of this store yet.");
    lblProved.setToolTip(last ? last->file.string() : "");
}

void frmDatabaseBak::stepBegins(const std::string& what) {
    say(what);
    dbBar.set(0);
    dbBar.setVisible(true);
    desk().yield();
}

void frmDatabaseBak::stepEnded() {
    dbBar.setVisible(false);
}

BackupProgress frmDatabaseBak::progress() {
    return [this](int percent) {
        dbBar.set(percent);
        desk().yield();
        return !stop_;
    };
}

void frmDatabaseBak::cmdGo_Click() {
    if (working_ || path_.empty())
        return;
    if (desk().message("Please make sure all registers are closed out of the system. When ready, click OK.", kQuestion,
                       MessageIcon::Question, MessageButtons::OkCancel) == Answer::Cancel)
        return;
    working_ = true;
    stop_ = false;
    setAvailable();
    bool done = false;
    BackupResult result;
    {
        const AtEnd ended([this] {
            dbBar.setVisible(false);
            working_ = false;
            setAvailable();
        });
        BackupRun run(desk(), *this, backsUp(), path_);
        done = guarded({kTag, kHandler}, [&] { run.run(); });
        result = run.result();
    }
    showLast();
    if (done)
        tell(result);
    else if (modMain().Conn->State() == 0)
        say("The application has no connection to the store now. Press Go to try again, or leave the program and start it anew.", true);
    else
        sayFailed(result);
    if (leave_)
        unload();
}

// A backup that failed goes into the log: the last good one is not the last that was tried.
void frmDatabaseBak::sayFailed(const BackupResult& result) {
    if (result.backsUp && !connectedStoreFile().empty())
        guarded({kTag, kHandler}, [&] {
            const Date now = desk().clock().now();
            noteBackup(connectedStoreFile(),
                       {now, BackupOutcome::Failed, path_, "No backup " + now.toShortText() + ": it could not be made"});
        });
    showLast();
    say(result.backsUp ? "No backup was made." : result.complete ? "The database was restored." : "Nothing was restored.", true);
}

bool frmDatabaseBak::confirmed(const RestoreOutlook& outlook) {
    const auto asked = [this](const std::string& question) {
        return desk().message(question, kProduct, MessageIcon::Exclamation, MessageButtons::YesNo) == Answer::Yes;
    };
    if (outlook.upgrades &&
        !asked("The backup was made by an earlier version of the program (its store is of version " + std::to_string(outlook.version) +
               "). It is brought up to date while it is restored; the file itself stays as it is.\n\nDo you wish to "
               "restore it?"))
        return false;
    if (!outlook.storeIsNewer)
        return true;
    return asked("The store is newer than the backup: its newest posting is of " + dayAndTime(outlook.storeNewest) + ", the backup's of " +
                 dayAndTime(outlook.backupNewest) + ".\n\nDo you wish to restore the backup all the same?") &&
           asked("Whatever was posted after " + dayAndTime(outlook.backupNewest) +
                 " will be gone from the store. It is kept aside until the next proved backup.\n\nAre you sure?");
}

void frmDatabaseBak::tell(const BackupResult& result) {
    if (result.refused || result.stopped) {
        say(result.refused ? "Nothing was restored." : result.backsUp ? "Stopped. No backup was made." : "Stopped. Nothing was restored.");
        return;
    }
    if (result.backsUp)
        return tellOfBackup(result);
    say(result.replaced.empty()
            ? result.left + result.shellSaid
            : "The store that was there before is kept as " + result.replaced.string() + " until the next proved backup.");
    desk().message("Database restore is completed.", kProduct, MessageIcon::Information);
}

void frmDatabaseBak::tellOfBackup(const BackupResult& result) {
    if (!result.proof.proved && !result.unproved) {
        say("The backup failed its proof and is kept as " + result.kept.string() + ". Make another one, on another disk.", true);
        desk().message("The backup failed its proof: " + result.proof.fault + "\n\nIt is kept as " + result.kept.string() +
                           ", and what was there before was not replaced.",
                       kProduct, MessageIcon::Exclamation);
        return;
    }
    if (!result.left.empty()) {
        say(result.left, true);
        desk().message(result.left, kProduct, MessageIcon::Exclamation);
        return;
    }
    say(result.unproved ? "The proof was stopped: whether this backup comes back is not known." : result.shellSaid, result.unproved);
    desk().message("Backup file " + path_ + " has been created on " + (serverIsLocal_ ? "the local machine." : serverName_ + "."), kProduct,
                   MessageIcon::Information);
}

} // namespace merchantry::exchange
