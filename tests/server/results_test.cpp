#include "tests/server/onaserver.h"

#include <thread>

namespace merchantry::db {
namespace {

using ResultsOnAServer = OnAServer;

TEST_F(ResultsOnAServer, SeveralSetsComeInTheirOrderWithCountsAndMessages) {
    table("Few", "Id int, Name varchar(10)");
    class Told : public ResultSink {
    public:
        void beginSet(const std::vector<Column>& columns) override { text += "set " + columns[0].name + " "; }
        void row(const RowView& row) override { text += row.value(0).toScriptText() + " "; }
        void endSet() override { text += "end "; }
        void changed(std::int64_t rows) override { text += "changed " + std::to_string(rows) + " "; }
        void message(const std::string& said) override { text += "says " + said + " "; }
        std::string text;
    } told;
    session->execute("INSERT INTO Few VALUES (1, 'a'), (2, 'b')\nSELECT Id FROM Few ORDER BY Id\nPRINT 'half'\n"
                     "UPDATE Few SET Name = 'c' WHERE Id = 9\nDELETE FROM Few\nSELECT Name FROM Few",
                     told);
    EXPECT_EQ(told.text, "changed 2 set Id 1 2 end says half changed 0 changed 2 set Name end ");
}

TEST_F(ResultsOnAServer, ACallByItsNameAloneRuns) {
    run("IF OBJECT_ID('Two') IS NOT NULL DROP PROCEDURE Two");
    run("CREATE PROCEDURE Two @a int = 5 AS SELECT @a AS x SELECT @a + 1 AS y");
    EXPECT_EQ(rowsOf("Two"), "5/6");
    EXPECT_EQ(rowsOf("Two 8"), "8/9");
}

TEST_F(ResultsOnAServer, AProcedureThatFirstChangesNoRowGivesWhatFollows) {
    table("Still", "Id int");
    run("IF OBJECT_ID('Touch') IS NOT NULL DROP PROCEDURE Touch");
    run("CREATE PROCEDURE Touch AS UPDATE Still SET Id = 1 SELECT 7 AS seven");
    class Count : public NoResult {
    public:
        void row(const RowView& row) override { seen = row.value(0); }
        Value seen;
    } count;
    std::vector<Parameter> none;
    session->call("Touch", none, count);
    EXPECT_EQ(count.seen, Value(7));
}

TEST_F(ResultsOnAServer, AnIdentityIsTold) {
    table("Numbered", "Id int IDENTITY(10, 5) NOT NULL PRIMARY KEY, Name varchar(10)");
    run("INSERT INTO Numbered (Name) VALUES ('a')");
    EXPECT_EQ(session->lastIdentity(), Value(10));
    std::vector<Parameter> name{{"name", {TypeKind::VarChar, 10, 0, 0}, "b"}};
    EXPECT_EQ(rowsOf("INSERT INTO Numbered (Name) VALUES (@name) SELECT SCOPE_IDENTITY()", name), "15");
    EXPECT_EQ(session->lastIdentity(), Value(15));
}

TEST_F(ResultsOnAServer, WhatTheReaderThrowsStopsTheBatchAndPassesThrough) {
    class Enough : public NoResult {
    public:
        void row(const RowView&) override { throw std::runtime_error("enough"); }
    } enough;
    EXPECT_THROW(session->execute("SELECT 1 AS a SELECT 2 AS b", enough), std::runtime_error);
    EXPECT_EQ(rowsOf("SELECT 3"), "3");
}

TEST_F(ResultsOnAServer, ARunningStatementIsCancelledFromAnotherThread) {
    std::atomic<bool> running = true;
    std::thread canceller([&] {
        while (running) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            session->cancel();
        }
    });
    DbError::Category category = DbError::Category::Other;
    try {
        run("DECLARE @i int SET @i = 0 WHILE @i < 5000000 SET @i = @i + 1 SELECT @i");
    } catch (const DbError& error) {
        category = error.category();
    }
    running = false;
    canceller.join();
    EXPECT_EQ(category, DbError::Category::Cancelled);
    EXPECT_EQ(rowsOf("SELECT 1"), "1");
}

TEST_F(ResultsOnAServer, AReadingSessionChangesNothing) {
    table("Kept", "Id int");
    run("INSERT INTO Kept VALUES (1)");
    run("IF OBJECT_ID('Sweep') IS NOT NULL DROP PROCEDURE Sweep");
    run("CREATE PROCEDURE Sweep AS DELETE FROM Kept SELECT COUNT(*) AS n FROM Kept");
    session->setReadOnly(true);
    EXPECT_EQ(errorOf("DELETE FROM Kept").native(), 3906);
    errorOf("EXEC Sweep"); // a server that counts what a procedure changes says so; either way nothing of it stays
    EXPECT_EQ(session->transactionDepth(), 0);
    EXPECT_EQ(rowsOf("SELECT Id FROM Kept"), "1");
    session->setReadOnly(false);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Kept"), "1");
}

} // namespace
} // namespace merchantry::db
