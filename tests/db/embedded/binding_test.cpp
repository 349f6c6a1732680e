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

} // namespace
} // namespace merchantry::db
