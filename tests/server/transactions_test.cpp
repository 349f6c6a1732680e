#include "app/db/work.h"
#include "tests/server/cable.h"
#include "tests/server/onaserver.h"

namespace merchantry::db {
namespace {

class TransactionsOnAServer : public OnAServer {
protected:
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
    server::Address address = host->address();
    Cable cable(address.host, address.port == 0 ? 1433 : address.port);
    address.host = "127.0.0.1";
    address.port = cable.port();
    const auto far = std::make_shared<server::Server>(address)->session();
    NoResult none;
    far->begin();
    far->execute("INSERT INTO Booked VALUES (1)", none);
    cable.cut();
    std::string said;
    try {
        far->execute("INSERT INTO Booked VALUES (2)", none);
    } catch (const DbError& error) {
        EXPECT_EQ(error.category(), DbError::Category::Storage);
        said = error.what();
    }
    EXPECT_NE(said.find("was lost"), std::string::npos) << said;
    EXPECT_EQ(far->transactionDepth(), 0);
    far->execute("INSERT INTO Booked VALUES (3)", none);
    EXPECT_EQ(rowsOf("SELECT Id FROM Booked"), "3");
}

} // namespace
} // namespace merchantry::db
