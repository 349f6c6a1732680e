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

// An error that a trigger caught left its statement in the store, although the batch said that all was rolled back.
TEST_F(Flow, ATriggerThatCaughtAnErrorKeepsNothing) {
    run("CREATE TRIGGER Catches ON T AFTER INSERT AS BEGIN TRY INSERT INTO Log (S) SELECT 'n' + CAST(N AS varchar(9)) FROM inserted "
        "IF EXISTS (SELECT * FROM inserted WHERE N = 13) SELECT 1 / 0 END TRY BEGIN CATCH DECLARE @x int SET @x = XACT_STATE() END CATCH");
    run("CREATE TRIGGER Then2 ON T AFTER INSERT AS INSERT INTO Log (S) VALUES ('second')");
    run("CREATE PROCEDURE Gives AS SELECT 13");
    EXPECT_EQ(told("INSERT INTO T (N) VALUES (1)"), "");
    for (const char* insert : {"INSERT INTO T (N) VALUES (13)", "INSERT INTO T (N) EXEC Gives"}) {
        EXPECT_EQ(told(std::string(insert) + " SELECT 'goes on'"), "3616") << insert;
        EXPECT_EQ(told(std::string("BEGIN TRAN INSERT INTO T (N) VALUES (2) ") + insert), "3616") << insert;
        EXPECT_EQ(told("SELECT @@TRANCOUNT, COUNT(*) FROM T"), "0|1") << insert;
        EXPECT_EQ(logged(), "n1;second") << insert;
        EXPECT_EQ(told(std::string("BEGIN TRY ") + insert + " END TRY BEGIN CATCH SELECT ERROR_NUMBER(), XACT_STATE() END CATCH"),
                  "3616|0");
        EXPECT_EQ(told(std::string("BEGIN TRAN BEGIN TRY ") + insert +
                       " END TRY BEGIN CATCH SELECT ERROR_NUMBER(), XACT_STATE() END CATCH ROLLBACK"),
                  "3616|-1");
        EXPECT_EQ(told("SELECT COUNT(*) FROM T"), "1") << insert;
    }
}

// It ended the procedure alone: the trigger went on, and its statement was kept without what the procedure had to do.
TEST_F(Flow, AMissingNameInATriggerOrUnderXactAbortEndsTheTransaction) {
    run("CREATE PROCEDURE Looks AS INSERT INTO Log (S) VALUES ('before') SELECT * FROM NoTable");
    EXPECT_EQ(told("BEGIN TRAN EXEC Looks SELECT @@TRANCOUNT, COUNT(*) FROM Log ROLLBACK"), "208: 1|1");
    EXPECT_EQ(told("SET XACT_ABORT ON BEGIN TRAN EXEC Looks SELECT 'goes on'"), "208");
    EXPECT_EQ(told("SET XACT_ABORT OFF SELECT @@TRANCOUNT, COUNT(*) FROM Log"), "0|0");
    for (const char* body : {"EXEC Looks", "SELECT * FROM NoTable", "EXEC ('SELECT * FROM inserted')"}) {
        run(std::string("CREATE TRIGGER Calls ON T AFTER INSERT AS ") + body);
        EXPECT_EQ(told("INSERT INTO T (N) VALUES (1) SELECT 'goes on'"), "208") << body;
        EXPECT_EQ(told("BEGIN TRAN INSERT INTO T (N) VALUES (1) SELECT 'goes on'"), "208") << body;
        EXPECT_EQ(told("SELECT @@TRANCOUNT, (SELECT COUNT(*) FROM T), (SELECT COUNT(*) FROM Log)"), "0|0|0") << body;
        EXPECT_EQ(
            told("BEGIN TRAN BEGIN TRY INSERT INTO T (N) VALUES (1) END TRY BEGIN CATCH SELECT ERROR_NUMBER(), XACT_STATE() END CATCH "
                 "ROLLBACK"),
            "208|-1")
            << body;
        run("DROP TRIGGER Calls");
    }
}

// COMMIT in a trigger was told as a failing disk.
TEST_F(Flow, ATriggerThatEndsTheTransactionEndsTheBatch) {
    run("CREATE PROCEDURE Gives AS SELECT 5");
    for (const char* ends : {"COMMIT", "ROLLBACK"}) {
        const bool kept = std::string(ends) == "COMMIT";
        run(std::string("CREATE TRIGGER Ends ON T AFTER INSERT AS BEGIN ") + ends + " INSERT INTO Log (S) VALUES ('own') END");
        for (const char* insert :
             {"INSERT INTO T (N) VALUES (5)", "BEGIN TRAN INSERT INTO T (N) VALUES (5)", "INSERT INTO T (N) EXEC Gives"}) {
            run("ALTER TABLE T DISABLE TRIGGER Ends DELETE T DELETE Log ALTER TABLE T ENABLE TRIGGER Ends");
            EXPECT_EQ(told(std::string(insert) + " SELECT 'goes on'"), "3609") << ends << insert;
            EXPECT_EQ(told("SELECT @@TRANCOUNT, COUNT(*) FROM T"), kept ? "0|1" : "0|0") << ends << insert;
            EXPECT_EQ(logged(), "own") << ends << insert;
        }
        run("DROP TRIGGER Ends");
    }
    run("CREATE TRIGGER Saves ON T AFTER INSERT AS SAVE TRAN here INSERT INTO Log (S) VALUES ('undone') ROLLBACK TRAN here");
    run("DELETE T DELETE Log");
    EXPECT_EQ(told("INSERT INTO T (N) VALUES (6) SELECT @@TRANCOUNT, COUNT(*) FROM T"), "0|1");
    EXPECT_EQ(logged(), "");
}

