#include "exchange/backup/remoteserver.h"

#include <gtest/gtest.h>

#include <map>

namespace merchantry::exchange {
namespace {

using db::DbError;

// What a server was told, and what it answers.
struct Told {
    std::vector<std::string> batches;
    std::string opened;                    // the connection string
    std::map<std::string, DbError> errors; // by the batch's beginning, each thrown once
    std::vector<std::string> messages;     // of each batch
    bool cancelled = false;
};

class RecordingSession : public db::Session {
public:
    explicit RecordingSession(Told& told) : told_(told) {}
    void execute(std::string_view batch, std::vector<db::Parameter>&, db::ResultSink& sink) override {
        told_.batches.emplace_back(batch);
        for (auto error = told_.errors.begin(); error != told_.errors.end(); ++error) {
            if (batch.find(error->first) == std::string_view::npos)
                continue;
            const DbError thrown = error->second;
            told_.errors.erase(error);
            throw DbError(thrown);
        }
        for (const std::string& message : told_.messages)
            sink.message(message);
        if (told_.cancelled)
            throw DbError(DbError::Category::Cancelled, 0, "The statement was cancelled.");
    }
    void call(std::string_view, std::vector<db::Parameter>&, db::ResultSink&) override {}
    db::TableShape table(std::string_view) override { return {}; }
    void begin() override {}
    void commit() override {}
    void rollback() override {}
    int transactionDepth() const override { return 0; }
    Value lastIdentity() const override { return {}; }
    void cancel() override { told_.cancelled = true; }
    void setReadOnly(bool) override {}
    void setWaiter(db::Waiter*) override {}
    void setClock(const Clock*) override {}

private:
    Told& told_;
};

class BackupOnAServer : public testing::Test {
protected:
    void connect(const std::string& name) {
        server = remoteServer([this](const std::string& connectionString) {
            told.opened = connectionString;
            return std::make_unique<RecordingSession>(told);
        });
        server->Connect(name, "sa", "secret");
    }
    std::unique_ptr<Backup> backup(const std::string& database, const std::string& file) {
        auto made = server->backup();
        made->Database = database;
        made->Files = file;
        made->PercentComplete = [this](int percent) { percents.push_back(percent); };
        made->Complete = [this] { ++completed; };
        return made;
    }
    std::unique_ptr<Restore> restore() {
        auto made = server->restore(Date());
        made->Database = "Tillmark2k";
        made->Files = "C:\\shop.bki";
        made->Complete = [this] { ++completed; };
        return made;
    }
    static std::string sentenceOf(const std::function<void()>& work) {
        try {
            work();
        } catch (const DbError& error) {
            return error.what();
        }
        return "no error";
    }

    Told told;
    std::unique_ptr<SQLServer> server;
    std::vector<int> percents;
    int completed = 0;
};

// A session in the database itself would keep a restore from having it.
TEST_F(BackupOnAServer, LogsInBesideTheDatabase) {
    connect("shop1\\till,1435; Encrypt=no; Database=Trial");
    EXPECT_EQ(told.opened,
              "Provider=SQLOLEDB.1; User ID=sa; PASSWORD=secret; Data Source=shop1\\till,1435; Encrypt=no; Initial Catalog=master");
}

TEST_F(BackupOnAServer, BacksUpToItsOwnDriveAndReadsItAgain) {
    connect("shop1");
    told.messages = {"10 percent processed.", "Processed 344 pages for database 'Tillmark2k'", "100 percent processed."};
    const auto made = backup("My]Shop", "C:\\O'Neil.bki");
    made->SQLBackup(*server);
    EXPECT_TRUE(made->Prove(Date()).proved);
    EXPECT_EQ(told.batches, (std::vector<std::string>{"BACKUP DATABASE [My]]Shop] TO DISK = 'C:\\O''Neil.bki' WITH INIT, STATS = 5",
                                                      "RESTORE VERIFYONLY FROM DISK = 'C:\\O''Neil.bki'"}));
    EXPECT_EQ(percents, (std::vector<int>{10, 100}));
    EXPECT_EQ(completed, 1);
}

TEST_F(BackupOnAServer, TellsWhatTheServerRefuses) {
    connect("shop1");
    told.errors.emplace("BACKUP", DbError(DbError::Category::Other, 3201, "Cannot open backup device 'C:\\shop.bki'."));
    const auto made = backup("Tillmark2k", "C:\\shop.bki");
    EXPECT_EQ(sentenceOf([&] { made->SQLBackup(*server); }),
              "The server made no backup of Tillmark2k. The server says: Cannot open backup device 'C:\\shop.bki'.");
    EXPECT_EQ(completed, 0);
    told.errors.emplace("VERIFYONLY", DbError(DbError::Category::Other, 3189, "Damage to the backup set was detected."));
    const BackupProof proof = made->Prove(Date());
    EXPECT_FALSE(proof.proved);
    EXPECT_NE(proof.fault.find("Damage to the backup set"), std::string::npos);
}

TEST_F(BackupOnAServer, StopsWhenTold) {
    connect("shop1");
    told.messages = {"5 percent processed."};
    const auto made = backup("Tillmark2k", "C:\\shop.bki");
    made->PercentComplete = [&](int) { made->Abort(); };
    try {
        made->SQLBackup(*server);
        FAIL();
    } catch (const DbError& error) {
        EXPECT_EQ(error.category(), DbError::Category::Cancelled);
    }
    EXPECT_EQ(completed, 0);
}

// Only changes that are in no backup yet are passed over; the backup of another database is refused by the server and stays so.
TEST_F(BackupOnAServer, RestoresOverChangesThatNoBackupHolds) {
    connect("shop1");
    told.errors.emplace("STATS = 5", DbError(DbError::Category::Other, 3159, "The tail of the log has not been backed up."));
    restore()->SQLRestore(*server);
    EXPECT_EQ(told.batches, (std::vector<std::string>{"RESTORE DATABASE [Tillmark2k] FROM DISK = 'C:\\shop.bki' WITH STATS = 5",
                                                      "RESTORE DATABASE [Tillmark2k] FROM DISK = 'C:\\shop.bki' WITH STATS = 5, REPLACE"}));
    EXPECT_EQ(completed, 1);

    told.batches.clear();
    told.errors.emplace("RESTORE", DbError(DbError::Category::Other, 3154, "The backup set holds the backup of another database."));
    EXPECT_NE(sentenceOf([&] { restore()->SQLRestore(*server); }).find("restored nothing into Tillmark2k"), std::string::npos);
    EXPECT_EQ(told.batches.size(), 1U);

    told.errors.emplace("RESTORE", DbError(DbError::Category::Other, 3101, "Exclusive access could not be obtained."));
    EXPECT_NE(sentenceOf([&] { restore()->SQLRestore(*server); }).find("registers or other desktops are connected"), std::string::npos);
    EXPECT_EQ(completed, 1);
}

TEST(PercentOf, ReadsTheServersMessages) {
    EXPECT_EQ(percentOf("5 percent processed."), 5);
    EXPECT_EQ(percentOf(" 100 percent processed."), 100);
    for (const char* other :
         {"", "percent processed.", "Processed 10 pages", "x percent processed.", "101 percent processed.", "-1 percent processed."})
        EXPECT_EQ(percentOf(other), -1) << other;
}

} // namespace
} // namespace merchantry::exchange
