#include "app/db/again.h"
#include "app/db/work.h"
#include "tests/server/onaserver.h"

namespace merchantry::db {
namespace {

// Two who change the same row: the other one holds it, this one waits for a moment only.
class BusyOnAServer : public OnAServer {
protected:
    void SetUp() override {
        OnAServer::SetUp();
        if (IsSkipped())
            return;
        table("Counted", "Id int NOT NULL PRIMARY KEY, Number int NOT NULL");
        run("INSERT INTO Counted VALUES (1, 0) INSERT INTO Counted VALUES (2, 0)");
        run("SET LOCK_TIMEOUT 200");
        other = host->session();
        hold();
    }
    void TearDown() override {
        other.reset();
        OnAServer::TearDown();
    }
    void hold() const {
        NoResult none;
        other->begin();
        other->execute("UPDATE Counted SET Number = Number WHERE Id = 1", none);
    }
    std::string numbers() const { return rowsOf("SELECT Number FROM Counted ORDER BY Id"); }

    std::unique_ptr<Session> other;
};

TEST_F(BusyOnAServer, AWholeTransactionIsRunOnceMoreAndSavedOnce) {
    int runs = 0;
    againWhenBusy(*session, [&] {
        if (++runs == 2)
            other->rollback();
        Work work(*session);
        run("UPDATE Counted SET Number = Number + 1 WHERE Id = 2");
        run("UPDATE Counted SET Number = Number + 1 WHERE Id = 1");
        work.commit();
    });
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(numbers(), "1;1");
}

TEST_F(BusyOnAServer, WhoStaysInTheWayIsTriedTwiceAndToldAsBusy) {
    int runs = 0;
    try {
        againWhenBusy(*session, [&] {
            ++runs;
            Work work(*session);
            run("UPDATE Counted SET Number = Number + 1 WHERE Id = 2");
            run("UPDATE Counted SET Number = Number + 1 WHERE Id = 1");
            work.commit();
        });
        ADD_FAILURE() << "was saved";
    } catch (const DbError& error) {
        EXPECT_EQ(error.category(), DbError::Category::Busy) << error.what();
    }
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(session->transactionDepth(), 0);
    other->rollback();
    EXPECT_EQ(numbers(), "0;0");
}

// What came before in the same transaction would be done twice, or lost.
TEST_F(BusyOnAServer, APartOfATransactionIsNotRunAgain) {
    int runs = 0;
    Work work(*session);
    run("UPDATE Counted SET Number = Number + 1 WHERE Id = 2");
    EXPECT_THROW(againWhenBusy(*session,
                               [&] {
                                   ++runs;
                                   run("UPDATE Counted SET Number = Number + 1 WHERE Id = 1");
                               }),
                 DbError);
    EXPECT_EQ(runs, 1);
}

} // namespace
} // namespace merchantry::db
