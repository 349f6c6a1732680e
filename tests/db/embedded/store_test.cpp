#include "app/db/embedded/connection.h"
#include "app/db/embedded/filecopy.h"
#include "app/db/embedded/text_order.h"
#include "tests/db/embedded/rows.h"

#include "base/platform/clock.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>

namespace merchantry::db {
namespace {

TEST(Store, keepsWhatItWasGivenInItsFile) {
    const TemporaryFile file;
    {
        const auto session = Store::create(file.path())->session();
        runScript(*session, "CREATE TABLE t (id INT IDENTITY, m MONEY, d DATETIME, q DECIMAL(25,5), b VARBINARY(10))\nGO\nCREATE PROCEDURE "
                            "p AS SELECT id, m, d, q, b FROM t\n"
                            "GO\nINSERT INTO t VALUES (1.2345, '20040301 10:00:00.003', 12345678901234567890.5, 0x0AFF)");
    }
    const auto session = Store::open(file.path())->session();
    EXPECT_EQ(rowsOf(*session, "p"), "1|1.2345|2004-03-01 10:00:00|12345678901234567890.50000|0x0AFF\n");
}

// A file whose indexes are in the order of the first stores: read in that order it is sound, read in another it would miss rows.
TEST(Store, readsTheFirstOrderOfTextsAndReindexesIt) {
    const TemporaryFile file;
    const auto store = Store::create(file.path());
    const char* const kByCode = "SELECT name FROM t ORDER BY name";
    runScript(*store->session(),
              "CREATE TABLE t (name NVARCHAR(20) PRIMARY KEY, code NVARCHAR(20) NULL UNIQUE)\n"
              "INSERT t SELECT N'\u00C4pfel', 'a1' UNION SELECT 'Apfel', 'a_' UNION SELECT 'Zwirn', NULL UNION SELECT '1', 'ab'");
    {
        embedded::Connection raw(file.path(), true);
        embedded::registerCollations(raw.handle(), embedded::TextOrder::ByCode);
        raw.run("REINDEX ts; DROP TABLE ts_order; PRAGMA user_version=99");
    }
    EXPECT_EQ(damageOf(file.path()), std::vector<std::string>());
    const auto waiting = store->session();
    const auto session = store->session();
    EXPECT_EQ(rowsOf(*waiting, kByCode), "1\nApfel\nZwirn\n\u00C4pfel\n");
    rowsOf(*session, "INSERT t VALUES (N'\u00D6l', '_a')");
    EXPECT_EQ(damageOf(file.path()), std::vector<std::string>());
    session->begin();
    rowsOf(*session, "EXEC sp_reindextexts");
    EXPECT_EQ(rowsOf(*session, kByCode), "1\nApfel\n\u00C4pfel\n\u00D6l\nZwirn\n");
    session->rollback();
    EXPECT_EQ(rowsOf(*session, kByCode), "1\nApfel\nZwirn\n\u00C4pfel\n\u00D6l\n");
    rowsOf(*session, "EXEC sp_reindextexts");
    for (Session* one : {waiting.get(), session.get()}) {
        EXPECT_EQ(rowsOf(*one, kByCode), "1\nApfel\n\u00C4pfel\n\u00D6l\nZwirn\n");
        for (const char* name : {"1", "apfel", "\u00E4PFEL", "\u00F6l", "Zwirn"})
            EXPECT_EQ(rowsOf(*one, std::string("SELECT COUNT(*) FROM t WHERE name = N'") + name + "'"), "1\n") << name;
    }
    EXPECT_EQ(damageOf(file.path()), std::vector<std::string>());
}

TEST(Store, refusesWhatIsNoStore) {
    const TemporaryFile file;
    EXPECT_THROW(Store::open(file.path()), DbError);
    std::ofstream(file.path()) << "this is a shopping list and no store, long enough to be looked at";
    try {
        Store::open(file.path());
        ADD_FAILURE();
    } catch (const DbError& error) {
        EXPECT_EQ(error.category(), DbError::Category::Storage);
    }
    EXPECT_THROW(Store::create(file.path()), DbError);
}

TEST(Store, givesSessionsThatAreAsNew) {
    const auto store = Store::scratch();
    {
        const auto session = store->session();
        runScript(*session, "CREATE TABLE t (a INT)\nCREATE TABLE #t (a INT)\nBEGIN TRAN\nINSERT INTO t VALUES (1)\nSET ROWCOUNT 1");
        EXPECT_EQ(session->transactionDepth(), 1);
    }
    const auto session = store->session();
    EXPECT_EQ(session->transactionDepth(), 0);
    EXPECT_EQ(rowsOf(*session, "SELECT COUNT(*) FROM t"), "0\n");
    EXPECT_EQ(errorOf(*session, "SELECT * FROM #t"), 208);
    EXPECT_EQ(rowsOf(*session, "INSERT INTO t VALUES (1), (2) SELECT a FROM t ORDER BY a"), "1\n2\n");
    EXPECT_TRUE(session->lastIdentity().isNull());
}

// Gives up when it was asked so often.
class ShortPatience : public Waiter {
public:
    explicit ShortPatience(int most) : most_(most) {}
    bool goOn(std::chrono::milliseconds) override { return ++asked < most_; }
    void over() override { ++ended; }
    int asked = 0;
    int ended = 0;

private:
    int most_;
};

TEST(Store, letsAUserGiveUpWaitingForAnotherWriter) {
    const auto store = Store::scratch();
    const auto writer = store->session();
    const auto user = store->session();
    runScript(*writer, "CREATE TABLE t (a INT)\nBEGIN TRAN\nINSERT INTO t VALUES (1)");
    ShortPatience patience(3);
    user->setWaiter(&patience);
    EXPECT_EQ(rowsOf(*user, "SELECT COUNT(*) FROM t"), "0\n"); // who reads does not wait
    EXPECT_EQ(patience.asked, 0);
    try {
        runScript(*user, "INSERT INTO t VALUES (2)");
        ADD_FAILURE() << "did not wait";
    } catch (const DbError& error) {
        EXPECT_EQ(error.category(), DbError::Category::Busy);
        EXPECT_STREQ(error.what(),
                     "Another program is saving to this store and has not finished. Nothing was changed here; try again in a moment.");
    }
    EXPECT_EQ(patience.asked, 3);
    EXPECT_EQ(patience.ended, 1);
    EXPECT_EQ(user->transactionDepth(), 0);
    runScript(*writer, "COMMIT");
    runScript(*user, "INSERT INTO t VALUES (2)");
    EXPECT_EQ(rowsOf(*writer, "SELECT a FROM t ORDER BY a"), "1\n2\n");
}

TEST(Store, showsOtherSessionsTheNewSchemaAtOnce) {
    const auto store = Store::scratch();
    const auto one = store->session();
    const auto two = store->session();
    runScript(*one, "CREATE TABLE t (a INT)\nGO\nCREATE PROCEDURE p AS SELECT 1");
    EXPECT_EQ(rowsOf(*two, "p"), "1\n");
    runScript(*one, "ALTER PROCEDURE p AS SELECT 2\nGO\nALTER TABLE t ADD b INT NULL\nGO\nINSERT INTO t VALUES (1, 2)");
    EXPECT_EQ(rowsOf(*two, "p SELECT * FROM t").substr(0, 2), "2\n");
    EXPECT_EQ(rowsOf(*two, "SELECT * FROM t"), "1|2\n");
}

// The lock of the writer is taken by a transaction's first statement, not when it begins: until then another session may write.
TEST(Store, takesTheLockAtTheFirstStatement) {
    const auto store = Store::scratch();
    const auto one = store->session();
    const auto two = store->session();
    runScript(*one, "CREATE TABLE t (a INT)");
    one->begin();
    runScript(*two, "INSERT INTO t VALUES (1)");
    EXPECT_EQ(rowsOf(*one, "SELECT COUNT(*) FROM t"), "1\n");
    // Now the writer waits until the transaction has ended.
    std::thread later([&] { runScript(*two, "INSERT INTO t VALUES (2)"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(rowsOf(*one, "SELECT COUNT(*) FROM t"), "1\n");
    one->rollback();
    later.join();
    EXPECT_EQ(rowsOf(*one, "SELECT COUNT(*) FROM t"), "2\n");
}

TEST(Store, countsIdentitiesOverSessionsAndRollbacks) {
    const auto store = Store::scratch();
    const auto one = store->session();
    const auto two = store->session();
    runScript(*one, "CREATE TABLE t (id INT IDENTITY(10, 5), a INT)\nBEGIN TRAN INSERT INTO t VALUES (1) ROLLBACK");
    runScript(*two, "INSERT INTO t VALUES (2)");
    EXPECT_EQ(two->lastIdentity(), Value(15));
    EXPECT_EQ(rowsOf(*one, "INSERT INTO t VALUES (3) SELECT @@IDENTITY, IDENT_CURRENT('t')"), "20|20\n");
}

TEST(Store, writesFromManyThreadsWithoutLosingAnything) {
    const auto store = Store::scratch();
    runScript(*store->session(),
              "CREATE TABLE t (id INT IDENTITY PRIMARY KEY, n INT)\nCREATE TABLE total (n INT)\nINSERT INTO total VALUES (0)");
    constexpr int kThreads = 4;
    constexpr int kRounds = 50;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            const auto session = store->session();
            for (int round = 0; round < kRounds; ++round)
                runScript(*session, "BEGIN TRAN INSERT INTO t (n) VALUES (1) UPDATE total SET n = n + 1 COMMIT");
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(rowsOf(*store->session(), "SELECT COUNT(*), COUNT(DISTINCT id), SUM(t.n), MAX(total.n) FROM t CROSS JOIN total"),
              "200|200|200|200\n");
}

TEST(Session3, callsProceduresWithParameters) {
    const auto session = Store::scratch()->session();
    runScript(*session, "CREATE PROCEDURE p @name VARCHAR(5), @n INT = 7, @sum MONEY OUTPUT AS SET @sum = @n * 1.5 SELECT @name, @n");
    std::vector<Parameter> parameters = {{"name", {TypeKind::VarChar, 20, 0, 0}, "abcdefgh", false},
                                         {"sum", {TypeKind::Money, 0, 0, 0}, {}, true}};
    Rows rows;
    session->call("dbo.p", parameters, rows);
    EXPECT_EQ(rows.text, "abcde|7\n");
    EXPECT_EQ(parameters[1].value, Value(Currency::fromUnits(105000)));
    std::vector<Parameter> byPlace = {{"", {}, "x", false}, {"", {}, 2, false}, {"", {TypeKind::Money, 0, 0, 0}, {}, true}};
    session->call("p", byPlace, rows);
    EXPECT_EQ(byPlace[2].value, Value(Currency::fromUnits(30000)));
    std::vector<Parameter> none;
    EXPECT_THROW(session->call("nope", none, rows), DbError);
}

TEST(Session3, takesParametersAsVariables) {
    const auto session = Store::scratch()->session();
    std::vector<Parameter> parameters = {{"a", {TypeKind::Int, 0, 0, 0}, 5, false}, {"b", {TypeKind::NVarChar, 20, 0, 0}, "it's", true}};
    Rows rows;
    session->execute("SELECT @a * 2, @b SET @b = @b + '!'", parameters, rows);
    EXPECT_EQ(rows.text, "10|it's\n");
    EXPECT_EQ(parameters[1].value, Value("it's!"));
}

TEST(Session3, readsItsClock) {
    const auto session = Store::scratch()->session();
    Clock clock;
    clock.set(*Date::fromParts(2004, 3, 1, 10, 30));
    session->setClock(&clock);
    EXPECT_EQ(rowsOf(*session, "SELECT CONVERT(VARCHAR(30), GETDATE(), 120)"), "2004-03-01 10:30:00\n");
}

TEST(Session3, stopsWhenItIsCancelled) {
    const auto session = Store::scratch()->session();
    std::thread later([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        session->cancel();
    });
    try {
        rowsOf(*session, "DECLARE @n BIGINT SET @n = 0 WHILE 1 = 1 SET @n = @n + 1");
        ADD_FAILURE();
    } catch (const DbError& error) {
        EXPECT_EQ(error.category(), DbError::Category::Cancelled);
    }
    later.join();
    EXPECT_EQ(rowsOf(*session, "SELECT 1"), "1\n");
}

TEST(Session3, sumsMoneyExactlyOverAMillionRows) {
    const auto session = Store::scratch()->session();
    runScript(*session, "CREATE TABLE t (m MONEY)\nINSERT INTO t VALUES (0.1), (0.2), (0.0001), (922337203.1234), (-5.5)\n"
                        "DECLARE @i INT SET @i = 0 WHILE @i < 18 BEGIN INSERT INTO t SELECT m FROM t SET @i = @i + 1 END");
    EXPECT_EQ(rowsOf(*session, "SELECT COUNT(*), CAST(SUM(m) AS VARCHAR(30)), CONVERT(VARCHAR(30), SUM(m), 2) FROM t"),
              "1310720|241785162412457.98|241785162412457.9840\n");
}

} // namespace
} // namespace merchantry::db
