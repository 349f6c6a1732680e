#include "tests/db/embedded/rows.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <random>

namespace merchantry::db {
namespace {

int killsWanted() {
    const char* text = std::getenv("MERCHANTRY_KILLS");
    return text ? std::atoi(text) : 15;
}

// Moves money between accounts for ever, each move with its row in the ledger and a trigger's row beside it; tells each commit.
[[noreturn]] void writeForEver(const std::filesystem::path& file, int pipe) {
    try {
        const auto session = Store::open(file)->session();
        NoResult none;
        for (int done = 1;; ++done) {
            session->execute(
                "BEGIN TRAN\nUPDATE account SET amount = amount - 1.25 WHERE id = 1\nINSERT INTO ledger (amount) VALUES (1.25)\n"
                "UPDATE account SET amount = amount + 1.25 WHERE id = 2\nCOMMIT",
                none);
            if (write(pipe, &done, sizeof done) != sizeof done)
                break;
        }
    } catch (...) {
        _exit(3);
    }
    _exit(0);
}

// Starts a writer, lets it live for a while, kills it, and gives the number of commits that it told of.
int killedAfter(const std::filesystem::path& file, int microseconds) {
    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        writeForEver(file, ends[1]);
    }
    close(ends[1]);
    usleep(static_cast<useconds_t>(microseconds));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "the writer ended by itself";
    int told = 0;
    for (int done = 0; read(ends[0], &done, sizeof done) == sizeof done;)
        told = done;
    close(ends[0]);
    return told;
}

TEST(Kill, losesNothingCommittedAndLeavesNothingHalfDone) {
    const TemporaryFile file;
    {
        const auto session = Store::create(file.path())->session();
        runScript(*session, "CREATE TABLE account (id INT PRIMARY KEY, amount MONEY NOT NULL)\nCREATE TABLE ledger (id INT IDENTITY "
                            "PRIMARY KEY, amount MONEY)\n"
                            "CREATE TABLE shadow (id INT PRIMARY KEY)\nINSERT INTO account VALUES (1, 1000000), (2, 0)\nGO\n"
                            "CREATE TRIGGER shadows ON ledger AFTER INSERT AS INSERT INTO shadow SELECT id FROM inserted");
    }
    std::mt19937 random(20040301);
    int committed = 0;
    for (int i = 0; i < killsWanted(); ++i) {
        committed += killedAfter(file.path(), 2000 + static_cast<int>(random() % 40000));
        const auto session = Store::open(file.path())->session();
        EXPECT_EQ(rowsOf(*session, "SELECT SUM(amount) FROM account"), "1000000\n");
        const std::string rows = rowsOf(*session, "SELECT COUNT(*) FROM ledger");
        const int found = std::atoi(rows.c_str());
        EXPECT_GE(found, committed);
        EXPECT_EQ(rowsOf(*session, "SELECT COUNT(*) FROM shadow s JOIN ledger l ON l.id = s.id"), rows);
        EXPECT_EQ(
            rowsOf(*session,
                   "SELECT CASE WHEN amount = (SELECT SUM(amount) FROM ledger) OR amount = 0 THEN 1 ELSE 0 END FROM account WHERE id = 2"),
            "1\n");
        committed = found; // a commit that was done and not yet told counts from now on
    }
}

} // namespace
} // namespace merchantry::db
