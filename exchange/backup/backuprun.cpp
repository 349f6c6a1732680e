#include "exchange/backup/backuprun.h"

#include "app/backuplog.h"
#include "app/db/ado/provider.h"
#include "app/db/embedded/filestage.h"
#include "app/db/server/address.h"
#include "app/modMain.h"
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

namespace {

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

} // namespace

std::string connectedServer() {
    const std::string instance(trimmed(modMain().CurrentDB.InstanceName));
    return modMain().DBServerName + (instance.empty() ? "" : "\\" + instance);
}

std::string connectedStoreFile() {
    const std::string server = connectedServer();
    return isStoreFile(server) ? server : "";
}

BackupRun::BackupRun(ui::Desk& desk, BackupScreen& screen, bool backsUp, std::string path)
    : desk_(desk), screen_(screen), path_(std::move(path)), store_(connectedStoreFile()) {
    result_.backsUp = backsUp;
}

BackupRun::~BackupRun() = default;

// A stop leaves everything as it was, with a connection.
void BackupRun::run() {
    const ui::Waiting waiting(desk_);
    desk_.yield();
    if (modMain().Conn->State() == 0) { // an earlier try left none
        connectionString_ = modMain().ConnectString;
        openConn();
    }
    server_ = connected();
    split();
    requireUsable();
    try {
        if (!result_.backsUp)
            stageForRestore();
        if (result_.refused)
            return;
        closeConn();
        screen_.stepBegins(result_.backsUp ? "Copying the store..." : "Restoring...");
        if (result_.backsUp)
            backUp();
        else
            restore();
    } catch (const db::DbError& error) {
        if (error.category() != db::DbError::Category::Cancelled)
            throw;
        result_.stopped = true;
    }
    screen_.stepEnded();
    desk_.yield();
    if (modMain().Conn->State() == 0)
        openConn();
    if (result_.stopped)
        return;
    if (result_.backsUp)
        prove();
    unstage();
}

