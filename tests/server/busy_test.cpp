#include "app/db/again.h"
#include "app/db/work.h"
#include "tests/server/onaserver.h"

#include <chrono>
#include <functional>
#include <thread>

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
    std::thread letGo;
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

// Counts how often it is asked, and lets go of the row, or gives up.
class Asked : public Waiter {
public:
    explicit Asked(std::function<bool(int times)> answer) : answer_(std::move(answer)) {}
    bool goOn(std::chrono::milliseconds waited) override {
        EXPECT_GT(waited.count(), 0);
        return answer_(++times);
    }
    void over() override { ++ends; }
    int times = 0;
    int ends = 0;

private:
    std::function<bool(int times)> answer_;
};

TEST_F(BusyOnAServer, AWaiterIsAskedUntilTheStatementRuns) {
    Asked asked([this](int times) {
        if (times == 5)
            other->rollback();
        return true;
    });
    session = host->session();
    session->setWaiter(&asked);
    run("UPDATE Counted SET Number = Number + 1 WHERE Id = 1");
    EXPECT_GE(asked.times, 5);
    EXPECT_EQ(asked.ends, 1);
    EXPECT_EQ(numbers(), "1;0");
    const int before = asked.times;
    run("UPDATE Counted SET Number = Number + 1 WHERE Id = 1");
    EXPECT_EQ(asked.times, before) << "nobody was in the way";
}

TEST_F(BusyOnAServer, WhoGivesUpWaitingIsToldAsBusyAndNotTriedAgain) {
    // A compatible server hears the cancel only when the row is free.
    Asked asked([this](int) {
        letGo = std::thread([this] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            other->rollback();
        });
        return false;
    });
    session = host->session();
    session->setWaiter(&asked);
    int runs = 0;
    try {
        againWhenBusy(*session, [&] {
            ++runs;
            Work work(*session);
            run("UPDATE Counted SET Number = Number + 1 WHERE Id = 1");
            work.commit();
        });
        ADD_FAILURE() << "was saved";
    } catch (const DbError& error) {
        EXPECT_EQ(error.category(), DbError::Category::Busy) << error.what();
    }
    letGo.join();
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(asked.times, 1);
    EXPECT_EQ(asked.ends, 1);
    EXPECT_EQ(numbers(), "0;0");
}

} // namespace
} // namespace merchantry::db
