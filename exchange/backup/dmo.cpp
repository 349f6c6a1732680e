#include "exchange/backup/dmo.h"

#include "app/db/ado/provider.h"
#include "app/db/embedded/filestage.h"
#include "app/db/embedded/store.h"
#include "app/db/server/server.h"
#include "exchange/backup/remoteserver.h"
#include "exchange/backup/restoring.h"

namespace merchantry::exchange {
namespace {

using db::DbError;

// The file on the stage that stands while the screen works.
std::filesystem::path staged(const std::string& files) {
    const db::FileStage* stage = db::FileStage::current();
    if (stage == nullptr)
        throw DbError(DbError::Category::Storage, 0, "There is no stage for the backup file " + files + ".");
    return stage->fileOf(files);
}

class StoreServer : public SQLServer {
public:
    explicit StoreServer(std::filesystem::path store) : store_(std::move(store)) {}

    // Nobody has to log in to a file; who may read it may copy it.
    void Connect(const std::string& server) override { open(server); }
    void Connect(const std::string& server, const std::string& /*user*/, const std::string& /*password*/) override { open(server); }
    std::unique_ptr<Backup> backup() override;
    std::unique_ptr<Restore> restore(Date now) override;

private:
    // A store that does not open cannot be copied; it can be replaced.
    void open(const std::string& server) {
        if (server != store_.string())
            throw DbError(DbError::Category::Storage, 0, "\"" + server + "\" is not the path of the store " + store_.string() + ".");
        db::Store::open(store_);
    }

    std::filesystem::path store_;
};

class StoreBackup : public Backup {
public:
    explicit StoreBackup(std::filesystem::path store) : store_(std::move(store)) {}

    void SQLBackup(SQLServer& /*server*/) override {
        std::error_code ignored;
        std::filesystem::remove(file(), ignored); // one of the same name is overwritten
        backUp(store_, file(), &figures_, watched());
        if (Complete)
            Complete();
    }
    BackupProof Prove(Date now) override { return proveBackup(file(), figures_, folderForProof(store_, file()), now, watched()); }
    std::filesystem::path file() const override { return staged(Files); }

private:
    std::filesystem::path store_;
    app::StoreFigures figures_;
};

class StoreRestore : public Restore {
public:
    StoreRestore(std::filesystem::path store, Date now) : store_(std::move(store)), now_(now) {}

    void SQLRestore(SQLServer& /*server*/) override {
        replaced = restoreStore(staged(Files), store_, now_, watched());
        if (Complete)
            Complete();
    }

private:
    std::filesystem::path store_;
    Date now_;
};

std::unique_ptr<Backup> StoreServer::backup() {
    return std::make_unique<StoreBackup>(store_);
}

std::unique_ptr<Restore> StoreServer::restore(Date now) {
    return std::make_unique<StoreRestore>(store_, now);
}

template <class Work> BackupProgress progressOf(const Work& work, const bool& aborted) {
    return [&work, &aborted](int percent) {
        if (work.PercentComplete)
            work.PercentComplete(percent);
        return !aborted;
    };
}

} // namespace

BackupProgress Backup::watched() {
    return progressOf(*this, aborted_);
}

BackupProgress Restore::watched() {
    return progressOf(*this, aborted_);
}

bool isStoreFile(const std::string& server) {
    return server.find('/') != std::string::npos || server.ends_with(".store");
}

std::unique_ptr<SQLServer> serverFor(const std::string& server) {
    if (isStoreFile(server))
        return std::make_unique<StoreServer>(server);
    return remoteServer([](const std::string& connectionString) { return db::serverOf(connectionString)->session(); });
}

} // namespace merchantry::exchange
