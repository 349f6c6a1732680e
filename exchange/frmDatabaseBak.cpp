#include "exchange/frmDatabaseBak.h"

#include "app/backuplog.h"
#include "app/db/ado/provider.h"
#include "app/db/embedded/filestage.h"
#include "app/db/server/address.h"
#include "app/modMain.h"
#include "app/storefile.h"
#include "app/titles.h"
#include "base/guard.h"
#include "base/numbers.h"
#include "base/platform/files.h"
#include "base/text.h"
#include "exchange/backup/restoring.h"
#include "exchange/backup/storecloser.h"
#include "ui/desk.h"
#include "ui/waiting.h"

namespace merchantry::exchange {

using namespace app;
using namespace ui;

namespace {

constexpr const char* kTag = "MR_frmDatabaseBak";
constexpr const char* kHandler = "Dbase_Error";

constexpr const char* kQuestion = "Velmora Tillmark Profesional";
constexpr int kLoginTimeoutSeconds = 30;
constexpr int kCopiesOfRestore = 3; // on the stage, of the store that is kept, and in the log of the change

constexpr int kShellIsOff = 15281;

std::string defaultDatabase(const std::string& connectionString) {
    return db::server::addressOf(db::connectionParts(connectionString)).database;
}

[[noreturn]] void refuse(const std::string& sentence) {
    throw db::DbError(db::DbError::Category::Storage, 0, sentence);
}

// The store's own files: a backup that took the place of one would destroy the store.
bool belongsToStore(const std::filesystem::path& file, const std::filesystem::path& store) {
    std::error_code error;
    const std::string path = std::filesystem::weakly_canonical(file, error).string();
    const std::string own = std::filesystem::weakly_canonical(store, error).string();
    for (const char* ending : {"", "-wal", "-shm", "-journal", ".backups.log", ".closing"})
        if (path == own + ending)
            return true;
    return std::filesystem::equivalent(file, store, error);
}

// The commands for the server's shell, in which values stand as they are.
db::Sql copyCommand(const std::string& path) {
    return db::Sql("master..xp_cmdshell 'copy \"") + path + "\" C:\\'";
}

db::Sql moveCommand(const std::string& stage, const std::string& folder) {
    return db::Sql("master..xp_cmdshell 'move ") + stage + " \"" + folder + "\"'";
}

db::Sql deleteCommand(const std::string& stage) {
    return db::Sql("master..xp_cmdshell 'del ") + stage + "'";
}

// Why a command of the server's shell was not run.
std::string shellRefusal(const db::DbError& error) {
    return error.native() == kShellIsOff ? "xp_cmdshell is switched off on the server."
                                         : std::string("the server's shell cannot be used: ") + error.what();
}

std::string megabytes(std::uintmax_t bytes) {
    constexpr std::uintmax_t kMegabyte = 1'000'000;
    return withThousands(static_cast<std::int64_t>((bytes + kMegabyte - 1) / kMegabyte)) + " MB";
}

// For so many copies of the file.
void requireRoom(const std::filesystem::path& folder, const std::filesystem::path& file, int copies) {
    std::error_code error;
    const auto wanted = std::filesystem::file_size(file, error) * static_cast<std::uintmax_t>(copies);
    const auto room = std::filesystem::space(folder, error);
    if (!error && room.available < wanted)
        refuse("There is not enough room in " + folder.string() + ": " + megabytes(wanted) + " are needed, " + megabytes(room.available) +
               " are free. Nothing was written.");
}

std::string dayAndTime(Date moment) {
    return moment == Date() ? "never" : moment.toShortText();
}

} // namespace

// What one press of Go is at.
struct frmDatabaseBak::Work {
    bool backsUp = true;
    std::unique_ptr<SQLServer> server;
    std::string folder; // with its separator
    std::string fileName;
    std::string stage; // "C:\" and the file name
    std::unique_ptr<db::FileStage> files;
    std::unique_ptr<StoreCloser> closer;
    std::string connectionString;
    std::string database;
    std::unique_ptr<Backup> backup;
    bool complete = false; // the server's work
    bool stopped = false;
    bool refused = false; // by the user, at a question
    BackupProof proof;
    bool unproved = false;          // stopped before the proof's end
    std::filesystem::path kept;     // where the backup is
    std::filesystem::path replaced; // the store before a restore
    std::string shellSaid;          // by a server's shell
    std::string left;               // a sentence on what a server's shell did not do
};

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
    if (storeFile().empty()) {
        lblProved.setCaption("The server keeps the list of its backups itself.");
        return;
    }
    const auto last = lastBackupNote(storeFile());
    const bool bad = last && (last->outcome == BackupOutcome::Failed || last->outcome == BackupOutcome::Unproved);
    lblProved.setForeColor(bad ? Color::Red : Color::None);
    lblProved.setCaption(last ? last->sentence : "There is no backup of this store yet.");
    lblProved.setToolTip(last ? last->file.string() : "");
}

