// What the binder may know of a value only from what it is, never from how its text looks.

#include "tests/db/embedded/rows.h"
#include "tests/db/teststore.h"

namespace merchantry::db {
namespace {

class Binding : public OnAStore {};

// A text that looked like the call which gives an identity column its number was taken for one.
TEST_F(Binding, LeavesTextsAloneThatAnInsteadTriggerGets) {
    run("CREATE TABLE T (ID int IDENTITY(1, 1), N varchar(40)) CREATE TABLE Seen (ID int, N varchar(40))");
    run("CREATE TRIGGER Takes ON T INSTEAD OF INSERT AS INSERT INTO Seen SELECT ID, N FROM inserted");
    const std::string looks = "ts_identity(" + rowsOf("SELECT OBJECT_ID('T')") + ")";
    run("INSERT INTO T (N) VALUES ('" + looks + "') INSERT INTO T (N) SELECT 'of ' + N FROM Seen");
    EXPECT_EQ(rowsOf("SELECT ID, N FROM Seen"), "0|" + looks + ";0|of " + looks);
}

// A word of a text made a transaction that reads no table take the lock of the writer.
TEST_F(Binding, TakesNoLockForATextWithTheWordFrom) {
    run("CREATE TABLE T (N int)");
    const std::unique_ptr<Session> other = store->session();
    run("BEGIN TRANSACTION DECLARE @a varchar(40) SET @a = 'read ' SET @a = UPPER(@a + 'it FROM here')");
    EXPECT_EQ(errorOf(*other, "INSERT INTO T VALUES (1)"), 0);
    EXPECT_EQ(rowsOf("DECLARE @n int SET @n = (SELECT count(*) FROM T) SELECT @n"), "1");
    class NoPatience : public Waiter {
        bool goOn(std::chrono::milliseconds) override { return false; }
        void over() override {}
    } impatient;
    other->setWaiter(&impatient);
    EXPECT_EQ(errorOf(*other, "INSERT INTO T VALUES (2)"), 1205);
    run("ROLLBACK");
    EXPECT_EQ(errorOf(*other, "INSERT INTO T VALUES (3)"), 0);
    other->setWaiter(nullptr);
}

// With ANSI_NULLS off a variable finds nulls; a column of a select does not, though the select shows nothing but a variable.
TEST_F(Binding, TellsAVariableFromAColumnThatShowsIt) {
    run("SET ANSI_NULLS OFF CREATE TABLE T (N int) INSERT INTO T VALUES (NULL), (1)");
    EXPECT_EQ(rowsOf("DECLARE @v int SELECT count(*) FROM T WHERE N = @v"), "1");
    EXPECT_EQ(rowsOf("DECLARE @v int SELECT count(*) FROM T, (SELECT @v AS X) AS D WHERE N = X"), "0");
}

// The rows of a procedure were given nulls where a column takes the time by default.
TEST_F(Binding, GivesDefaultsOfTheSessionToRowsOfAProcedure) {
    run("CREATE TABLE T (At datetime DEFAULT GETDATE(), N int, U varchar(128) DEFAULT USER_NAME(), M int)");
    run("CREATE PROCEDURE p AS SELECT 3, 4 UNION ALL SELECT 5, 6");
    run("INSERT INTO T (M, N) EXEC p");
    EXPECT_EQ(rowsOf("SELECT N, M, DATEDIFF(hour, At, GETDATE()), CASE WHEN U = USER_NAME() THEN 'own' END FROM T ORDER BY N"),
              "4|3|0|own;6|5|0|own");
}

// DELETE TOP (-1) emptied the table, and a null was told as a failing disk.
TEST_F(Binding, RefusesNumbersOfRowsThatAreNone) {
    run("CREATE TABLE T (N int) INSERT INTO T VALUES (1), (2), (3), (4), (5), (6), (7), (8)");
    const std::pair<const char*, int> refused[] = {
        {"DELETE TOP (-1) FROM T", 127},
        {"UPDATE TOP (-1) T SET N = 0", 127},
        {"SELECT TOP (NULL) N FROM T", 1060},
        {"SELECT TOP 101 PERCENT N FROM T", 1031},
        {"SELECT N FROM T ORDER BY N OFFSET -1 ROWS", 10742},
        {"DECLARE @n int SELECT N FROM T ORDER BY N OFFSET @n ROWS", 1060},
        {"SELECT N FROM T ORDER BY N OFFSET 0 ROWS FETCH NEXT 0 ROWS ONLY", 10744},
        {"DECLARE @n int SET @n = -3 SELECT N FROM T ORDER BY N OFFSET 0 ROWS FETCH NEXT @n ROWS ONLY", 10744},
        {"SELECT TOP 1 N FROM T ORDER BY N OFFSET 1 ROWS", 10741},
        {"CREATE TABLE C (A int CHECK (A > (SELECT 1)))", 1046},
        {"CREATE TABLE C (A AS (SELECT 1))", 1046},
    };
    for (const auto& [batch, error] : refused)
        EXPECT_EQ(errorOf(*session, batch), error) << batch;
    EXPECT_EQ(rowsOf("SELECT SUM(N) FROM T"), "36");
    EXPECT_EQ(rowsOf("SELECT TOP 12.5 PERCENT N FROM T ORDER BY N"), "1");
    EXPECT_EQ(rowsOf("SELECT TOP 12.6 PERCENT N FROM T ORDER BY N"), "1;2");
}

// A sign binds less than * and /, so that it takes the whole product.
TEST_F(Binding, GivesASignTheWholeProduct) {
    EXPECT_EQ(rowsOf("SELECT -100 / -100 * 10, 6 / -2 * 3, -2 + 3, 2 * -3 - 1, ~1 * 2, - - 5, -7 % 4"), "0|-1|1|-7|-4|5|-3");
    EXPECT_EQ(rowsOf("DECLARE @x int SET @x = 8 SELECT 100 / -@x * 2, -@x * -@x"), "-6|64");
}

TEST_F(Binding, TakesEveryHintOfATable) {
    run("CREATE TABLE T (N int) INSERT INTO T VALUES (1)");
    for (const char* from : {"T (PAGLOCK)", "T WITH (SERIALIZABLE, XLOCK)", "T AS a (UPDLOCK)", "T (READUNCOMMITTED)"})
        EXPECT_EQ(rowsOf(std::string("SELECT N FROM ") + from), "1") << from;
}

// What SQLite does not take was told as a failing disk; a backup that is none, not at all.
TEST_F(Binding, SaysWhatItDoesNotDo) {
    for (const char* batch :
         {"SELECT NTILE(0) OVER (ORDER BY N) FROM T", "BACKUP DATABASE a TO DISK = 'b'", "RESTORE DATABASE a FROM DISK = 'b'",
          "WITH r AS (SELECT 1 AS n UNION ALL SELECT MAX(n) + 1 FROM r) SELECT n FROM r", "INSERT TOP (0) INTO T VALUES (1)"}) {
        run("IF OBJECT_ID('T') IS NULL CREATE TABLE T (N int) DELETE T INSERT INTO T VALUES (1)");
        NoResult none;
        try {
            session->execute(batch, none);
            ADD_FAILURE() << batch;
        } catch (const DbError& error) {
            EXPECT_EQ(error.category(), DbError::Category::Unsupported) << batch << ": " << error.what();
        }
    }
}

// Which expressions are one: what GROUP BY groups by may be selected, and what DISTINCT selects may be ordered by.
TEST_F(Binding, KnowsAnExpressionAgain) {
    run("CREATE TABLE T (A int, N varchar(10), D datetime, C AS A * 2) INSERT INTO T VALUES (1, 'x', '2020-02-01')");
    const char* const same[] = {
        "SELECT UPPER(t.N), count(*) FROM T AS t GROUP BY upper(N)",
        "SELECT DATEPART(yy, D), count(*) FROM T GROUP BY DATEPART(year, D)",
        "SELECT CAST(A AS varchar(10)) + 'x' FROM T GROUP BY CONVERT(varchar(10), A)",
        "SELECT CASE WHEN T.A > 1 THEN 'x' ELSE 'y' END FROM T GROUP BY CASE WHEN A > 1 THEN 'x' ELSE 'y' END",
        "SELECT C, ISNULL(A, 0) + 1 FROM T GROUP BY dbo.T.C, ISNULL(A, 0)",
        "SELECT count(*) FROM T GROUP BY A + 1 HAVING T.A + 1 > 0 ORDER BY A + 1",
        "SELECT DISTINCT A + 1 FROM T ORDER BY T.A + 1",
        "SELECT DISTINCT ROW_NUMBER() OVER (ORDER BY A) FROM T ORDER BY ROW_NUMBER() OVER (ORDER BY T.A)",
        "SELECT * FROM (SELECT A, N FROM T) AS D GROUP BY N, D.A",
    };
    for (const char* query : same)
        EXPECT_EQ(errorOf(*session, query), 0) << query;
    const std::pair<const char*, int> others[] = {
        {"SELECT A + 2 FROM T GROUP BY A + 1", 8120},
        {"SELECT 'a' + N FROM T GROUP BY 'A' + N", 8120},
        {"SELECT A FROM T GROUP BY CAST(A AS int)", 8120},
        {"SELECT CAST(A AS varchar(5)) FROM T GROUP BY CAST(A AS varchar(6))", 8120},
        {"SELECT * FROM (SELECT A, N FROM T) AS D GROUP BY N", 8120},
        {"SELECT count(*) FROM T GROUP BY A HAVING N = 'x'", 8121},
        {"SELECT count(*) FROM T GROUP BY A ORDER BY N", 8127},
        {"SELECT DISTINCT A + 1 FROM T ORDER BY A + 2", 145},
        {"SELECT A, N FROM T ORDER BY A, T.A", 169},
        {"SELECT A AS X, N FROM T ORDER BY UPPER(N), X, upper(T.N)", 169},
    };
    for (const auto& [query, error] : others)
        EXPECT_EQ(errorOf(*session, query), error) << query;
}

} // namespace
} // namespace merchantry::db