// The rows of a procedure that rolled back were put in all the same, outside any transaction.
TEST_F(Flow, InsertExecRefusesARollback) {
    run("CREATE PROCEDURE Undoes AS SELECT 5 ROLLBACK");
    run("CREATE PROCEDURE Own AS BEGIN TRAN INSERT INTO Log (S) VALUES ('own') SAVE TRAN here INSERT INTO Log (S) VALUES ('no') ROLLBACK "
        "TRAN "
        "here COMMIT SELECT 6");
    EXPECT_EQ(told("BEGIN TRAN INSERT INTO T (N) VALUES (1) INSERT INTO T (N) EXEC Undoes SELECT @@TRANCOUNT ROLLBACK"), "3915: 1");
    EXPECT_EQ(told("INSERT INTO T (N) EXEC Own SELECT N, @@TRANCOUNT FROM T"), "6|0");
    EXPECT_EQ(logged(), "own");
}

// The rows went into the table past the trigger that was to take them.
TEST_F(Flow, InsertExecDoesNotPassByAnInsteadOfTrigger) {
    run("CREATE VIEW V AS SELECT ID, N FROM T");
    run("CREATE TRIGGER TakesV ON V INSTEAD OF INSERT AS INSERT INTO Log (S) VALUES ('V')");
    run("CREATE TRIGGER TakesT ON T INSTEAD OF INSERT AS INSERT INTO T (N) EXEC ('SELECT 7')");
    for (const char* insert : {"INSERT INTO T (N) EXEC ('SELECT 1')", "INSERT INTO V (N) EXEC ('SELECT 1')"})
        EXPECT_THROW(run(insert), DbError) << insert;
    EXPECT_EQ(told("INSERT INTO T (N) VALUES (1) SELECT N FROM T"), "7") << "the trigger itself writes";
}

TEST_F(Flow, InsteadOfTriggersDecideWhatIsWritten) {
    run("CREATE VIEW V AS SELECT ID, N FROM T");
    run("CREATE TRIGGER Via ON V INSTEAD OF INSERT AS INSERT INTO Log (S) SELECT 'via' FROM inserted INSERT INTO T (N) SELECT N FROM "
        "inserted");
    EXPECT_EQ(told("INSERT INTO V (N) VALUES (1), (2) SELECT @@ROWCOUNT, SCOPE_IDENTITY(), @@IDENTITY"), "2|NULL|2");
    EXPECT_EQ(told("INSERT INTO V (N) VALUES (3), (100) SELECT 'goes on'"), "547") << "an error in a trigger ends the batch";
    EXPECT_EQ(told("BEGIN TRAN INSERT INTO T (N) VALUES (4) INSERT INTO V (N) VALUES (100)"), "547");
    EXPECT_EQ(told("SELECT @@TRANCOUNT, (SELECT COUNT(*) FROM T), (SELECT COUNT(*) FROM Log)"), "0|2|2");
    run("CREATE TRIGGER Again ON Log INSTEAD OF INSERT AS INSERT INTO Log (S) SELECT S + '!' FROM inserted"); // does not fire itself
    EXPECT_EQ(told("DELETE FROM Log INSERT INTO Log (S) VALUES ('a') SELECT S FROM Log"), "a!");
    run("CREATE TRIGGER Keeps ON T INSTEAD OF DELETE AS DELETE T WHERE ID IN (SELECT MIN(ID) FROM deleted)");
    EXPECT_EQ(told("DELETE T SELECT @@ROWCOUNT, COUNT(*) FROM T"), "2|1");
}

TEST_F(Flow, NumbersOfIdentityColumnsEndWithTheirType) {
    run("CREATE TABLE Small (ID tinyint IDENTITY(254, 1), N int) CREATE TABLE Down (ID smallint IDENTITY(-32767, -1), N int) "
        "CREATE TABLE Digits (ID decimal(3, 0) IDENTITY(998, 1), N int) CREATE TABLE Whole (ID int IDENTITY(2147483646, 1), N int)");
    for (const std::string table : {"Small", "Down", "Digits", "Whole"}) {
        const std::string insert = "INSERT INTO " + table + " (N) VALUES (1) ";
        EXPECT_EQ(told(insert + insert + insert + "SELECT COUNT(*) FROM " + table), "8115: 2") << table;
        const std::string last = rowsOf("SELECT IDENT_CURRENT('" + table + "')");
        EXPECT_EQ(told(insert + "SELECT IDENT_CURRENT('" + table + "')"), "8115: " + last) << table;
    }
}