std::string frmDatabaseBak::server() const {
    const std::string instance(trimmed(modMain().CurrentDB.InstanceName));
    return modMain().DBServerName + (instance.empty() ? "" : "\\" + instance);
}

// Empty for a database server's.
std::string frmDatabaseBak::storeFile() const {
    return isStoreFile(server()) ? server() : "";
}

void frmDatabaseBak::watch(const std::string& what) {
    say(what);
    dbBar.set(0);
    dbBar.setVisible(true);
    desk().yield();
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
    Work work;
    work.backsUp = backsUp();
    working_ = true;
    stop_ = false;
    setAvailable();
    bool done = false;
    {
        const AtEnd ended([this] {
            dbBar.setVisible(false);
            working_ = false;
            setAvailable();
        });
        done = guarded({kTag, kHandler}, [&] { run(work); });
        work.files.reset();
        work.closer.reset();
    }
    showLast();
    if (done)
        tell(work);
    else if (modMain().Conn->State() == 0)
        say("The application has no connection to the store now. Press Go to try again, or leave the program and start it anew.", true);
    else
        sayFailed(work);
    if (leave_)
        unload();
}

// A backup that failed goes into the log: the last good one is not the last that was tried.
void frmDatabaseBak::sayFailed(const Work& work) {
    if (work.backsUp && !storeFile().empty())
        guarded({kTag, kHandler}, [&] {
            const Date now = desk().clock().now();
            noteBackup(storeFile(), {now, BackupOutcome::Failed, path_, "No backup " + now.toShortText() + ": it could not be made"});
        });
    showLast();
    say(work.backsUp ? "No backup was made." : work.complete ? "The database was restored." : "Nothing was restored.", true);
}

// A stop leaves everything as it was, with a connection.
void frmDatabaseBak::run(Work& work) {
    const Waiting waiting(desk());
    desk().yield();
    if (modMain().Conn->State() == 0) { // an earlier try left none
        work.connectionString = modMain().ConnectString;
        openConn(work);
    }
    work.server = connected();
    split(work);
    requireUsable(work);
    try {
        if (!work.backsUp)
            stageForRestore(work);
        if (work.refused)
            return;
        closeConn(work);
        watch(work.backsUp ? "Copying the store..." : "Restoring...");
        if (work.backsUp)
            backUp(work);
        else
            restore(work);
    } catch (const db::DbError& error) {
        if (error.category() != db::DbError::Category::Cancelled)
            throw;
        work.stopped = true;
    }
    dbBar.setVisible(false);
    desk().yield();
    if (modMain().Conn->State() == 0)
        openConn(work);
    if (work.stopped)
        return;
    if (work.backsUp)
        prove(work);
    unstage(work);
}

std::unique_ptr<SQLServer> frmDatabaseBak::connected() {
    const std::string name = server();
    auto made = serverFor(name);
    made->LoginTimeout = kLoginTimeoutSeconds;
    if (modMain().CurrentDB.IntegratedSecurity == "1") {
        made->LoginSecure = true;
        made->Connect(name);
    } else {
        made->LoginSecure = false;
        made->Connect(name, "sa", modMain().DBPassword);
    }
    return made;
}

