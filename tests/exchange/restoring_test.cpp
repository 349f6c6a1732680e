// A restore refuses what is no backup of this program's, keeps what it replaces, and is done as a whole or not at all.

#include "exchange/backup/restoring.h"

#include "app/backuplog.h"
#include "app/db/dberror.h"
#include "app/db/embedded/closing.h"
#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"
#include "app/storefigures.h"
#include "app/storefile.h"
#include "base/platform/platform.h"
#include "exchange/backup/dmo.h"
#include "exchange/backup/serverlocator.h"
#include "tests/scratchfolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace merchantry::exchange {
namespace {

const Date kNow = *Date::fromParts(2026, 11, 21, 14, 2);

template <class Act> std::string saidBy(Act act) {
    try {
        act();
        return "";
    } catch (const std::exception& error) {
        return error.what();
    }
}

bool says(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class Restoring : public testing::Test {
protected:
    void SetUp() override {
        app::createStoreFile(store, {}, [](int) {});
        run(store, "INSERT INTO [Transaction] (Time) VALUES ('2026-11-20 10:00')");
        app::backupStoreFile(store, backup);
        run(store, "INSERT INTO [Transaction] (Time) VALUES ('2026-11-21 11:00')");
    }
    static void run(const std::filesystem::path& file, const std::string& batch) {
        db::NoResult none;
        db::Store::open(file)->session()->execute(batch, none);
    }
    static std::int64_t receipts(const std::filesystem::path& file) { return app::figuresOf(file).rows.at("Transaction"); }
    std::string restored() const {
        return saidBy([&] {
            outlookOf(backup, store);
            requireSound(backup);
            restoreStore(backup, store, kNow, {});
        });
    }

    ScratchFolder folder;
    std::filesystem::path store = folder / "shop.store";
    std::filesystem::path backup = folder / "shop.bki";
};

TEST_F(Restoring, KeepsTheStoreThatWasThere) {
    int last = 0;
    const auto kept = restoreStore(backup, store, kNow, [&](int percent) {
        EXPECT_GE(percent, last);
        last = percent;
        return true;
    });
    EXPECT_EQ(receipts(store), 1);
    EXPECT_EQ(receipts(kept), 2);
    EXPECT_TRUE(app::checkStoreFile(store).empty());
    EXPECT_TRUE(app::checkStoreFile(kept).empty());
}

// What was proved to come back must come back: a row that breaks a rule was in the store, too.
TEST_F(Restoring, TakesABackupWhoseRowsBreakARule) {
    run(backup, "UPDATE [Transaction] SET TaxTotal = 1");
    EXPECT_FALSE(app::checkStoreFile(backup).empty());
    EXPECT_EQ(restored(), "");
    EXPECT_EQ(receipts(store), 1);
}

// A second machine, on which there is nothing but the backup.
TEST_F(Restoring, MakesTheStoreWhereThereIsNone) {
    std::filesystem::create_directory(folder / "second");
    const auto fresh = folder / "second" / "shop.store";
    std::filesystem::permissions(backup, std::filesystem::perms::owner_read); // as it comes from a disc
    EXPECT_EQ(restoreFrom(backup, fresh, kNow), std::filesystem::path());
    EXPECT_EQ(receipts(fresh), 1);
    EXPECT_NE(std::filesystem::status(fresh).permissions() & std::filesystem::perms::owner_write, std::filesystem::perms::none);
    EXPECT_EQ(app::lastBackupNote(fresh)->outcome, app::BackupOutcome::Restored);
}

TEST_F(Restoring, TellsWhetherTheStoreIsNewer) {
    const RestoreOutlook outlook = outlookOf(backup, store);
    EXPECT_TRUE(outlook.storeIsNewer);
    EXPECT_FALSE(outlook.upgrades);
    EXPECT_EQ(outlook.storeNewest.toIsoText(), "2026-11-21 11:00:00");
    EXPECT_EQ(outlook.backupNewest.toIsoText(), "2026-11-20 10:00:00");
    EXPECT_FALSE(outlookOf(store, backup).storeIsNewer);
    EXPECT_FALSE(outlookOf(backup, folder / "none.store").storeIsNewer);
}

TEST_F(Restoring, RefusesWhatIsNoBackupOfThisProgram) {
    std::ofstream(folder / "photo.jpg") << "no store at all";
    std::ofstream(folder / "empty.bki");
    for (const char* name : {"photo.jpg", "empty.bki"})
        EXPECT_TRUE(says(saidBy([&] { outlookOf(folder / name, store); }), "is no Merchantry store")) << name;
    EXPECT_TRUE(says(saidBy([&] { outlookOf(folder / "gone.bki", store); }), "There is no store file"));
    EXPECT_TRUE(says(saidBy([&] { outlookOf(store, store); }), "the store itself"));
    std::filesystem::create_symlink(store, folder / "link.bki");
    EXPECT_TRUE(says(saidBy([&] { outlookOf(folder / "link.bki", store); }), "the store itself"));
    db::Store::create(folder / "bare.bki");
    EXPECT_TRUE(says(saidBy([&] { outlookOf(folder / "bare.bki", store); }), "is no backup of a Merchantry store"));
    run(backup, "INSERT INTO SchemaVersion (Version) VALUES (99)");
    EXPECT_TRUE(says(saidBy([&] { outlookOf(backup, store); }), "was made by a newer version of the program"));
    EXPECT_NE(restored(), "");
    EXPECT_EQ(receipts(store), 2);
}

TEST_F(Restoring, RefusesADamagedBackup) {
    std::fstream stream(backup, std::ios::binary | std::ios::in | std::ios::out);
    stream.seekp(static_cast<std::streamoff>(std::filesystem::file_size(backup) / 2 / 4096 * 4096));
    stream << std::string(8192, '\x5a');
    stream.close();
    EXPECT_TRUE(says(restored(), "damaged")) << restored();
    EXPECT_EQ(receipts(store), 2);
    EXPECT_TRUE(app::replacedStores(store).empty());
}

TEST_F(Restoring, BringsAnEarlierStoreUpToDate) {
    run(backup, "DELETE FROM SchemaVersion INSERT INTO SchemaVersion (Version) VALUES (" + std::to_string(db::kSchemaVersion - 1) + ")");
    EXPECT_TRUE(outlookOf(backup, store).upgrades);
    EXPECT_EQ(restored(), "");
    EXPECT_EQ(app::figuresOf(store).version, db::kSchemaVersion);
    EXPECT_EQ(receipts(store), 1);
}

TEST_F(Restoring, CanBeStoppedAtAnyPoint) {
    for (const int end : {0, 40, 50, 80, 90}) {
        EXPECT_THROW(restoreStore(backup, store, kNow, [&](int percent) { return percent < end; }), db::DbError) << end;
        EXPECT_EQ(receipts(store), 2) << end;
        EXPECT_TRUE(app::replacedStores(store).empty()) << end;
    }
}

// Killed at any moment: the store is the one or the other, and what it was is never lost.
TEST_F(Restoring, LosesNothingWhenKilledHalfWay) {
    std::mt19937 random(20261121);
    const auto original = folder / "original.store";
    std::filesystem::copy_file(store, original);
    int before = 0;
    for (int i = 0; i < 15; ++i) {
        for (const auto& one : std::filesystem::directory_iterator(folder.path()))
            if (one.path().filename().string().starts_with("shop.store"))
                std::filesystem::remove(one.path());
        std::filesystem::copy_file(original, store);
        const pid_t child = fork();
        if (child == 0) {
            restoreStore(backup, store, kNow, [](int) { return true; });
            _exit(0);
        }
        usleep(static_cast<useconds_t>(random() % 120'000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const std::int64_t found = receipts(store);
        ASSERT_TRUE(found == 1 || found == 2) << found;
        ASSERT_EQ(app::checkStoreFile(store), std::vector<std::string>{});
        before += found == 2 ? 1 : 0;
        if (found == 1) {
            ASSERT_EQ(app::replacedStores(store).size(), 1U);
            ASSERT_EQ(receipts(app::replacedStores(store).front()), 2);
        }
    }
    EXPECT_GT(before, 0) << "no kill came before the end";
}

// ---- the server's side

TEST(DataServers, KnowAStoreFileAndRefuseTheSystemsOwnLoginPlainly) {
    EXPECT_TRUE(isStoreFile("/srv/shop.store"));
    EXPECT_TRUE(isStoreFile("shop.store"));
    EXPECT_FALSE(isStoreFile("SHOP\\TILL"));
    const auto remote = serverFor("SHOP");
    remote->LoginSecure = true;
    EXPECT_TRUE(says(saidBy([&] { remote->Connect("SHOP"); }), "own login is not available on this system"));
}

TEST(DataServers, AreLocalByNameAndAddress) {
    ServerLocator locator;
    EXPECT_TRUE(locator.CanTell());
    for (const std::string& name :
         {std::string("/srv/shop.store"), std::string("."), std::string("(local)"), std::string("LOCALHOST"), std::string(".\\TILL"),
          std::string("127.0.0.1"), std::string("tcp:127.0.0.1,1433"), platform::machineName(), platform::machineName() + "\\TILL"})
        EXPECT_TRUE(locator.IsLocal(name)) << name;
    for (const char* name : {"192.0.2.1", "192.0.2.1\\TILL", "tcp:192.0.2.1,1433"})
        EXPECT_FALSE(locator.IsLocal(name)) << name;
}

} // namespace
} // namespace merchantry::exchange
