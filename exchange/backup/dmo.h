#pragma once

#include "exchange/backup/provedbackup.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace merchantry::exchange {

// The objects with which the backup screen has the data server do its work: the server, a backup, a restore. One set for stores in a file,
// whose server is this program, and one for stores on a server, see remoteServer.

class SQLServer;

// Copies the database into Files, a file on the server's drive C.
class Backup {
public:
    virtual ~Backup() = default;

    std::string Database;
    std::string Files; // "C:\shop.bki"
    std::function<void(int percent)> PercentComplete;
    std::function<void()> Complete;

    // Throws DbError: with a sentence, or Cancelled after Abort.
    virtual void SQLBackup(SQLServer& server) = 0;
    // Ends the work as soon as may be; from an event.
    void Abort() { aborted_ = true; }

    // Whether what SQLBackup made comes back as it was, see proveBackup. Requires: it made it, and the file is still at Files.
    virtual BackupProof Prove(Date now) = 0;
    // The file behind Files.
    virtual std::filesystem::path file() const = 0;

protected:
    // Tells how far the work is; false when it is to end.
    BackupProgress watched();

private:
    bool aborted_ = false;
};

// Puts what is in Files in the place of the database.
class Restore {
public:
    virtual ~Restore() = default;

    std::string Database;
    std::string Files;
    std::function<void(int percent)> PercentComplete;
    std::function<void()> Complete;

    // Throws DbError: with a sentence, the database as it was, or Cancelled after Abort.
    virtual void SQLRestore(SQLServer& server) = 0;
    void Abort() { aborted_ = true; }
    // Where the database that was there before is kept; empty when it is not.
    std::filesystem::path replaced;

protected:
    BackupProgress watched();

private:
    bool aborted_ = false;
};

// The data server.
class SQLServer {
public:
    virtual ~SQLServer() = default;

    int LoginTimeout = 0; // seconds
    bool LoginSecure = false;

    // Throws DbError with a sentence when it cannot be reached. Requires: LoginSecure.
    virtual void Connect(const std::string& server) = 0;
    // Requires: not LoginSecure.
    virtual void Connect(const std::string& server, const std::string& user, const std::string& password) = 0;

    // For this server's databases; now: the moment of the restore.
    virtual std::unique_ptr<Backup> backup() = 0;
    virtual std::unique_ptr<Restore> restore(Date now) = 0;
};

// The server of that name, as the application is configured for: the path of a store file has this program itself for one.
std::unique_ptr<SQLServer> serverFor(const std::string& server);
// Whether a data source is the path of a store file.
bool isStoreFile(const std::string& server);

} // namespace merchantry::exchange
