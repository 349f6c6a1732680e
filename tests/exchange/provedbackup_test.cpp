// A backup counts when it came back, and what is not as it was is found.

#include "exchange/backup/provedbackup.h"

#include "app/backuplog.h"
#include "app/db/dberror.h"
#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"
#include "app/storefile.h"
#include "exchange/backup/nightly.h"
#include "tests/scratchfolder.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <fstream>

namespace merchantry::exchange {
namespace {

const Date kNow = *Date::fromParts(2026, 11, 21, 14, 2);

// Straight into the file, past every rule of the store.
void change(const std::filesystem::path& file, const std::string& sql) {
    sqlite3* db = nullptr;
    sqlite3_open(file.c_str(), &db);
    const auto compare = [](void*, int n, const void* a, int m, const void* b) {
        return std::string_view(static_cast<const char*>(a), static_cast<std::size_t>(n))
            .compare(std::string_view(static_cast<const char*>(b), static_cast<std::size_t>(m)));
    };
    sqlite3_create_collation(db, "ts", SQLITE_UTF8, nullptr, compare);
    char* error = nullptr;
    EXPECT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error), SQLITE_OK) << error;
    sqlite3_close(db);
}

class ProvedBackups : public testing::Test {
protected:
    void SetUp() override {
        app::createStoreFile(store, {}, [](int) {});
        run("INSERT INTO Item (SKU, MatrixSKU, Name) VALUES ('A', 'A', 'Apple') INSERT INTO Stock (SKU, MatrixSKU, Quantity) VALUES ('A', "
            "'A', 7) INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) VALUES ('A', 'A', 'Opening', 7, 2.6006) "
            "INSERT INTO [Transaction] (Time, SubTotal, TaxTotal, Total) VALUES ('2026-11-20 10:00', 10, 0.7, 10.7)");
    }
    void run(const std::string& batch) const {
        db::NoResult none;
        db::Store::open(store)->session()->execute(batch, none);
    }
    BackupProof proofOf(const std::filesystem::path& file) const { return proveBackup(file, figures, folder.path(), kNow, {}); }
    std::size_t files() const { return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder.path()), {})); }

    ScratchFolder folder;
    std::filesystem::path store = folder / "shop.store";
    std::filesystem::path backup = folder / "shop.bki";
    app::StoreFigures figures;
};

TEST_F(ProvedBackups, SayWhatCameBack) {
    backUp(store, backup, &figures, {});
    const std::size_t before = files();
    const BackupProof proof = proofOf(backup);
    EXPECT_EQ(proof.fault, "");
    EXPECT_EQ(proof.sentence(), "Proved 11/21/2026 14:02: " + std::to_string(proof.rows) + " rows, stock $18.20");
    EXPECT_EQ(files(), before) << "the scratch store is left";
    EXPECT_EQ(figures.newest.toIsoText(), app::markOf(store).newest.toIsoText());
}

// The moment of the copy counts, whatever is posted before the proof.
TEST_F(ProvedBackups, AreProvedAgainstTheMomentOfTheCopy) {
    backUp(store, backup, &figures, {});
    run("UPDATE Stock SET Quantity = 1 DELETE FROM [Transaction]");
    EXPECT_EQ(proofOf(backup).fault, "");
}

TEST_F(ProvedBackups, FailWhenAnythingIsOtherwise) {
    const std::string otherVersion = "The store is of version " + std::to_string(db::kSchemaVersion) + ", the copy of 1.";
    const std::pair<const char*, const char*> kFaults[] = {
        {"DELETE FROM \"Transaction\"", "Transaction: the store had 1 rows, the copy has 0 rows."},
        {"UPDATE \"Transaction\" SET Total = Total + 1", "Sales: the store had 107,000, the copy has 107,001."},
        {"UPDATE Stock SET Quantity = 8", "Stock: the store had 7, the copy has 8."},
        {"UPDATE InventoryLedger SET Cost_wt = Cost_wt + 1", "Value of the stock: the store had 182,042, the copy has 182,049."},
        {"INSERT INTO ts_order SELECT * FROM ts_order", "ts_order: the store had 1 rows, the copy has 2 rows."},
        {"UPDATE SchemaVersion SET Version = 1", otherVersion.c_str()},
        {"DROP TABLE PurchaseOrderCancel", "PurchaseOrderCancel is missing in the copy."},
        {"CREATE TABLE More (a)", "More is in the copy, but was not in the store."},
    };
    backUp(store, backup, &figures, {});
    for (const auto& [sql, fault] : kFaults) {
        const auto changed = folder / "changed.bki";
        std::filesystem::copy_file(backup, changed, std::filesystem::copy_options::overwrite_existing);
        change(changed, sql);
        const BackupProof proof = proofOf(changed);
        EXPECT_FALSE(proof.proved) << sql;
        EXPECT_EQ(proof.fault, std::string(fault)) << sql;
    }
}