TEST_F(Flow, TheLastNumberIsThatOfTheLastStatementThatInserts) {
    run("CREATE TRIGGER Logs ON T AFTER INSERT AS INSERT INTO Log (S) SELECT 'x' FROM inserted");
    EXPECT_EQ(told("INSERT INTO T (N) VALUES (1) SELECT SCOPE_IDENTITY(), @@IDENTITY"), "1|100");
    EXPECT_EQ(told("INSERT INTO T (N) VALUES (2) EXEC ('INSERT INTO T (N) VALUES (3)') SELECT SCOPE_IDENTITY(), @@IDENTITY"), "2|102");
    EXPECT_EQ(
        told("BEGIN TRAN INSERT INTO T (N) VALUES (4) ROLLBACK INSERT INTO T (N) VALUES (5) SELECT SCOPE_IDENTITY(), IDENT_CURRENT('T')"),
        "5|5");
    EXPECT_EQ(told("INSERT INTO T (N) VALUES (6) SELECT N INTO #n FROM T SELECT SCOPE_IDENTITY(), @@IDENTITY"), "NULL|NULL");
}

// They were read when it was opened: another batch could not open it, or would have taken its own variables for them.
TEST_F(Flow, ACursorKeepsTheVariablesThatItWasDeclaredWith) {
    run("INSERT INTO T (N) VALUES (1), (2), (3)");
    const std::string fetch = "DECLARE @r int FETCH NEXT FROM c INTO @r SELECT @r, @@FETCH_STATUS, @@ROWCOUNT CLOSE c";
    EXPECT_EQ(
        told("DECLARE @n int SET @n = 1 DECLARE c CURSOR FOR SELECT N + @n FROM T WHERE N > @n ORDER BY N SET @n = 100 OPEN c " + fetch),
        "3|0|1");
    EXPECT_EQ(told("OPEN c " + fetch), "3|0|1");
    EXPECT_EQ(told("DECLARE @other varchar(9), @more int SET @other = 'abc' OPEN c " + fetch), "3|0|1");
    run("CREATE PROCEDURE Opens @n varchar(9) AS OPEN c " + fetch);
    EXPECT_EQ(told("EXEC Opens 'x' DEALLOCATE c"), "3|0|1");
    run("CREATE TRIGGER Reads ON T AFTER INSERT AS DECLARE @least int SET @least = 4 DECLARE own CURSOR LOCAL FOR SELECT N FROM inserted "
        "WHERE N > "
        "@least ORDER BY N DECLARE @r int OPEN own FETCH NEXT FROM own INTO @r SELECT @r FETCH NEXT FROM own INTO @r SELECT "
        "@@FETCH_STATUS, "
        "@@ROWCOUNT");
    EXPECT_EQ(told("INSERT INTO T (N) VALUES (4), (5)"), "5;-1|0");
    EXPECT_EQ(told("DECLARE @t TABLE (A int) DECLARE @a int SET @a = 7 INSERT INTO @t VALUES (@a) DECLARE v CURSOR LOCAL FOR SELECT A FROM "
                   "@t WHERE A = "
                   "@a SET @a = 0 OPEN v FETCH NEXT FROM v INTO @a SELECT @a"),
              "7");
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

// What an INSTEAD OF UPDATE trigger saw: every column as updated, P += 10 as P = 10, a variable between as null.
TEST_F(Flow, InsteadOfUpdateTriggersGetWhatWasAssigned) {
    run("CREATE TABLE P (A int, B int DEFAULT 9, Name varchar(5)) INSERT INTO P VALUES (1, 2, 'x')");
    run("CREATE TRIGGER TakesP ON P INSTEAD OF UPDATE AS SELECT A, B, Name FROM inserted IF UPDATE(A) SELECT 'A' IF UPDATE(B) SELECT 'B'");
    EXPECT_EQ(told("UPDATE P SET B += 10"), "1|12|x;B");
    EXPECT_EQ(told("UPDATE P SET A = 3, B = DEFAULT"), "3|9|x;A;B");
    EXPECT_EQ(told("DECLARE @v int, @w int UPDATE P SET @v = A = A + 5, @w = B SELECT @v, @w"), "6|2|x;A;6|2");
    EXPECT_EQ(told("UPDATE P SET A = 1, A = 2"), "264");
    EXPECT_EQ(told("UPDATE P SET Name = 'too long'"), "8152");
    EXPECT_EQ(told("UPDATE P SET A = 1 OUTPUT inserted.A"), "0"); // understood, and not carried out
    run("CREATE VIEW V AS SELECT A, A + B AS S FROM P");
    run("CREATE TRIGGER TakesV ON V INSTEAD OF UPDATE AS SELECT A, S FROM inserted IF UPDATE(S) SELECT 'S'");
    EXPECT_EQ(told("UPDATE V SET S = S * 2"), "1|6;S");
}

} // namespace
} // namespace merchantry::db
