#include "app/db/servererrors.h"
#include "app/db/work.h"
#include "tests/server/cable.h"
#include "tests/server/onaserver.h"

namespace merchantry::db {
namespace {

class TransactionsOnAServer : public OnAServer {
protected:
    // The consequence that a lost connection's sentence tells; empty when the batch was run.
    static std::string lostBy(Session& far, const std::string& batch) {
        try {
            NoResult none;
            far.execute(batch, none);
        } catch (const NotConnected& error) {
            const std::string said = error.what();
            const std::size_t lost = said.find(" was lost. ");
            return lost == std::string::npos ? said : said.substr(lost + 11, said.rfind(". ") - lost - 10);
        }
        return "";
    }

    void SetUp() override {
        OnAServer::SetUp();
        if (!IsSkipped())
            table("Booked", "Id int NOT NULL PRIMARY KEY");
    }
};

TEST_F(TransactionsOnAServer, AreTakenBackOrKept) {
    {
        Work work(*session);
        run("INSERT INTO Booked VALUES (1)");
        EXPECT_EQ(session->transactionDepth(), 1);
    }
    EXPECT_EQ(session->transactionDepth(), 0);
    {
        Work work(*session);
        run("INSERT INTO Booked VALUES (2)");
        work.commit();
    }
    EXPECT_EQ(rowsOf("SELECT Id FROM Booked"), "2");
}

TEST_F(TransactionsOnAServer, AreCountedAlsoWhereABatchBeginsThem) {
    run("BEGIN TRAN INSERT INTO Booked VALUES (1)");
    EXPECT_EQ(session->transactionDepth(), 1);
    EXPECT_EQ(errorOf("INSERT INTO Booked VALUES (1)").category(), DbError::Category::Integrity);
    EXPECT_EQ(session->transactionDepth(), 1);
    session->rollback();
    EXPECT_EQ(session->transactionDepth(), 0);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Booked"), "0");
}

TEST_F(TransactionsOnAServer, ThatAnErrorEndedAreNoticed) {
    run("IF OBJECT_ID('BookTwice') IS NOT NULL DROP PROCEDURE BookTwice");
    run("CREATE PROCEDURE BookTwice AS SET XACT_ABORT ON INSERT INTO Booked VALUES (1) INSERT INTO Booked VALUES (1)");
    session->begin();
    run("INSERT INTO Booked VALUES (5)");
    EXPECT_EQ(errorOf("EXEC BookTwice").category(), DbError::Category::Integrity);
    EXPECT_EQ(session->transactionDepth(), 0);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Booked"), "0");
    Work work(*session);
    run("INSERT INTO Booked VALUES (6)");
    work.commit();
    EXPECT_EQ(session->transactionDepth(), 0);
    EXPECT_EQ(rowsOf("SELECT Id FROM Booked"), "6");
}

TEST_F(TransactionsOnAServer, GoWithTheSessionThatLeftThemOpen) {
    session->begin();
    run("INSERT INTO Booked VALUES (1)");
    session = host->session();
    EXPECT_EQ(session->transactionDepth(), 0);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Booked"), "0");
}

TEST_F(TransactionsOnAServer, SettingsAndTemporaryTablesAreNotHandedToTheNextSession) {
    run("CREATE TABLE #mine (a int) SET ROWCOUNT 1");
    session.reset();
    session = host->session();
    EXPECT_EQ(rowsOf("SELECT 1 WHERE OBJECT_ID('tempdb..#mine') IS NOT NULL"), "");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM (SELECT 1 a UNION ALL SELECT 2) x"), "2");
}

TEST_F(TransactionsOnAServer, ALostConnectionIsOneSentenceAndTheNextCommandConnectsAnew) {
    Cable cable = cableTo(host->address());
    const auto far = std::make_shared<server::Server>(through(cable, host->address()))->session();
    NoResult none;
    {
        Work work(*far);
        far->execute("INSERT INTO Booked VALUES (1)", none);
        cable.cut();
        EXPECT_EQ(lostBy(*far, "INSERT INTO Booked VALUES (2)"), "What was not saved yet is not saved.");
        // What went on in spite of it would be saved without the first row.
        EXPECT_EQ(lostBy(*far, "INSERT INTO Booked VALUES (4)"), "What was not saved yet is not saved.");
        EXPECT_THROW(work.commit(), NotConnected);
    }
    EXPECT_EQ(far->transactionDepth(), 0);
    far->execute("INSERT INTO Booked VALUES (3)", none);
    EXPECT_EQ(rowsOf("SELECT Id FROM Booked"), "3");
}

TEST_F(TransactionsOnAServer, AConnectionThatEndedWhileIdleIsReplacedUnseen) {
    Cable cable = cableTo(host->address());
    const auto server = std::make_shared<server::Server>(through(cable, host->address()));
    auto far = server->session();
    cable.cut();
    NoResult none;
    far->execute("INSERT INTO Booked VALUES (1)", none);
    far.reset(); // into the pool
    cable.cut();
    far = server->session();
    far->execute("INSERT INTO Booked VALUES (2)", none);
    EXPECT_EQ(rowsOf("SELECT Id FROM Booked ORDER BY Id"), "1;2");
    // What was made on the connection itself went with it.
    far->execute("CREATE TABLE #mine (a int)", none);
    cable.cut();
    EXPECT_NE(lostBy(*far, "INSERT INTO #mine VALUES (1)"), "");
}

// An answer that never came leaves open whether the change was saved.
TEST_F(TransactionsOnAServer, AConnectionLostWhileAChangeIsSavedSaysThatItMayBeSaved) {
    Cable cable = cableTo(host->address());
    const auto far = std::make_shared<server::Server>(through(cable, host->address()))->session();
    const std::string unsure = "If you were saving, please look before you repeat it: the change may have been saved or not.";
    cable.cutAt(1, Cable::Where::BehindIt);
    EXPECT_EQ(lostBy(*far, "INSERT INTO Booked VALUES (1)"), unsure);
    NoResult none;
    far->execute("SELECT 1", none);
    cable.cutAt(1, Cable::Where::BehindIt);
    EXPECT_EQ(lostBy(*far, "SELECT Id FROM Booked"), "What was not saved yet is not saved.");
    far->begin();
    far->execute("INSERT INTO Booked VALUES (2)", none);
    cable.cutAt(1, Cable::Where::BehindIt);
    try {
        far->commit();
        ADD_FAILURE() << "was saved";
    } catch (const NotConnected& error) {
        EXPECT_NE(std::string(error.what()).find(unsure), std::string::npos) << error.what();
    }
    far->rollback();
    EXPECT_EQ(far->transactionDepth(), 0);
}

} // namespace
} // namespace merchantry::db
