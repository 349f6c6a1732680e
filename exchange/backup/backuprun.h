#pragma once

#include "exchange/backup/dmo.h"

#include <filesystem>
#include <memory>
#include <string>

namespace merchantry::db {
class FileStage;
class Sql;
} // namespace merchantry::db

namespace merchantry::ui {
class Desk;
}

namespace merchantry::exchange {

class StoreCloser;
struct RestoreOutlook;

// The server that the application is connected to, with its instance; the path of a store in a file.
std::string connectedServer();
// The store's file; empty for a database server's.
std::string connectedStoreFile();

// What a run asks of the screen and shows there.
class BackupScreen {
public:
    // A step whose progress is told; and that it is over.
    virtual void stepBegins(const std::string& what) = 0;
    virtual void stepEnded() = 0;
    // Shows how far a step is; false when the user stopped it.
    virtual BackupProgress progress() = 0;
    // Whether the user wishes to restore, knowing that.
    virtual bool confirmed(const RestoreOutlook& outlook) = 0;

protected:
    ~BackupScreen() = default;
};

// What became of a run.
struct BackupResult {
    bool backsUp = true;
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

// Backs the connected store up to a file and proves the backup, or restores the store from one. The data server does the work, with the
// file on its drive C, between which and the chosen path it is moved; meanwhile the application has no connection of its own. Others are
// kept out of the store as long as the object stands.
class BackupRun {
public:
    BackupRun(ui::Desk& desk, BackupScreen& screen, bool backsUp, std::string path);
    ~BackupRun();
    BackupRun(const BackupRun&) = delete;
    BackupRun& operator=(const BackupRun&) = delete;

    // Runs the whole. Throws DbError; failed before the new connection is open, the application has none.
    void run();
    const BackupResult& result() const { return result_; }

private:
    // In their order.
    std::unique_ptr<SQLServer> connected();
    void split();
    void requireUsable() const;
    void stageForRestore();
    void stageOnServer();
    std::string shell(const db::Sql& command);
    void closeConn();
    void backUp();
    void restore();
    void openConn() const;
    void prove();
    void keepUnproved();
    void unstage();
    void unstageOnServer();

    ui::Desk& desk_;
    BackupScreen& screen_;
    std::string path_;
    std::string store_; // empty for a database server's
    BackupResult result_;
    std::string folder_; // with its separator
    std::string stage_;  // "C:\" and the file name
    std::string connectionString_;
    std::string database_;
    std::unique_ptr<SQLServer> server_;
    std::unique_ptr<Backup> backup_;
    std::unique_ptr<StoreCloser> closer_;
    std::unique_ptr<db::FileStage> files_; // goes before others may come back
};

} // namespace merchantry::exchange