TEST_F(ProvedBackups, FailWhenTheFileIsDamaged) {
    backUp(store, backup, &figures, {});
    const auto size = std::filesystem::file_size(backup);
    for (const std::uintmax_t at : {std::uintmax_t{0}, size / 3 / 4096 * 4096, size / 2 / 4096 * 4096, size - 4096, size - 8 * 4096}) {
        const auto changed = folder / "changed.bki";
        std::filesystem::copy_file(backup, changed, std::filesystem::copy_options::overwrite_existing);
        std::fstream stream(changed, std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(static_cast<std::streamoff>(at));
        stream << std::string(4096, '\x5a');
        stream.close();
        EXPECT_FALSE(proofOf(changed).proved) << at;
    }
    std::filesystem::resize_file(backup, size / 2);
    EXPECT_FALSE(proofOf(backup).proved);
    std::filesystem::remove(backup);
    EXPECT_FALSE(proofOf(backup).proved);
}

// Every sum there is, of a store of this version: a column that is renamed must not take its sum with it.
TEST_F(ProvedBackups, LeaveNoSumOut) {
    EXPECT_EQ(app::figuresOf(store).sums.size(), 15U);
    EXPECT_EQ(app::figuresOf(store).version, db::kSchemaVersion);
}

TEST_F(ProvedBackups, CanBeStopped) {
    EXPECT_THROW(backUp(store, backup, &figures, [](int) { return false; }), db::DbError);
    EXPECT_FALSE(std::filesystem::exists(backup));
    backUp(store, backup, &figures, [](int) { return true; });
    const std::size_t before = files();
    EXPECT_THROW(proveBackup(backup, figures, folder.path(), kNow, [](int) { return false; }), db::DbError);
    EXPECT_EQ(files(), before);
}

// ---- the log and what follows from it

TEST_F(ProvedBackups, AreRememberedBesideTheStore) {
    const Date made = kNow.plusDays(-3);
    EXPECT_EQ(app::backupReminder(store, kNow, kNow), "");
    EXPECT_EQ(app::backupReminder(store, made, kNow), "This store has no proved backup yet.");
    BackupProof proof{.proved = true, .at = made, .rows = 12, .stock = Currency::fromInteger(1), .fault = ""};
    noteProof(store, backup, proof);
    EXPECT_EQ(app::backupReminder(store, made, kNow), "The last proved backup is 3 days old.");
    EXPECT_EQ(app::backupReminder(store, made, made.plusDays(1)), "The last proved backup is 1 day old.");
    EXPECT_EQ(app::backupReminder(store, made, Date::fromMs(made.plusDays(1).ms() - 1)), "");
    proof = {.proved = false, .at = kNow, .rows = 0, .stock = {}, .fault = "Stock\tis\nwrong."};
    noteProof(store, folder / "later.bki", proof);
    std::ofstream(app::backupLogOf(store), std::ios::app) << "no line of ours\n\n2026-13-99\tproved\tx\ty\n2026-11-21\tprov";
    EXPECT_EQ(app::backupReminder(store, made, kNow), "The last proved backup is 3 days old.");
    EXPECT_EQ(app::lastProvedBackup(store)->file, backup);
    EXPECT_EQ(app::lastBackupNote(store)->sentence, "Not proved 11/21/2026 14:02: Stock is wrong.");
}

TEST_F(ProvedBackups, LetTheReplacedStoreGoWhenProved) {
    const auto replaced = app::replacedName(store, kNow);
    EXPECT_EQ(replaced.filename(), "shop.store.replaced-20261121-140200");
    std::ofstream(replaced) << "the one before";
    EXPECT_EQ(app::replacedName(store, kNow).filename(), "shop.store.replaced-20261121-140200.2");
    noteProof(store, backup, {.proved = false, .at = kNow, .rows = 0, .stock = {}, .fault = "x"});
    EXPECT_TRUE(std::filesystem::exists(replaced));
    noteProof(store, backup, {.proved = true, .at = kNow, .rows = 0, .stock = {}, .fault = ""});
    EXPECT_FALSE(std::filesystem::exists(replaced));
    EXPECT_TRUE(std::filesystem::exists(store));
}

TEST_F(ProvedBackups, UnderAFreeNameWhenTheyFailed) {
    EXPECT_EQ(unprovedName(backup).filename(), "shop.unproved.bki");
    std::ofstream(folder / "shop.unproved.bki") << "earlier";
    EXPECT_EQ(unprovedName(backup).filename(), "shop.unproved.2.bki");
}

// ---- at night

class NightlyBackups : public ProvedBackups {
protected:
    NightlyOutcome night(int day, int keep, bool prove = true) const {
        return backUpNightly({.store = store, .folder = nights, .keep = keep, .prove = prove, .now = kNow.plusDays(day)});
    }
    std::vector<std::string> kept() const {
        std::vector<std::string> names;
        for (const auto& one : std::filesystem::directory_iterator(nights))
            names.push_back(one.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    void SetUp() override {
        ProvedBackups::SetUp();
        std::filesystem::create_directory(nights);
    }

    std::filesystem::path nights = folder / "nights";
};

TEST_F(NightlyBackups, KeepTheNewestAndTouchNothingElse) {
    const std::vector<std::string> others{"shop-20261121-140200.bki.txt", "shop-2026112-140200.bki", "shop.bki",
                                          "shop2-20200101-000000.bki", "shop-20200101-000000.bki"}; // the last is another shop's
    for (const std::string& name : others)
        std::ofstream(nights / name) << "not ours";
    for (int day = 0; day < 4; ++day)
        EXPECT_TRUE(night(day, 2).good);
    std::vector<std::string> expected = others;
    expected.insert(expected.end(), {"shop-20261123-140200.bki", "shop-20261124-140200.bki"});
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(kept(), expected);
    EXPECT_EQ(app::lastProvedBackup(store)->file, nights / "shop-20261124-140200.bki");
    EXPECT_THROW(night(3, 2), db::DbError) << "one of that name is there";
}

// Ended during the proof: what it left has no good name, is told in the log, and goes with the next good one.
TEST_F(NightlyBackups, ThatWereEndedInTheMiddleDoNotLookGood) {
    const auto left = nights / "shop-20261120-140200.unproved.bki";
    std::ofstream(left) << "half";
    app::noteBackup(store, {kNow, app::BackupOutcome::Unproved, left, "Backed up, not proved"});
    EXPECT_TRUE(night(0, 2).good);
    EXPECT_EQ(kept(), std::vector<std::string>{"shop-20261121-140200.bki"});
    std::filesystem::rename(store, folder / "gone.store");
    EXPECT_THROW(night(1, 2), db::DbError);
    EXPECT_EQ(app::lastBackupNote(store)->outcome, app::BackupOutcome::Failed) << "a night without a backup is told";
    std::filesystem::rename(folder / "gone.store", store);
}

TEST_F(NightlyBackups, NeverLetTheLastProvedOneGo) {
    EXPECT_TRUE(night(0, 1).good);
    for (int day = 1; day < 4; ++day)
        EXPECT_EQ(night(day, 1, false).sentence().find("Backed up, not proved: "), 0U);
    EXPECT_EQ(kept(), (std::vector<std::string>{"shop-20261121-140200.bki", "shop-20261124-140200.bki"}));
}

} // namespace
} // namespace merchantry::exchange
