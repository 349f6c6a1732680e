// Two programs on one store: whatever the one does beside its work, the other loses nothing, and each sees what the other committed.

#include "tests/reliability/shopfolder.h"

#include "app/db/embedded/filecopy.h"
#include "app/db/embedded/filehead.h"
#include "app/stockproof.h"
#include "tools/registersim/query.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

using namespace merchantry;

namespace {

int killsWanted() {
    const char* text = std::getenv("MERCHANTRY_KILLS");
    return text != nullptr ? std::atoi(text) : 200;
}

std::string count(const std::filesystem::path& file) {
    return registersim::query(*db::Store::open(file)->session(), "SELECT COUNT(*) FROM Departments").at(0).at(0).toText();
}

// Runs merchantryctl with the text on its standard input and gives what it wrote.
std::string otherProgram(const std::filesystem::path& store, const std::string& batch) {
    const std::string command = "echo \"" + batch + "\" | " MERCHANTRYCTL " sql --csv '" + store.string() + "' 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    std::string said;
    std::array<char, 256> part{};
    while (fgets(part.data(), part.size(), pipe) != nullptr)
        said += part.data();
    pclose(pipe);
    return said;
}

// Everything in the program that looks at a store file a second time while it is at work on it.
struct SecondLook {
    const char* name;
    std::function<void(const std::filesystem::path& store, const ShopFolder& folder)> look;
};

const SecondLook kSecondLooks[] = {
    {"first look", [](const auto& store, const auto&) { db::embedded::requireStoreFile(store); }},
    {"second session", [](const auto& store, const auto&) { count(store); }},
    {"damage", [](const auto& store, const auto&) { EXPECT_TRUE(db::damageOf(store).empty()); }},
    {"check", [](const auto& store, const auto&) { EXPECT_TRUE(app::checkStoreFile(store).empty()); }},
    {"stock proof", [](const auto& store, const auto&) { app::proveStockFile(store, [](int) { return true; }); }},
    {"older store?", [](const auto& store, const auto&) { EXPECT_FALSE(app::isOlderStore(store)); }},
    {"upgrade", [](const auto& store, const auto&) { EXPECT_TRUE(app::upgradeStoreFile(store).empty()); }},
    {"backup", [](const auto& store, const auto& folder) { app::backupStoreFile(store, folder / "copy.store"); }},
    {"restore elsewhere", [](const auto&, const auto& folder) { app::restoreStoreFile(folder / "copy.store", folder / "third.store"); }},
    {"create over it", [](const auto& store, const auto&) { EXPECT_NE(saidBy([&] { app::createStoreFile(store, {}, {}); }), ""); }},
    {"size", [](const auto& store, const auto&) { EXPECT_GT(std::filesystem::file_size(store), 0U); }},
};

TEST(TwoPrograms, ASecondLookAtTheStoreKeepsItsLocks) {
    const ShopFolder folder;
    const auto file = folder.emptyStore("shared.store");
    const auto session = db::Store::open(file)->session();
    int departments = 1;
    for (const SecondLook& one : kSecondLooks) {
        SCOPED_TRACE(one.name);
        registersim::query(*session, "INSERT INTO Departments (Department) VALUES ('ours " + std::to_string(departments++) + "')");
        one.look(file, folder);
        otherProgram(file, "INSERT INTO Departments (Department) VALUES ('theirs " + std::to_string(departments++) + "')");
        EXPECT_TRUE(std::filesystem::exists(file.string() + "-wal")) << "the other program took the log away";
        EXPECT_EQ(registersim::query(*session, "SELECT COUNT(*) FROM Departments").at(0).at(0).toText(), std::to_string(departments));
        EXPECT_EQ(otherProgram(file, "SELECT COUNT(*) AS n FROM Departments"), "n\n" + std::to_string(departments) + "\n");
    }
}

// Adds departments for ever and tells each; now and then it looks at the store in another way.
[[noreturn]] void writeForEver(const std::filesystem::path& file, const std::string& who, int pipe) {
    try {
        const auto session = db::Store::open(file)->session();
        for (int done = 1;; ++done) {
            registersim::query(*session, "INSERT INTO Departments (Department) VALUES ('" + who + std::to_string(done) + "')");
            if (write(pipe, &done, sizeof done) != sizeof done)
                break;
            if (done % 3 == 0)
                count(file);
        }
    } catch (...) {
        _exit(3);
    }
    _exit(0);
}

class Writer {
public:
    Writer(const std::filesystem::path& file, std::string who) : who_(std::move(who)) {
        if (pipe(ends_.data()) != 0)
            throw std::runtime_error("no pipe");
        child_ = fork();
        if (child_ == 0) {
            close(ends_[0]);
            writeForEver(file, who_, ends_[1]);
        }
        close(ends_[1]);
    }
    ~Writer() { close(ends_[0]); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    // Kills it and gives the names of what it told of.
    std::vector<std::string> killed() {
        kill(child_, SIGKILL);
        int status = 0;
        waitpid(child_, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << who_ << " ended by itself";
        std::vector<std::string> told;
        for (int done = 0; read(ends_[0], &done, sizeof done) == sizeof done;)
            told.push_back(who_ + std::to_string(done));
        return told;
    }

private:
    std::string who_;
    std::array<int, 2> ends_{};
    pid_t child_ = 0;
};

TEST(TwoPrograms, KillsOfEitherLoseNothingThatWasCommitted) {
    const ShopFolder folder;
    const auto file = folder.emptyStore("shared.store");
    std::mt19937 random(20261122);
    std::size_t told = 1; // the base department
    for (int kill = 0; kill < killsWanted(); kill += 2) {
        const std::string number = std::to_string(kill) + " ";
        Writer first(file, "a" + number);
        Writer second(file, "b" + number);
        usleep(static_cast<useconds_t>(3000 + random() % 15000));
        Writer& early = random() % 2 == 0 ? first : second;
        told += early.killed().size();
        usleep(static_cast<useconds_t>(random() % 10000));
        told += (&early == &first ? second : first).killed().size();
        const auto found = static_cast<std::size_t>(std::stoul(count(file)));
        ASSERT_GE(found, told) << "after " << kill << " kills";
        ASSERT_LE(found, told + 2) << "a row that nobody wrote";
        told = found;
    }
    EXPECT_TRUE(app::checkStoreFile(file).empty());
}

// A killed program leaves its log; then its store is replaced by hand.
TEST(TwoPrograms, ABackupPutBackBesideAnOldLogIsNotPlayedInto) {
    const ShopFolder folder;
    const auto file = folder.emptyStore("shop.store");
    app::backupStoreFile(file, folder / "backup.store");
    Writer writer(file, "lost ");
    while (!std::filesystem::exists(file.string() + "-wal") || std::filesystem::file_size(file.string() + "-wal") == 0)
        usleep(1000);
    usleep(20000);
    writer.killed();
    EXPECT_TRUE(app::checkStoreFile(folder / "backup.store").empty());
    std::filesystem::copy_file(folder / "backup.store", file, std::filesystem::copy_options::overwrite_existing);
    db::takeStoreNotice();
    {
        const auto store = db::Store::open(file);
        EXPECT_EQ(db::takeStoreNotice(), "Beside the store " + file.string() +
                                             " lay the log of the store that was there before. It was not used and is kept as " +
                                             file.string() + "-wal.aside.");
        EXPECT_EQ(db::takeStoreNotice(), "");
        EXPECT_EQ(registersim::query(*store->session(), "SELECT COUNT(*) FROM Departments").at(0).at(0).toText(), "1");
    }
    EXPECT_TRUE(app::checkStoreFile(file).empty());
    EXPECT_GT(std::filesystem::file_size(file.string() + "-wal.aside"), 0U);
}

// The log that a kill leaves beside its own store is the store's newest part.
TEST(TwoPrograms, AStoresOwnLogIsNeverPutAside) {
    const ShopFolder folder;
    const auto file = folder.emptyStore("shop.store");
    Writer writer(file, "kept ");
    usleep(60000);
    const auto told = writer.killed();
    const auto store = db::Store::open(file);
    EXPECT_EQ(db::takeStoreNotice(), "");
    EXPECT_GE(std::stoul(count(file)), told.size() + 1);
}

} // namespace
