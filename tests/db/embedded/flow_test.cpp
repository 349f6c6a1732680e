// What a statement leaves for the next one, and a procedure, trigger or function for who ran it.

#include "tests/db/teststore.h"

namespace merchantry::db {
namespace {

class Flow : public OnAStore {
protected:
    Flow() {
        run("CREATE TABLE T (ID int IDENTITY(1, 1), N int CHECK (N < 100)) CREATE TABLE Log (ID int IDENTITY(100, 1), S varchar(30))");
    }

    // The numbers of all errors of a batch, then its rows.
    std::string told(const std::string& batch) {
        class Answers : public ResultSink {
        public:
            void beginSet(const std::vector<Column>&) override {}
            void row(const RowView& row) override {
                text += text.empty() ? "" : ";";
                for (int i = 0; i < row.size(); ++i)
                    text += (i > 0 ? "|" : "") + row.value(i).toScriptText();
            }
            void changed(std::int64_t rows) override { counts += std::to_string(rows) + " "; }
            void error(const DbError& error) override { errors += "," + std::to_string(error.native()); }
            std::string text, errors, counts;
        } answers;
        std::string first;
        try {
            session->execute(batch, answers);
        } catch (const DbError& error) {
            first = std::to_string(error.native());
        }
        counts = answers.counts;
        return first + answers.errors + (first.empty() || answers.text.empty() ? "" : ": ") + answers.text;
    }
    std::string logged() { return rowsOf("SELECT S FROM Log ORDER BY ID"); }

