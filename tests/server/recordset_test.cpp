#include "app/db/ado/recordset.h"
#include "base/text.h"
#include "base/textorder.h"
#include "tests/server/onaserver.h"

namespace merchantry::db {
namespace {

class RecordsetOnAServer : public OnAServer {
protected:
    void SetUp() override {
        OnAServer::SetUp();
        if (IsSkipped())
            return;
        table("Goods", "Id int IDENTITY NOT NULL PRIMARY KEY, Name varchar(20) NOT NULL, Price money NULL, Sold datetime NULL, "
                       "Kind varchar(5) NOT NULL DEFAULT 'new', Twice AS Price * 2");
        table("Shelves", "Shelf int NOT NULL, Id int NOT NULL, Note text NULL, CONSTRAINT UQ_Shelves UNIQUE (Shelf, Id)");
        run("INSERT INTO Goods (Name, Price) VALUES ('bell', 4.5) INSERT INTO Goods (Name) VALUES ('lamp') INSERT INTO Shelves VALUES (7, "
            "1, 'top')");
        run("IF OBJECT_ID('AllGoods') IS NOT NULL DROP PROCEDURE AllGoods");
        run("CREATE PROCEDURE AllGoods @From int AS SELECT Id, Name, Price FROM Goods WHERE Id >= @From ORDER BY Id");
        server::Address address = host->address();
        connection = std::make_shared<Connection>(provider);
        connection->Open("User ID=" + address.user + "; PASSWORD=" + address.password + "; Data Source=" + address.sourceText() +
                         "; Initial Catalog=unused");
    }
    void TearDown() override {
        connection.reset();
        OnAServer::TearDown();
    }

    std::shared_ptr<Recordset> open(const Sql& text) {
        auto rows = std::make_shared<Recordset>();
        rows->Open(text, connection, CursorType::Keyset, LockType::Optimistic);
        return rows;
    }

    Provider provider;
    ConnectionPtr connection;
};

TEST_F(RecordsetOnAServer, WritesThroughATableAJoinAndAProcedure) {
    const auto table = open("SELECT * FROM Goods ORDER BY Id");
    (*table)["name"] = "big bell";
    (*table)["Price"] = Currency::fromUnits(123456);
    table->Update();
    EXPECT_EQ(rowsOf("SELECT Name, Price FROM Goods WHERE Id = 1"), "big bell|12.3456");
    const auto join = open("SELECT g.Id, g.Name, s.Shelf, s.Id AS Place, s.Note FROM Goods g INNER JOIN Shelves s ON s.Id = g.Id");
    (*join)["Note"] = "second from the top";
    (*join)["Name"] = "bell";
    join->Update();
    EXPECT_EQ(rowsOf("SELECT Name, (SELECT CAST(Note AS varchar(30)) FROM Shelves) FROM Goods WHERE Id = 1"), "bell|second from the top");
    const auto called = open("AllGoods 2");
    (*called)["Name"] = "\xC3\xA9tag\xC3\xA8re";
    called->Update();
    EXPECT_EQ(rowsOf("SELECT Name FROM Goods WHERE Id = 2"), "\xC3\xA9tag\xC3\xA8re");
}

TEST_F(RecordsetOnAServer, AddsARowWithItsIdentityAndDefaultsAndDeletesIt) {
    const auto rows = open("SELECT Id, Name, Kind FROM Goods ORDER BY Id");
    rows->AddNew();
    (*rows)["Name"] = "pump";
    rows->Update();
    EXPECT_EQ((*rows)["Id"].text(), "3");
    EXPECT_EQ((*rows)["Kind"].text(), "new");
    rows->Delete();
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Goods"), "2");
}

TEST_F(RecordsetOnAServer, TellsARowThatSomeoneElseChanged) {
    const auto rows = open("SELECT Id, Name, Price FROM Goods ORDER BY Id");
    run("UPDATE Goods SET Name = 'theirs' WHERE Id = 1");
    (*rows)["Price"] = Currency::fromInteger(9);
    rows->Update(); // another column
    (*rows)["Name"] = "mine";
    try {
        rows->Update();
        FAIL();
    } catch (const DbError& error) {
        EXPECT_EQ(error.hresult(), kConflict);
    }
    EXPECT_EQ(rowsOf("SELECT Name, Price FROM Goods WHERE Id = 1"), "theirs|9");
}

TEST_F(RecordsetOnAServer, KnowsATableThatWasMadeSince) {
    open("SELECT * FROM Goods");
    table("Later", "Id int NOT NULL PRIMARY KEY, Name varchar(5)");
    run("INSERT INTO Later VALUES (1, 'a')");
    const auto rows = open("SELECT * FROM Later");
    (*rows)["Name"] = "b";
    rows->Update();
    EXPECT_EQ(rowsOf("SELECT Name FROM Later"), "b");
}

TEST_F(RecordsetOnAServer, ATablesShapeIsThatOfAStoreInAFile) {
    const TableShape shape = session->table("GOODS");
    ASSERT_EQ(shape.fields.size(), 6U);
    EXPECT_TRUE(shape.fields[0].identity);
    EXPECT_EQ(shape.fields[1].type.toText(), "varchar(20)");
    EXPECT_TRUE(shape.fields[4].hasDefault);
    EXPECT_TRUE(shape.fields[5].computed);
    ASSERT_EQ(shape.keys.size(), 1U);
    EXPECT_TRUE(sameText(joined(shape.keys[0], ","), "Id"));
    const TableShape shelves = session->table("Shelves");
    ASSERT_EQ(shelves.keys.size(), 1U);
    EXPECT_TRUE(sameText(joined(shelves.keys[0], ","), "Shelf,Id"));
    EXPECT_THROW(session->table("Nowhere"), DbError);
}

} // namespace
} // namespace merchantry::db