std::unique_ptr<SQLServer> BackupRun::connected() {
    const std::string name = connectedServer();
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
void BackupRun::split() {
    std::size_t at = path_.rfind('\\');
    if (at == std::string::npos)
        at = path_.rfind('/');
    folder_ = path_.substr(0, at + 1);
    stage_ = "C:\\" + path_.substr(at + 1);
    if (store_.empty()) // a server has its own drive
        return;
    const auto stageFolder = std::filesystem::absolute(result_.backsUp ? path_ : store_).parent_path();
    files_ = std::make_unique<db::FileStage>(path_, stageFolder);
    files_->fileOf(stage_);
}

// Before anything is done.
void BackupRun::requireUsable() const {
    (result_.backsUp ? moveCommand(stage_, folder_) : deleteCommand(stage_)).check();
    if (store_.empty()) // what stands on a server's disks only the server can tell
        return;
    if (belongsToStore(path_, store_))
        refuse("That file is the store itself, or belongs to it. Choose another one.");
    if (std::filesystem::is_directory(path_))
        refuse(path_ + " is a folder. Choose a file.");
    if (!result_.backsUp)
        return requireRoom(files_->folder(), path_, kCopiesOfRestore);
    if (const auto holders = platform::holdersOf(path_); !holders.empty())
        refuse(path_ + " is open in " + platform::namesOf(holders) + ". Choose another file.");
    requireRoom(files_->folder(), store_, 1);
}

void BackupRun::stageForRestore() {
    if (store_.empty()) {
        stageOnServer();
        return;
    }
    if (!screen_.confirmed(outlookOf(path_, store_))) {
        result_.refused = true;
        return;
    }
    screen_.stepBegins("Reading the backup...");
    files_->progress = screen_.progress();
    modMain().Conn->Execute(copyCommand(path_));
    requireSound(files_->fileOf(stage_)); // before the connection is closed
    screen_.stepEnded();
}

void BackupRun::stageOnServer() {
    try {
        shell(copyCommand(path_));
    } catch (const db::DbError& error) {
        refuse("The backup cannot be brought to the server's drive C: " + shellRefusal(error) + " Nothing was restored.");
    }
}

// What the server's shell says to a command, in one line.
std::string BackupRun::shell(const db::Sql& command) {
    const db::RecordsetPtr rows = modMain().Conn->Execute(command);
    std::string said;
    for (; rows->State() != 0 && !rows->Eof(); rows->MoveNext())
        if (const std::string line(trimmed((*rows)[0].Value().toText())); !line.empty())
            said += (said.empty() ? "" : " ") + line;
    return said;
}

// What is left in the shared connection's place is one that is closed.
void BackupRun::closeConn() {
    ModMain& session = modMain();
    connectionString_ = session.Conn->ConnectionString();
    database_ = defaultDatabase(connectionString_);
    session.Conn->Close();
    session.Conn = std::make_shared<db::Connection>(*session.provider);
    session.provider->closeIdle();
    closer_ = std::make_unique<StoreCloser>(desk_, result_.backsUp ? "" : store_);
    if (!closer_->CloseOthers())
        throw db::DbError(db::DbError::Category::Cancelled, 0, "Others hold the store.");
}

void BackupRun::backUp() {
    backup_ = server_->backup();
    Backup& backup = *backup_;
    backup.Database = database_;
    backup.Files = stage_;
    backup.PercentComplete = [&backup, took = screen_.progress()](int percent) {
        if (!took(percent))
            backup.Abort();
    };
    backup.Complete = [this] { result_.complete = true; };
    backup.SQLBackup(*server_);
}

void BackupRun::restore() {
    const auto restore = server_->restore(desk_.clock().now());
    restore->Database = database_;
    restore->Files = stage_;
    restore->PercentComplete = [&restore, took = screen_.progress()](int percent) {
        if (!took(percent))
            restore->Abort();
    };
    restore->Complete = [this] { result_.complete = true; };
    restore->SQLRestore(*server_);
    result_.replaced = restore->replaced;
}

void BackupRun::openConn() const {
    const auto fresh = std::make_shared<db::Connection>(*modMain().provider);
    fresh->Open(connectionString_);
    modMain().Conn = fresh;
}

// While the backup is still on the stage: one that fails does not take the place of a good one of the same name.
void BackupRun::prove() {
    screen_.stepBegins(store_.empty() ? "The server reads the backup again..."
                                      : "Proving the backup: it is restored into a scratch store and compared...");
    const AtEnd hidden([this] { screen_.stepEnded(); });
    try {
        result_.proof = backup_->Prove(desk_.clock().now());
    } catch (const db::DbError& error) {
        if (error.category() != db::DbError::Category::Cancelled)
            throw;
        result_.unproved = true;
    }
    if (!result_.proof.proved && !result_.unproved)
        keepUnproved();
}

void BackupRun::keepUnproved() {
    if (store_.empty()) {
        result_.kept = stage_;
        return;
    }
    result_.kept = unprovedName(path_);
    platform::moveInto(backup_->file(), result_.kept);
    noteProof(store_, result_.kept, result_.proof);
}

// A backup takes its place, and is of account from then on; what was restored from goes from the stage.
void BackupRun::unstage() {
    if (store_.empty()) {
        unstageOnServer();
        return;
    }
    const db::ConnectionPtr conn = modMain().Conn;
    const Date now = desk_.clock().now();
    if (!result_.backsUp) {
        noteBackup(store_, {now, BackupOutcome::Restored, path_, "Restored " + now.toShortText() + " from " + path_});
        conn->Execute(deleteCommand(stage_));
        return;
    }
    if (!result_.kept.empty())
        return;
    conn->Execute(moveCommand(stage_, folder_));
    result_.kept = path_;
    if (result_.unproved)
        noteBackup(store_, {now, BackupOutcome::Unproved, path_, "Backed up " + now.toShortText() + ", not proved"});
    else
        noteProof(store_, path_, result_.proof);
}

// A file that the shell does not move or delete stays where the server put it.
void BackupRun::unstageOnServer() {
    if (!result_.kept.empty())
        return;
    try {
        result_.shellSaid = shell(result_.backsUp ? moveCommand(stage_, folder_) : deleteCommand(stage_));
    } catch (const db::DbError& error) {
        result_.left = result_.backsUp ? "The backup is made and stands on the server as " + stage_ + ". It was not moved to " + folder_ +
                                             ": " + shellRefusal(error) + " Please move it there yourself, or keep it where it is."
                                       : "The file " + stage_ + " is still on the server and can be deleted there: " + shellRefusal(error);
    }
}

} // namespace merchantry::exchange
