// What one change leaves behind: its rows or none of them, the numbers it gave, and the triggers that it fired.

#include "tests/db/teststore.h"

#include <sqlite3.h>

namespace merchantry::db {
namespace {

class Changes : public OnAStore {
protected:
    Changes() {
        run("CREATE TABLE A (ID int IDENTITY(1, 1), N int CHECK (N < 100)) CREATE TABLE B (ID int IDENTITY(1, 1), N int)");
        run("CREATE TABLE Parent (P int PRIMARY KEY, N int CHECK (N < 100)) CREATE TABLE Child (P int REFERENCES Parent (P) ON DELETE "
            "CASCADE)");
    }
    // The last number of a table as another process finds it.
    std::string lastInFile(const std::string& table) const {
        sqlite3* db = nullptr;
        std::string last;
        sqlite3_open(file.c_str(), &db);
        const auto take = [](void* text, int, char** cells, char**) {
            *static_cast<std::string*>(text) = cells[0];
            return 0;
        };
        sqlite3_exec(db, ("SELECT last FROM ts_identity WHERE id IN (SELECT id FROM ts_object WHERE name = '" + table + "')").c_str(), take,
                     &last, nullptr);
        sqlite3_close(db);
        return last;
    }
    bool fails(const std::string& batch) {
        try {
            run(batch);
            return false;
        } catch (const DbError&) {
            return true;
        }
    }
};

TEST_F(Changes, GiveNumbersThatAreInTheFileWithTheCommit) {
    run("CREATE TRIGGER ToB ON A AFTER INSERT AS INSERT INTO B (N) SELECT N FROM inserted");
    run("BEGIN TRAN INSERT INTO A (N) VALUES (1), (2)");
    EXPECT_EQ(rowsOf("SELECT IDENT_CURRENT('A'), IDENT_CURRENT('B')"), "2|2");
    run("COMMIT");
    EXPECT_EQ(lastInFile("A") + lastInFile("B"), "22");
    run("INSERT INTO A (N) VALUES (3)"); // its trigger's too
    EXPECT_EQ(lastInFile("A") + lastInFile("B"), "33");
    run("BEGIN TRAN INSERT INTO A (N) VALUES (4) ROLLBACK");
    EXPECT_EQ(lastInFile("A"), "3");
    run("BEGIN TRAN SAVE TRAN here INSERT INTO A (N) VALUES (5) ROLLBACK TRAN here INSERT INTO A (N) VALUES (6) COMMIT");
    EXPECT_EQ(rowsOf("SELECT ID FROM A WHERE N = 6"), "6"); // numbers of what was rolled back are used up
    EXPECT_EQ(lastInFile("A"), "6");
    run("BEGIN TRAN INSERT INTO B (N) VALUES (7) TRUNCATE TABLE B INSERT INTO B (N) VALUES (8) COMMIT");
    EXPECT_EQ(rowsOf("SELECT ID, N FROM B") + lastInFile("B"), "1|81");
    run("BEGIN TRAN INSERT INTO B (N) VALUES (9) DROP TABLE B CREATE TABLE B (ID int IDENTITY(1, 1), N int) COMMIT");
    EXPECT_EQ(lastInFile("B"), "");
}

TEST_F(Changes, ThatFailInATransactionUndoThemselvesAlone) {
    run("BEGIN TRAN INSERT INTO A (N) VALUES (1) INSERT INTO Parent VALUES (1, 1), (2, 2) INSERT INTO Child VALUES (1)");
    EXPECT_TRUE(fails("INSERT INTO A (N) SELECT 2 UNION ALL SELECT 100"));
    EXPECT_TRUE(fails("UPDATE Parent SET N = N * 60"));
    EXPECT_TRUE(fails("INSERT INTO Child SELECT 2 UNION ALL SELECT 3"));
    EXPECT_TRUE(fails("INSERT INTO Parent SELECT 3, 3 UNION ALL SELECT 1, 1"));
    run("COMMIT");
    EXPECT_EQ(rowsOf("SELECT N FROM A"), "1");
    EXPECT_EQ(rowsOf("SELECT P FROM Child"), "1");
    EXPECT_EQ(rowsOf("SELECT SUM(N), COUNT(*) FROM Parent"), "3|2");
}

TEST_F(Changes, FireTheTriggersThatStandAtThatMoment) {
    const auto fired = [&](const std::string& change) {
        run("DELETE FROM B " + change);
        return rowsOf("SELECT N FROM B ORDER BY ID");
    };
    EXPECT_EQ(fired("INSERT INTO A (N) VALUES (1)"), "");
    run("CREATE TRIGGER Made ON A AFTER INSERT AS INSERT INTO B (N) SELECT N FROM inserted");
    EXPECT_EQ(fired("INSERT INTO A (N) VALUES (2)"), "2");
    EXPECT_EQ(fired("UPDATE A SET N = 3"), "");
    run("CREATE TRIGGER Changed ON A AFTER UPDATE AS INSERT INTO B (N) SELECT deleted.N FROM deleted");
    EXPECT_EQ(fired("UPDATE A SET N = 4 WHERE ID = 1"), "3");
    run("ALTER TABLE A DISABLE TRIGGER Changed");
    EXPECT_EQ(fired("UPDATE A SET N = 5"), "");
    run("ALTER TABLE A ENABLE TRIGGER Changed");
    EXPECT_EQ(fired("UPDATE A SET N = 6 WHERE ID = 1"), "5");
    run("CREATE TRIGGER Orphaned ON Child AFTER DELETE AS INSERT INTO B (N) SELECT P FROM deleted");
    run("INSERT INTO Parent VALUES (7, 7) INSERT INTO Child VALUES (7)");
    EXPECT_EQ(fired("UPDATE Parent SET N = 8"), "");
    EXPECT_EQ(fired("DELETE FROM Parent"), "7"); // the child went with its parent
    run("DROP TRIGGER Orphaned DROP TRIGGER Made");
    EXPECT_EQ(fired("INSERT INTO A (N) VALUES (9)"), "");
}

// The triggers behind one that changes a definition were looked for in a catalogue that was gone.
TEST_F(Changes, FireTheTriggersBehindOneThatDefinesObjects) {
    run("CREATE TRIGGER First ON A AFTER INSERT AS CREATE TABLE Made (X int) DROP TRIGGER Third");
    run("CREATE TRIGGER Second ON A AFTER INSERT AS INSERT INTO B (N) VALUES (2)");
    run("CREATE TRIGGER Third ON A AFTER INSERT AS INSERT INTO B (N) VALUES (3)");
    run("CREATE TRIGGER Fourth ON A AFTER INSERT AS INSERT INTO B (N) VALUES (4)");
    run("INSERT INTO A (N) VALUES (1)");
    EXPECT_EQ(rowsOf("SELECT N FROM B ORDER BY ID"), "2;4");
    EXPECT_EQ(rowsOf("SELECT OBJECT_NAME(OBJECT_ID('Made')), OBJECT_ID('Third')"), "Made|NULL");
}

// A copy of a store knows numbers whose rows are gone.
TEST_F(Changes, GoOnBehindNumbersThatNoRowHas) {
    run("CREATE TABLE gone (id int IDENTITY(10, 5), v int) EXEC sp_useidentity 'gone', 40 EXEC sp_useidentity 'gone', 20");
    EXPECT_EQ(rowsOf("INSERT INTO gone (v) VALUES (1) SELECT id FROM gone"), "45");
    run("BEGIN TRANSACTION EXEC sp_useidentity 'gone', 60 COMMIT CREATE TABLE plain (id int)");
    EXPECT_EQ(rowsOf("SELECT IDENT_CURRENT('gone')"), "60");
    EXPECT_THROW(run("EXEC sp_useidentity 'plain', 1"), DbError);
    EXPECT_EQ(lastInFile("gone"), "60");
}

} // namespace
} // namespace merchantry::db