// The stage of a backup lies beside the file that it becomes, so that it takes its place in one step; that of a restore beside the store.
void frmDatabaseBak::split(Work& work) const {
    std::size_t at = path_.rfind('\\');
    if (at == std::string::npos)
        at = path_.rfind('/');
    work.folder = path_.substr(0, at + 1);
    work.fileName = path_.substr(at + 1);
    work.stage = "C:\\" + work.fileName;
    if (storeFile().empty()) // a server has its own drive
        return;
    const auto stageFolder = std::filesystem::absolute(work.backsUp ? path_ : storeFile()).parent_path();
    work.files = std::make_unique<db::FileStage>(path_, stageFolder);
    work.files->fileOf(work.stage);
}

// Before anything is done.
void frmDatabaseBak::requireUsable(const Work& work) const {
    (work.backsUp ? moveCommand(work.stage, work.folder) : deleteCommand(work.stage)).check();
    const std::filesystem::path store = storeFile();
    if (store.empty()) // what stands on a server's disks only the server can tell
        return;
    if (belongsToStore(path_, store))
        refuse("That file is the store itself, or belongs to it. Choose another one.");
    if (std::filesystem::is_directory(path_))
        refuse(path_ + " is a folder. Choose a file.");
    if (!work.backsUp)
        return requireRoom(work.files->folder(), path_, kCopiesOfRestore);
    if (const auto holders = platform::holdersOf(path_); !holders.empty())
        refuse(path_ + " is open in " + platform::namesOf(holders) + ". Choose another file.");
    requireRoom(work.files->folder(), store, 1);
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

void frmDatabaseBak::stageForRestore(Work& work) {
    if (storeFile().empty()) {
        stageOnServer();
        return;
    }
    if (!confirmed(outlookOf(path_, storeFile()))) {
        work.refused = true;
        return;
    }
    watch("Reading the backup...");
    work.files->progress = progress();
    modMain().Conn->Execute(copyCommand(path_));
    requireSound(work.files->fileOf(work.stage)); // before the connection is closed
    dbBar.setVisible(false);
}

void frmDatabaseBak::stageOnServer() {
    try {
        shell(copyCommand(path_));
    } catch (const db::DbError& error) {
        refuse("The backup cannot be brought to the server's drive C: " + shellRefusal(error) + " Nothing was restored.");
    }
}

// What the server's shell says to a command, in one line.
std::string frmDatabaseBak::shell(const db::Sql& command) {
    const db::RecordsetPtr rows = modMain().Conn->Execute(command);
    std::string said;
    for (; rows->State() != 0 && !rows->Eof(); rows->MoveNext())
        if (const std::string line(trimmed((*rows)[0].Value().toText())); !line.empty())
            said += (said.empty() ? "" : " ") + line;
    return said;
}

// What is left in the shared connection's place is one that is closed.
void frmDatabaseBak::closeConn(Work& work) {
    ModMain& session = modMain();
    work.connectionString = session.Conn->ConnectionString();
    work.database = defaultDatabase(work.connectionString);
    session.Conn->Close();
    session.Conn = std::make_shared<db::Connection>(*session.provider);
    session.provider->closeIdle();
    work.closer = std::make_unique<StoreCloser>(desk(), work.backsUp ? "" : storeFile());
    if (!work.closer->CloseOthers())
        throw db::DbError(db::DbError::Category::Cancelled, 0, "Others hold the store.");
}

void frmDatabaseBak::backUp(Work& work) {
    work.backup = work.server->backup();
    Backup& backup = *work.backup;
    backup.Database = work.database;
    backup.Files = work.stage;
    backup.PercentComplete = [this, &backup, took = progress()](int percent) {
        if (!took(percent))
            backup.Abort();
    };
    backup.Complete = [&work] { work.complete = true; };
    backup.SQLBackup(*work.server);
}

void frmDatabaseBak::restore(Work& work) {
    const auto restore = work.server->restore(desk().clock().now());
    restore->Database = work.database;
    restore->Files = work.stage;
    restore->PercentComplete = [this, &restore, took = progress()](int percent) {
        if (!took(percent))
            restore->Abort();
    };
    restore->Complete = [&work] { work.complete = true; };
    restore->SQLRestore(*work.server);
    work.replaced = restore->replaced;
}

void frmDatabaseBak::openConn(const Work& work) {
    const auto fresh = std::make_shared<db::Connection>(*modMain().provider);
    fresh->Open(work.connectionString);
    modMain().Conn = fresh;
}

// While the backup is still on the stage: one that fails does not take the place of a good one of the same name.
void frmDatabaseBak::prove(Work& work) {
    watch(storeFile().empty() ? "The server reads the backup again..."
                              : "Proving the backup: it is restored into a scratch store and compared...");
    const AtEnd hidden([this] { dbBar.setVisible(false); });
    try {
        work.proof = work.backup->Prove(desk().clock().now());
    } catch (const db::DbError& error) {
        if (error.category() != db::DbError::Category::Cancelled)
            throw;
        work.unproved = true;
    }
    if (!work.proof.proved && !work.unproved)
        keepUnproved(work);
}

void frmDatabaseBak::keepUnproved(Work& work) {
    if (storeFile().empty()) {
        work.kept = work.stage;
        return;
    }
    work.kept = unprovedName(path_);
    platform::moveInto(work.backup->file(), work.kept);
    noteProof(storeFile(), work.kept, work.proof);
}

// A backup takes its place, and is of account from then on; what was restored from goes from the stage.
void frmDatabaseBak::unstage(Work& work) {
    if (storeFile().empty()) {
        unstageOnServer(work);
        return;
    }
    const db::ConnectionPtr conn = modMain().Conn;
    const std::string store = storeFile();
    const Date now = desk().clock().now();
    if (!work.backsUp) {
        noteBackup(store, {now, BackupOutcome::Restored, path_, "Restored " + now.toShortText() + " from " + path_});
        conn->Execute(deleteCommand(work.stage));
        return;
    }
    if (!work.kept.empty())
        return;
    conn->Execute(moveCommand(work.stage, work.folder));
    work.kept = path_;
    if (work.unproved)
        noteBackup(store, {now, BackupOutcome::Unproved, path_, "Backed up " + now.toShortText() + ", not proved"});
    else
        noteProof(store, path_, work.proof);
}

// A file that the shell does not move or delete stays where the server put it.
void frmDatabaseBak::unstageOnServer(Work& work) {
    if (!work.kept.empty())
        return;
    try {
        work.shellSaid = shell(work.backsUp ? moveCommand(work.stage, work.folder) : deleteCommand(work.stage));
    } catch (const db::DbError& error) {
        work.left = work.backsUp ? "The backup is made and stands on the server as " + work.stage + ". It was not moved to " + work.folder +
                                       ": " + shellRefusal(error) + " Please move it there yourself, or keep it where it is."
                                 : "The file " + work.stage + " is still on the server and can be deleted there: " + shellRefusal(error);
    }
}

void frmDatabaseBak::tell(const Work& work) {
    if (work.refused || work.stopped) {
        say(work.refused ? "Nothing was restored." : work.backsUp ? "Stopped. No backup was made." : "Stopped. Nothing was restored.");
        return;
    }
    if (!work.backsUp) {
        say(work.replaced.empty()
                ? work.left + work.shellSaid
                : "The store that was there before is kept as " + work.replaced.string() + " until the next proved backup.");
        desk().message("Database restore is completed.", kProduct, MessageIcon::Information);
        return;
    }
    if (!work.proof.proved && !work.unproved) {
        say("The backup failed its proof and is kept as " + work.kept.string() + ". Make another one, on another disk.", true);
        desk().message("The backup failed its proof: " + work.proof.fault + "\n\nIt is kept as " + work.kept.string() +
                           ", and what was there before was not replaced.",
                       kProduct, MessageIcon::Exclamation);
        return;
    }
    if (!work.left.empty()) {
        say(work.left, true);
        desk().message(work.left, kProduct, MessageIcon::Exclamation);
        return;
    }
    say(work.unproved ? "The proof was stopped: whether this backup comes back is not known." : work.shellSaid, work.unproved);
    desk().message("Backup file " + path_ + " has been created on " + (serverIsLocal_ ? "the local machine." : serverName_ + "."), kProduct,
                   MessageIcon::Information);
}

} // namespace merchantry::exchange
