// Backups beside registers at work, restores that others stand in the way of, and a disk that fails at every point of a backup in turn.

#include "tests/reliability/shopregisters.h"

#include "app/backuplog.h"
#include "app/db/embedded/filecopy.h"
#include "app/db/embedded/filestage.h"
#include "app/stockproof.h"
#include "base/platform/files.h"
#include "exchange/backup/provedbackup.h"
#include "exchange/backup/restoring.h"
#include "programs/storehost.h"
#include "tests/reliability/failingdisk.h"
#include "ui/play/player.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <csignal>
#include <sstream>

using namespace merchantry;
using testing::HasSubstr;

namespace {

constexpr int kRegisters = 8;
const Date kNow = *Date::fromParts(2026, 11, 21, 14, 2);

// Another program of the suite at work; ended with the object.
class Program {
public:
    // Its standard input stays open as long as the object stands.
    explicit Program(std::vector<std::string> words) {
        if (pipe(input_) != 0)
            throw std::runtime_error("no pipe");
        child_ = fork();
        if (child_ == 0) {
            dup2(input_[0], STDIN_FILENO);
            close(input_[1]);
            std::vector<char*> arguments;
            for (std::string& word : words)
                arguments.push_back(word.data());
            arguments.push_back(nullptr);
            execv(arguments.front(), arguments.data());
            _exit(127);
        }
        close(input_[0]);
    }
    ~Program() {
        close(input_[1]);
        if (child_ > 0) {
            kill(child_, SIGKILL);
            waitpid(child_, nullptr, 0);
        }
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    std::string name(const std::string& program) const { return program + " (process " + std::to_string(child_) + ")"; }
    void untilItHolds(const std::filesystem::path& file) const {
        while (platform::holdersOf(file).empty())
            usleep(10'000);
        usleep(200'000);
    }
    int exitCode() {
        int status = 0;
        waitpid(child_, &status, 0);
        child_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    int input_[2]{};
    pid_t child_ = 0;
};

std::vector<std::string> registersim(const std::filesystem::path& store) {
    return {REGISTERSIM, "--store", store.string(), "--registers", "4", "--rate", "5", "--seconds", "600"};
}

// Plays a script on the very store; what went wrong, empty for nothing.
std::string played(const ShopFolder& folder, const std::filesystem::path& store, const std::string& script) {
    writeBytes(folder / "script.play", script);
    ui::play::PlayOptions options;
    options.scripts = {folder / "script.play"};
    std::ostringstream said;
    const int code = ui::play::runPlays(
        options, [&](const std::filesystem::path&) { return std::make_unique<programs::StoreHost>(store, false); }, said);
    return code == 0 ? "" : said.str();
}

std::string chosen(const char* what, const std::filesystem::path& file) {
    return std::string("login \"manager\" \"manager\"\ncommand mnuFileDButil\nclick ") + what + "\nfile \"" + file.string() +
           "\"\nclick cmdFile\nanswer OK\nanswer Yes\nanswer Yes\nclick cmdGo\nexpect message like \"Please make sure%\"\n";
}

const char* const kTwice = "expect message like \"The store is newer%\"\nexpect message like \"Whatever was posted%\"\n";

TEST(OnlineBackups, BesideEightRegistersComeBackAsStoresThatProve) {
    const ShopFolder folder;
    const auto store = folder.shop("busy.store");
    std::vector<pid_t> registers;
    for (int i = 1; i <= kRegisters; ++i)
        registers.push_back(startRegister(store, i, receiptsWanted()));
    int made = 0;
    int busy = 0;
    for (const pid_t one : registers) {
        int status = 0;
        while (waitpid(one, &status, WNOHANG) == 0) {
            const auto backup = folder / ("backup" + std::to_string(++made) + ".bki");
            const std::string before = cell(store, "SELECT COUNT(*) FROM [Transaction]");
            app::StoreFigures figures;
            exchange::backUp(store, backup, &figures, [](int) {
                usleep(500); // slow enough for receipts in between
                return true;
            });
            busy += cell(store, "SELECT COUNT(*) FROM [Transaction]") != before ? 1 : 0;
            const auto proof = exchange::proveBackup(backup, figures, folder / "", kNow, {});
            ASSERT_EQ(proof.fault, "") << made;
        }
        EXPECT_EQ(status, 0) << "a register heard of the backup";
    }
    ASSERT_GT(made, 0);
    EXPECT_GT(busy, 0) << "no register posted during a backup";
    for (int i = 1; i <= made; ++i) {
        const auto restored = folder / ("restored" + std::to_string(i) + ".store");
        exchange::restoreFrom(folder / ("backup" + std::to_string(i) + ".bki"), restored, kNow);
        EXPECT_EQ(app::checkStoreFile(restored), std::vector<std::string>{}) << i;
        const app::Proof proof = app::proveStockFile(restored, [](int) { return true; });
        EXPECT_TRUE(proof.ledger.empty() && proof.stock.empty()) << i;
    }
}

TEST(Restores, DoNotBeginWhileAnotherProgramHoldsTheStore) {
    const ShopFolder folder;
    const auto store = folder.shop("held.store");
    app::backupStoreFile(store, folder / "b.bki");
    registersim::query(*db::Store::open(store)->session(), "UPDATE Departments SET Department = 'Changed' WHERE DepartmentID = 1");
    {
        const Program prompt({MERCHANTRYCTL, "sql", store.string()});
        prompt.untilItHolds(store);
        const std::string said = saidBy([&] { exchange::restoreFrom(folder / "b.bki", store, kNow); });
        EXPECT_EQ(said, "The store is open in " + prompt.name("merchantryctl") + ". Nothing was restored. Close it and try again.");
        EXPECT_EQ(cell(store, "SELECT Department FROM Departments WHERE DepartmentID = 1"), "Changed");
    }
    EXPECT_EQ(saidBy([&] { exchange::restoreFrom(folder / "b.bki", store, kNow); }), "");
    EXPECT_NE(cell(store, "SELECT Department FROM Departments WHERE DepartmentID = 1"), "Changed");
}

// The registers hear that they are to close, finish their receipts and go; then the store is restored.
TEST(Restores, HaveTheRegistersCloseTheStore) {
    const ShopFolder folder;
    const auto store = folder.shop("shop.store");
    app::backupStoreFile(store, folder / "b.bki");
    const std::string before = cell(store, "SELECT COUNT(*) FROM [Transaction]");
    Program registers(registersim(store));
    while (cell(store, "SELECT COUNT(*) FROM [Transaction]") == before)
        usleep(10'000);
    EXPECT_EQ(played(folder, store, chosen("optRest", folder / "b.bki") + kTwice + "expect message \"Database restore is completed.\"\n"),
              "");
    EXPECT_EQ(registers.exitCode(), 0);
    EXPECT_EQ(cell(store, "SELECT COUNT(*) FROM [Transaction]"), before);
    EXPECT_FALSE(std::filesystem::exists(store.string() + ".closing"));
    ASSERT_EQ(app::replacedStores(store).size(), 1U);
    EXPECT_EQ(app::checkStoreFile(app::replacedStores(store).front()), std::vector<std::string>{});
}

// A backup closes nobody: its third component has nothing to do.
TEST(Backups, LeaveTheRegistersAtWork) {
    const ShopFolder folder;
    const auto store = folder.shop("shop.store");
    const Program registers(registersim(store));
    registers.untilItHolds(store);
    EXPECT_EQ(played(folder, store,
                     chosen("optBak", folder / "b.bki") + "expect message like \"Backup file % has been created on %\"\n"
                                                          "expect lblProved like \"Proved %\"\n"),
              "");
    EXPECT_FALSE(platform::holdersOf(store).empty()) << "the registers are gone";
}

// After that no command has a connection: each says so, none takes the program with it, and Go finds the way back.
TEST(Restores, ThatFailLeaveNoConnectionAndSayWhatToDo) {
    const ShopFolder folder;
    const auto store = folder.shop("shop.store");
    app::backupStoreFile(store, folder / "bad.bki");
    app::backupStoreFile(store, folder / "good.bki");
    std::string bytes = bytesOf(folder / "bad.bki");
    bytes.replace(bytes.size() / 2 / 4096 * 4096, 8192, 8192, '\x5a');
    writeBytes(folder / "damaged.bki", bytes);
    { // sound, and yet it cannot be brought up to date
        db::NoResult none;
        db::Store::open(folder / "bad.bki")
            ->session()
            ->execute(
                "DROP TABLE Statement DROP TABLE StatementRun DELETE FROM SchemaVersion INSERT INTO SchemaVersion (Version) VALUES (11)",
                none);
    }
    const std::string before = cell(store, "SELECT COUNT(*) FROM [Transaction]");
    // What each says, and how it is left.
    const std::string commands =
        "command mnuTenders\nexpect message like \"%Operation is not allowed when the object is closed.%\"\nclose\n"
        "command mnuStoreSetupRegisters\nexpect message like \"%There is no connection to the store.%\"\nclose\n"
        "command mnuAbout\nexpect message like \"%is closed.%\"\nclose\n"
        "command mnuStockProof\nclick cmdProve\nexpect message like \"%There is no connection to the store.%\"\nclose\n"
        "command mnuFileQuickbooksexport\nexpect message like \"%is closed.%\"\n"
        "command mnuItemsInventoryquantities\nexpect message like \"%is closed.%\"\nclose\n";
    const std::string script = "login \"manager\" \"manager\"\ncommand mnuFileDButil\nclick optRest\nfile \"" +
                               (folder / "damaged.bki").string() +
                               "\"\nclick cmdFile\nanswer OK\nclick cmdGo\nexpect message like \"Please make sure%\"\n"
                               "expect message like \"%The backup is damaged and was not used: %MR_frmDatabaseBak, Dbase_Error\" caption "
                               "\"Critical Error\" icon stop\nexpect lblState \"Nothing was restored.\"\nfile \"" +
                               (folder / "bad.bki").string() +
                               "\"\nclick cmdFile\nanswer OK\nanswer Yes\nclick cmdGo\nexpect message like \"Please make sure%\"\n"
                               "expect message like \"The backup was made by an earlier version%\"\n"
                               "expect message like \"%version 12: %MR_frmDatabaseBak, Dbase_Error\" caption \"Critical Error\" icon stop\n"
                               "expect lblState like \"The application has no connection to the store now. Press Go to try again%\"\n"
                               "expect color lblState red\nexpect hidden dbBar\nexpect enabled CmdExit\nclick CmdExit\n"
                               "expect hint like \"There is no connection to the store: %\"\n" +
                               commands + "command mnuFileDButil\nclick optRest\nfile \"" + (folder / "good.bki").string() +
                               "\"\nclick cmdFile\nanswer OK\nclick cmdGo\nexpect message like \"Please make sure%\"\n"
                               "expect message \"Database restore is completed.\"\nclick CmdExit\n"
                               "expect hint like \"The manager's password%\"\n";
    EXPECT_EQ(played(folder, store, script), "");
    EXPECT_EQ(cell(store, "SELECT COUNT(*) FROM [Transaction]"), before);
}

// The proof finds what the copy took over: the backup is kept aside, and the good one of its name is not replaced.
TEST(Backups, ThatFailTheirProofAreKeptAndMarked) {
    const ShopFolder folder;
    const auto store = folder.shop("shop.store");
    writeBytes(folder / "b.bki", "the one before");
    sqlite3* db = nullptr;
    sqlite3_open(store.c_str(), &db);
    EXPECT_EQ(
        sqlite3_exec(db,
                     "PRAGMA writable_schema=ON; UPDATE sqlite_master SET rootpage = (SELECT rootpage FROM sqlite_master WHERE type = "
                     "'index' AND name LIKE '%PK_Departments') WHERE type = 'index' AND name LIKE '%IX_Transaction_Time'",
                     nullptr, nullptr, nullptr),
        SQLITE_OK);
    sqlite3_close(db);
    const auto kept = folder / "b.unproved.bki";
    EXPECT_EQ(played(folder, store,
                     chosen("optBak", folder / "b.bki") +
                         "expect message like \"The backup failed its proof: The index % is damaged: it has %It is kept as " +
                         kept.string() +
                         ", and what was there before was not replaced.\" icon exclamation\nexpect lblState \"The backup failed its proof "
                         "and is kept as " +
                         kept.string() +
                         ". Make another one, on another disk.\"\nexpect color lblState red\nexpect lblProved like \"Not proved %\"\n"
                         "expect color lblProved red\nexpect no statement like \"%move%\"\n"),
              "");
    EXPECT_TRUE(bytesOf(folder / "b.bki") == "the one before");
    EXPECT_EQ(app::figuresOf(kept).version, app::figuresOf(store).version);
    EXPECT_FALSE(app::lastProvedBackup(store).has_value());
}

// The store must not be the target of its own backup.
TEST(Backups, NeverTakeTheStoresPlace) {
    const ShopFolder folder;
    const auto store = folder.shop("shop.store");
    std::filesystem::create_symlink(store, folder / "link.bki");
    for (const auto& target : {store, folder / "link.bki", std::filesystem::path(store.string() + "-wal")})
        EXPECT_EQ(played(folder, store,
                         chosen("optBak", target) +
                             "expect message like \"%That file is the store itself, or belongs to it. Choose another one.%\"\n"
                             "expect log \"MR_frmDatabaseBak\" \"Dbase_Error\"\nexpect lblState \"No backup was made.\"\n"),
                  "")
            << target;
    EXPECT_EQ(app::checkStoreFile(store), std::vector<std::string>{});
}

// ---- a disk that fails

// What the screen does, with every call of the system that it leads to failing in its turn.
std::string backedUp(const std::filesystem::path& store, const std::filesystem::path& target) {
    return saidBy([&] {
        db::FileStage stage(target, target.parent_path());
        app::StoreFigures figures;
        const auto staged = stage.fileOf("C:\\" + target.filename().string());
        exchange::backUp(store, staged, &figures, {});
        const auto proof = exchange::proveBackup(staged, figures, store.parent_path(), kNow, {});
        if (!proof.proved)
            throw std::runtime_error(proof.sentence());
        stage.run("move C:\\" + target.filename().string() + " \"" + target.parent_path().string() + "/\"");
        exchange::noteProof(store, target, proof);
    });
}

TEST(FailingDisk, AtEveryPointOfABackupHarmsNeitherTheStoreNorTheBackupBefore) {
    const ShopFolder folder;
    const auto store = folder / "shop.store"; // a small one: there are some calls for each of its pages
    registersim::query(*db::Store::create(store)->session(), "CREATE TABLE Shelf (Id int PRIMARY KEY, Goods varchar(4000))\n"
                                                             "DECLARE @i int SET @i = 0 WHILE @i < 20 BEGIN SET @i = @i + 1 "
                                                             "INSERT INTO Shelf VALUES (@i, REPLICATE('x', 3000)) END");
    std::filesystem::create_directory(folder / "out");
    const auto target = folder / "out" / "b.bki";
    const app::StoreFigures figures = app::figuresOf(store);
    const std::string before = "the backup before";
    int failed = 0;
    bool through = false;
    for (int call = 1; !through; ++call) {
        writeBytes(target, before);
        std::string said;
        {
            const FailingDisk disk(call);
            said = backedUp(store, target);
            through = !disk.failed();
        }
        failed += said.empty() ? 0 : 1;
        const std::string now = bytesOf(target);
        if (now == before)
            ASSERT_NE(said, "") << "call " << call << " failed without a word";
        else
            ASSERT_EQ(app::differenceOf(figures, app::figuresOf(target)), "") << "call " << call;
        ASSERT_EQ(app::differenceOf(figures, app::figuresOf(store)), "") << "call " << call;
        for (const auto& one : std::filesystem::directory_iterator(folder / "out"))
            ASSERT_EQ(one.path(), target) << "call " << call << " left it: " << said;
    }
    EXPECT_GT(failed, 50) << "hardly a call was made to fail";
    EXPECT_EQ(db::damageOf(store), std::vector<std::string>{});
}

} // namespace
