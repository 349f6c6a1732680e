#include "app/db/embedded/filecopy.h"
#include "tests/db/embedded/rows.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace merchantry::db {
namespace {

class Errors : public testing::Test {
protected:
    void SetUp() override {
        runScript(*session, "CREATE TABLE par (id INT PRIMARY KEY, name VARCHAR(5) NOT NULL UNIQUE)\n"
                            "CREATE TABLE chi (id INT, pid INT REFERENCES par (id), n SMALLINT CHECK (n > 0), q DECIMAL(5,2))\n"
                            "CREATE UNIQUE INDEX ix ON chi (id)\n"
                            "INSERT INTO par VALUES (1, 'a') INSERT INTO chi VALUES (1, 1, 1, 1)\nGO\n"
                            "CREATE PROCEDURE p @a INT AS SELECT @a");
    }
    std::unique_ptr<Session> session = Store::scratch()->session();
};

TEST_F(Errors, haveTheServersNumbersAndTheRightKind) {
    struct Bad {
        const char* batch;
        int number;
        std::uint32_t hresult;
    };
    const Bad kBad[] = {
        {"INSERT INTO par VALUES (1, 'b')", 2627, kIntegrityError},
        {"INSERT INTO par VALUES (2, 'A ')", 2627, kIntegrityError},
        {"INSERT INTO chi VALUES (1, 1, 1, 1)", 2601, kIntegrityError},
        {"INSERT INTO chi VALUES (2, 9, 1, 1)", 547, kIntegrityError},
        {"INSERT INTO chi VALUES (2, 1, 0, 1)", 547, kIntegrityError},
        {"DELETE FROM par", 547, kIntegrityError},
        {"INSERT INTO par VALUES (2, NULL)", 515, kIntegrityError},
        {"UPDATE par SET name = NULL", 515, kIntegrityError},
        {"INSERT INTO par VALUES (2, 'toolong')", 8152, kGeneralError},
        {"INSERT INTO chi (n) VALUES (70000)", 220, kGeneralError},
        {"INSERT INTO chi (q) VALUES (1000)", 8115, kGeneralError},
        {"INSERT INTO chi (n) VALUES ('x')", 245, kGeneralError},
        {"SELECT 1 / 0", 8134, kGeneralError},
        {"SELECT * FROM nope", 208, kSyntaxError},
        {"SELECT nope FROM par", 207, kSyntaxError},
        {"nope 1", 2812, kSyntaxError},
        {"SELECT FROM par", 156, kSyntaxError},
        {"SELECT 'a", 105, kSyntaxError},
        {"p", 201, kGeneralError},
        {"p 1, 2", 8144, kGeneralError},
        {"COMMIT", 3902, kGeneralError},
        {"RAISERROR ('no', 16, 1)", 50000, kGeneralError},
    };
    for (const Bad& bad : kBad) {
        try {
            NoResult none;
            session->execute(bad.batch, none);
            ADD_FAILURE() << bad.batch;
        } catch (const DbError& error) {
            EXPECT_EQ(error.native(), bad.number) << bad.batch << ": " << error.what();
            EXPECT_EQ(error.hresult(), bad.hresult) << bad.batch;
            EXPECT_GE(error.line(), 1) << bad.batch;
        }
    }
    EXPECT_EQ(rowsOf(*session, "SELECT COUNT(*) FROM par SELECT COUNT(*) FROM chi"), "1\n--\n1\n");
}

TEST_F(Errors, nameTheLineAndTheProcedure) {
    runScript(*session, "CREATE PROCEDURE bad AS\nSELECT 1\nSELECT 1 / 0");
    try {
        rowsOf(*session, "SELECT 1\nEXEC bad");
        ADD_FAILURE();
    } catch (const DbError& error) {
        EXPECT_EQ(error.line(), 3);
        EXPECT_EQ(error.procedure(), "bad");
    }
}

// The batch goes on behind a statement that failed; the sink hears of the later errors, the first one is thrown.
TEST_F(Errors, letTheBatchGoOn) {
    class Sink : public NoResult {
    public:
        void error(const DbError& error) override { numbers.push_back(error.native()); }
        std::vector<int> numbers;
    } sink;
    try {
        session->execute("INSERT INTO par VALUES (1, 'x') SELECT 1 / 0 INSERT INTO par VALUES (2, 'y')", sink);
        ADD_FAILURE();
    } catch (const DbError& error) {
        EXPECT_EQ(error.native(), 2627);
    }
    EXPECT_EQ(sink.numbers, std::vector<int>{8134});
    EXPECT_EQ(rowsOf(*session, "SELECT COUNT(*) FROM par"), "2\n");
}

// Texts that programs make may be long; too long is an error and no crash.
TEST_F(Errors, longChainsAreRunOrRefused) {
    const auto chain = [](const std::string& head, const std::string& link, int count) {
        std::string text = head;
        for (int i = 0; i < count; ++i)
            text += link;
        return text;
    };
    EXPECT_EQ(rowsOf(*session, chain("SELECT 1", "+1", 90)), "91\n");
    EXPECT_EQ(rowsOf(*session, "SELECT COUNT(*) FROM (" + chain("SELECT 1 AS a", " UNION ALL SELECT 1", 400) + ") d"), "401\n");
    EXPECT_EQ(rowsOf(*session, "SELECT COUNT(*) FROM par WHERE id IN (" + chain("1", ",1", 5000) + ")"), "1\n");
    EXPECT_EQ(rowsOf(*session, "SELECT LEN(" + chain("'a'", "+'b'", 500) + ")"), "501\n");
    EXPECT_EQ(rowsOf(*session, chain("SELECT COUNT(*) FROM par WHERE id = 1", " OR id = 7", 500)), "1\n");
    EXPECT_EQ(errorOf(*session, chain("SELECT 1", "*1", 300)), 191);
    for (const char* link : {"+1", " AND 1 = 1", " UNION ALL SELECT 1", "-(1)"})
        EXPECT_EQ(errorOf(*session, chain("SELECT 1 WHERE 1 = 1", link, 100'000)), 191) << link;
    EXPECT_EQ(errorOf(*session, chain("INSERT INTO par VALUES (1, 'x')", ",(1, 'x')", 20'000)), 2627);
}

// A default that divides by zero, reads a variable or is longer than any number once ran outside every frame and brought the process down.
TEST_F(Errors, aDefaultIsAConstantOrRefused) {
    const auto withDefault = [](const std::string& value) { return "CREATE PROCEDURE d @a INT = " + value + " AS SELECT @a"; };
    for (const char* value : {"1/0", "-'abc'", "@b", "@@ERROR", "(5)", "GETDATE()", "5 + 1", "- -5"})
        EXPECT_EQ(errorOf(*session, withDefault(value)), 102) << value;
    EXPECT_EQ(errorOf(*session, withDefault(std::string(44, '4'))), 1007);
    EXPECT_EQ(errorOf(*session, "EXEC d"), 2812);
    runScript(*session, "CREATE PROCEDURE d @a INT = 99999999999, @t VARCHAR(5) = bare, @m MONEY = -$1.5 AS SELECT @a, @t, @m\nGO\n"
                        "CREATE PROCEDURE outside AS DECLARE @v INT SET @v = 7 EXEC d SELECT @v, @@NESTLEVEL");
    EXPECT_EQ(errorOf(*session, "EXEC d"), 8114);
    EXPECT_EQ(rowsOf(*session, "EXEC d @a = 1"), "1|bare|-1.5\n");
    EXPECT_EQ(rowsOf(*session, "DECLARE @v INT SET @v = 3 BEGIN TRY EXEC outside END TRY BEGIN CATCH SELECT ERROR_NUMBER() END CATCH "
                               "SELECT @v, @@NESTLEVEL"),
              "8114\n--\n3|0\n");
}

// Whoever takes the rows may fail in the middle of them, at any depth: the session is as it was before the batch.
TEST_F(Errors, whatEndsABatchFromOutsideLeavesNothingBehind) {
    struct Thrower : NoResult {
        void row(const RowView&) override { throw std::length_error("no room for the row"); }
    } thrower;
    runScript(*session, "CREATE PROCEDURE shows AS SELECT 1\nGO\nCREATE PROCEDURE deep AS EXEC shows\nGO\n"
                        "CREATE TRIGGER tells ON chi AFTER INSERT AS SELECT id FROM inserted\nGO\n"
                        "CREATE VIEW chv AS SELECT id FROM chi\nGO\n"
                        "CREATE TRIGGER instead ON chv INSTEAD OF INSERT AS SELECT id FROM inserted");
    for (const char* batch : {"SELECT 1", "EXEC deep", "INSERT INTO chi (id) VALUES (5)", "INSERT INTO chv (id) VALUES (5)",
                              "DELETE FROM chi OUTPUT deleted.id", "BEGIN TRY SELECT 1 END TRY BEGIN CATCH SELECT 2 END CATCH",
                              "BEGIN TRY SELECT 1 / 0 END TRY BEGIN CATCH EXEC deep END CATCH"}) {
        EXPECT_THROW(session->execute(batch, thrower), std::length_error) << batch;
        EXPECT_EQ(rowsOf(*session, "SELECT @@TRANCOUNT, @@NESTLEVEL, ERROR_NUMBER() SELECT COUNT(*) FROM chi"), "0|0|NULL\n--\n1\n")
            << batch;
    }
    EXPECT_EQ(errorOf(*session, "UPDATE chi SET n = 2 SELECT 1 / 0"), 8134);
    EXPECT_EQ(rowsOf(*session, "SELECT n FROM chi"), "2\n");
}

TEST_F(Errors, aCheckMayAskForTheTimeAndTheSession) {
    runScript(*session, "CREATE TABLE due (id INT PRIMARY KEY, at DATETIME CHECK (at <= GETDATE()), "
                        "day DATETIME CHECK (DATEPART(weekday, day) <> 1), who VARCHAR(9) CHECK (who = USER_NAME()))");
    EXPECT_EQ(errorOf(*session, "INSERT due (id, at) VALUES (1, DATEADD(day, -1, GETDATE()))"), 0);
    EXPECT_EQ(errorOf(*session, "INSERT due (id, at) VALUES (2, DATEADD(day, 1, GETDATE()))"), 547);
    EXPECT_EQ(errorOf(*session, "UPDATE due SET at = '99991231'"), 547);
    EXPECT_EQ(errorOf(*session, "UPDATE due SET day = '2024-02-25'"), 547); // a Sunday
    EXPECT_EQ(errorOf(*session, "UPDATE due SET who = 'sa'"), 547);
    EXPECT_EQ(errorOf(*session, "UPDATE due SET who = 'dbo', day = '2024-02-26'"), 0);
    EXPECT_EQ(errorOf(*session, "ALTER TABLE due ADD CHECK (at > GETDATE())"), 547);
}

TEST_F(Errors, aStoreWithSuchACheckIsSound) {
    const TemporaryFile file;
    runScript(*Store::create(file.path())->session(),
              "CREATE TABLE due (at DATETIME CHECK (at > GETDATE()), code VARCHAR(5) CHECK (code LIKE 'a%'))\n"
              "GO\nINSERT due VALUES (DATEADD(ms, 20, GETDATE()), 'ab') WAITFOR DELAY '00:00:00.050'");
    EXPECT_EQ(damageOf(file.path()), std::vector<std::string>());
}

// Which of several references it was, SQLite does not say; the second run that finds it out leaves no trace.
TEST_F(Errors, nameTheRuleThatWasBroken) {
    runScript(*session, "CREATE TABLE two (id INT IDENTITY PRIMARY KEY, a INT CONSTRAINT FK_a REFERENCES par (id), "
                        "b INT CONSTRAINT FK_b REFERENCES par (id), up INT CONSTRAINT FK_up REFERENCES two (id), "
                        "n INT CONSTRAINT CK_n CHECK (n > 0))\n"
                        "INSERT two VALUES (1, 1, NULL, 1) INSERT two VALUES (1, 1, 1, 1)");
    const std::pair<const char*, const char*> kBad[] = {
        {"INSERT two VALUES (9, 1, NULL, 1)", "INSERT statement conflicted with the FOREIGN KEY constraint \"FK_a\""},
        {"INSERT two VALUES (1, 9, NULL, 1)", "INSERT statement conflicted with the FOREIGN KEY constraint \"FK_b\""},
        {"INSERT two VALUES (1, 1, 9, 1)", "INSERT statement conflicted with the FOREIGN KEY SAME TABLE constraint \"FK_up\""},
        {"UPDATE two SET b = 9", "UPDATE statement conflicted with the FOREIGN KEY constraint \"FK_b\""},
        {"UPDATE par SET id = 7", "UPDATE statement conflicted with the REFERENCE constraint"},
        {"DELETE two WHERE id = 1", "DELETE statement conflicted with the SAME TABLE REFERENCE constraint \"FK_up\""},
        {"UPDATE two SET n = 0", "UPDATE statement conflicted with the CHECK constraint \"CK_n\""},
        {"DELETE par", "DELETE statement conflicted with the REFERENCE constraint"},
    };
    for (const auto& [batch, words] : kBad) {
        try {
            rowsOf(*session, batch);
            ADD_FAILURE() << batch;
        } catch (const DbError& error) {
            EXPECT_EQ(error.native(), 547) << batch;
            EXPECT_NE(std::string(error.what()).find(words), std::string::npos) << batch << ": " << error.what();
        }
    }
    EXPECT_EQ(
        rowsOf(*session, "DECLARE @v INT SET @v = 5 BEGIN TRY UPDATE two SET @v = b = @v + 1 END TRY BEGIN CATCH SELECT @v END CATCH"),
        "7\n"); // one more for each row, once
    EXPECT_EQ(rowsOf(*session, "SELECT @@TRANCOUNT INSERT two (n) VALUES (1) SELECT SCOPE_IDENTITY() SELECT COUNT(*) FROM two WHERE b = 1"),
              "0\n--\n6\n--\n2\n"); // three numbers went with the inserts that failed, as on the server
}

TEST_F(Errors, aNumberTooLargeForAFloatIsTold) {
    for (const char* value :
         {"1e400", "-1e400", "1e300 * 1e300", "1.7e308 + 1.7e308", "-1.7e308 - 1.7e308", "1e300 / 1e-300", "EXP(1000)", "POWER(1e300, 2)",
          "SQUARE(1e200)", "CAST('1e400' AS FLOAT)", "SUM(a) FROM (SELECT 1.7e308 AS a UNION ALL SELECT 1.7e308) d"})
        EXPECT_EQ(errorOf(*session, std::string("SELECT ") + value), 8115) << value;
    EXPECT_EQ(errorOf(*session, "SELECT SQRT(-1)"), 3623);
    EXPECT_EQ(errorOf(*session, "SELECT LOG(-1)"), 3623);
    EXPECT_EQ(rowsOf(*session, "SELECT 2e300 * 4, NULL * 1e0, 1e-300 * 1e-300"), "8e+300|NULL|0\n");
}

TEST_F(Errors, aScopeWithoutARowHasNoIdentity) {
    runScript(*session, "CREATE TABLE num (id INT IDENTITY(50, 1), a INT)\nGO\n"
                        "CREATE PROCEDURE adds @n INT AS INSERT num SELECT 1 WHERE @n > 0 SELECT SCOPE_IDENTITY()\nGO\n"
                        "CREATE PROCEDURE gives AS SELECT 5 UNION ALL SELECT 6");
    EXPECT_EQ(rowsOf(*session, "INSERT num VALUES (1) EXEC adds 0 SELECT SCOPE_IDENTITY(), @@IDENTITY"), "NULL\n--\n50|50\n");
    EXPECT_EQ(rowsOf(*session, "EXEC adds 1 EXEC adds 0"), "51\n--\nNULL\n");
    EXPECT_EQ(rowsOf(*session, "INSERT num EXEC gives SELECT SCOPE_IDENTITY()"), "53\n");
}

TEST_F(Errors, sayWhatIsNotSupported) {
    for (const char* batch : {"MERGE par USING chi ON 1 = 1 WHEN MATCHED THEN DELETE;", "SELECT TOP 1 WITH TIES id FROM par ORDER BY id",
                              "SELECT a.id FROM par a CROSS APPLY (SELECT 1 AS x) b"}) {
        try {
            rowsOf(*session, batch);
            ADD_FAILURE() << batch;
        } catch (const DbError& error) {
            EXPECT_EQ(error.category(), DbError::Category::Unsupported) << batch;
        }
    }
}

} // namespace
} // namespace merchantry::db