    std::string counts; // that the last batch told
};

// A procedure that sets XACT_ABORT for itself, as bsp_NewItem does, left it on: the next error in a transaction took all of it.
TEST_F(Flow, WhatAProcedureSetsEndsWithIt) {
    run("CREATE PROCEDURE Sets AS SET XACT_ABORT ON SET ROWCOUNT 1 SET NOCOUNT ON SET DATEFIRST 1 SET ANSI_NULLS OFF");
    run("CREATE PROCEDURE SetsAndFails AS SET XACT_ABORT ON RAISERROR('no', 16, 1)");
    run("CREATE TRIGGER SetsToo ON Log AFTER INSERT AS SET XACT_ABORT ON SET ROWCOUNT 1");
    std::vector<Parameter> none;
    NoResult ignored;
    session->call("Sets", none, ignored);
    run("INSERT INTO T (N) VALUES (1), (2)");
    for (const char* sets :
         {"EXEC Sets", "EXEC ('SET XACT_ABORT ON SET ROWCOUNT 1')", "EXEC SetsAndFails", "INSERT INTO Log (S) VALUES ('x')"}) {
        told(sets);
        EXPECT_EQ(told("SELECT N, @@DATEFIRST FROM T ORDER BY ID"), "1|7;2|7") << sets;
        EXPECT_EQ(told("SELECT COUNT(*) WHERE NULL = NULL"), "0") << sets;
        EXPECT_EQ(told("BEGIN TRAN INSERT INTO T (N) VALUES (500) SELECT @@TRANCOUNT ROLLBACK"), "547: 1") << sets;
    }
    run("SET XACT_ABORT ON"); // a batch's own choice stays
    EXPECT_EQ(told("BEGIN TRAN INSERT INTO T (N) VALUES (500) SELECT 'goes on'"), "547");
    EXPECT_EQ(told("SELECT @@TRANCOUNT"), "0");
}

TEST_F(Flow, CountsAreToldUnlessTheyAreSwitchedOff) {
    run("CREATE PROCEDURE Quiet AS SET NOCOUNT ON INSERT INTO T (N) VALUES (1) SELECT @@ROWCOUNT");
    EXPECT_EQ(told("INSERT INTO T (N) VALUES (1), (2) EXEC Quiet UPDATE T SET N = N"), "1");
    EXPECT_EQ(counts, "2 3 ");
    told("SET NOCOUNT ON DELETE FROM T");
    EXPECT_EQ(counts, "");
}

// IF @@ROWCOUNT = 0 ... ELSE IF @@ROWCOUNT > 1 asked twice for the count of the statement before.
TEST_F(Flow, AskingIsAStatementOfItsOwn) {
    run("INSERT INTO T (N) VALUES (1), (2)");
    EXPECT_EQ(told("UPDATE T SET N = N IF @@ROWCOUNT = 0 SELECT 'none' ELSE IF @@ROWCOUNT > 1 SELECT 'many' ELSE SELECT @@ROWCOUNT"), "0");
    EXPECT_EQ(told("UPDATE T SET N = N IF @@ROWCOUNT = 2 SELECT @@ROWCOUNT SELECT @@ROWCOUNT"), "0;1");
    EXPECT_EQ(told("INSERT INTO T (N) VALUES (100) IF @@ERROR <> 0 SELECT @@ERROR"), "547: 0");
    EXPECT_EQ(told("INSERT INTO T (N) VALUES (100) WHILE @@ERROR <> 0 SELECT @@ERROR, @@ROWCOUNT"), "547: 0|0");
    EXPECT_EQ(
        told("DECLARE @runs int SET @runs = 0 DELETE T WHERE N = 1 WHILE @@ROWCOUNT > 0 BEGIN SET @runs = @runs + 1 DELETE T WHERE N = 2 "
             "END SELECT @runs, @@ROWCOUNT"),
        "2|0");
}

TEST_F(Flow, ErrorsInProceduresGoOnOrEndWhatTheyEnd) {
    run("CREATE PROCEDURE Deep AS RAISERROR('deep', 16, 1) RETURN 3");
    run("CREATE PROCEDURE Middle AS DECLARE @r int EXEC @r = Deep SELECT @@ERROR, @r RETURN @r + 1");
    EXPECT_EQ(told("DECLARE @r int EXEC @r = Middle SELECT @r, @@ERROR"), "50000: 0|3;4|0");
    run("CREATE PROCEDURE Missing AS EXEC NoSuch SELECT 'goes on' SELECT * FROM NoTable SELECT 'not here'");
    EXPECT_EQ(told("EXEC Missing SELECT 'caller'"), "2812,208: goes on;caller");
    run("CREATE PROCEDURE Converts AS DECLARE @i int SET @i = 'abc' SELECT 'not here'");
    EXPECT_EQ(told("BEGIN TRAN EXEC Converts SELECT 'nor here'"), "245");
    EXPECT_EQ(told("SELECT @@TRANCOUNT"), "0");
    run("CREATE PROCEDURE Saved @n int AS SAVE TRAN here INSERT INTO T (N) VALUES (10) INSERT INTO T (N) VALUES (@n) IF @@ERROR <> 0 "
        "BEGIN ROLLBACK TRAN here RETURN 1 END RETURN 0");
    EXPECT_EQ(told("DECLARE @a int, @b int BEGIN TRAN INSERT INTO T (N) VALUES (9) EXEC @a = Saved 100 EXEC @b = Saved 11 "
                   "SELECT @a, @b, @@TRANCOUNT COMMIT SELECT N FROM T ORDER BY ID"),
              "547: 1|0|1;9;10;11");
}

TEST_F(Flow, ErrorsInFunctionsAreThoseOfTheirStatement) {
    run("CREATE FUNCTION dbo.Tenth (@a int) RETURNS int AS BEGIN DECLARE @r int SET @r = 10 / @a RETURN @r END");
    run("INSERT INTO T (N) VALUES (1), (2)");
    EXPECT_EQ(told("SELECT dbo.Tenth(0) SELECT 'after', @@ERROR"), "8134: after|8134");
    EXPECT_EQ(told("INSERT INTO T (N) SELECT dbo.Tenth(ID - 1) FROM T SELECT COUNT(*) FROM T"), "8134: 2");
    EXPECT_EQ(told("BEGIN TRAN UPDATE T SET N = 7 UPDATE T SET N = dbo.Tenth(N - 7) SELECT MIN(N), @@TRANCOUNT FROM T ROLLBACK"),
              "8134: 7|1");
    EXPECT_EQ(told("BEGIN TRY SELECT dbo.Tenth(0) END TRY BEGIN CATCH SELECT ERROR_NUMBER(), ERROR_PROCEDURE() END CATCH"), "8134|Tenth");
}

TEST_F(Flow, CursorsThatWereLeftOpenAreThereAsTheyWere) {
    run("INSERT INTO T (N) VALUES (1), (2), (3)");
    run("DECLARE c CURSOR FOR SELECT N FROM T ORDER BY ID OPEN c");
    EXPECT_EQ(told("DECLARE @n int BEGIN TRAN FETCH NEXT FROM c INTO @n DELETE T WHERE N = 9 ROLLBACK FETCH NEXT FROM c INTO @n SELECT @n, "
                   "@@FETCH_STATUS, CURSOR_STATUS('global', 'c')"),
              "2|0|1");
    EXPECT_EQ(told("DECLARE c CURSOR FOR SELECT 1"), "16915");
    EXPECT_EQ(told("OPEN c"), "16905");
    EXPECT_EQ(told("DECLARE @n int FETCH NEXT FROM c INTO @n FETCH NEXT FROM c INTO @n SELECT @n, @@FETCH_STATUS CLOSE c DEALLOCATE c"),
              "3|-1");
    EXPECT_EQ(told("CLOSE c"), "16916");
    run("CREATE PROCEDURE Leaves AS DECLARE c CURSOR LOCAL FOR SELECT N FROM T DECLARE @n int OPEN c FETCH NEXT FROM c INTO @n "
        "RAISERROR('x', 16, 1)");
    EXPECT_EQ(told("EXEC Leaves EXEC Leaves SELECT CURSOR_STATUS('global', 'c')"), "50000,50000: -3");
}

} // namespace
} // namespace merchantry::db
