#include "app/db/ado/recordset.h"

#include "tests/db/teststore.h"

namespace merchantry::db {
namespace {

// A small store in a file of its own, and a connection to it.
class Recordsets : public OnAStore {
protected:
    Recordsets() {
        connection = std::make_shared<Connection>(provider);
        connection->Open("Provider=SQLOLEDB.1; User ID=sa; PASSWORD=; Data Source=" + file.string() + "; Initial Catalog=Tillmark2k");
        for (const char* batch : {"CREATE TABLE Dept (DeptID int IDENTITY(1, 1) PRIMARY KEY, Dept varchar(20) NOT NULL DEFAULT 'new')",
                                  "CREATE TABLE Thing (SKU varchar(10) NOT NULL, MatrixSKU varchar(10) NOT NULL, Name varchar(20) NULL, "
                                  "Qty smallint NOT NULL DEFAULT 7, "
                                  "Price money NULL, Sold datetime NULL, Active bit NOT NULL DEFAULT 1, DeptID int NULL REFERENCES Dept "
                                  "(DeptID), PRIMARY KEY (SKU, MatrixSKU))",
                                  "INSERT INTO Dept (Dept) VALUES ('Bags'), ('Cups')",
                                  "INSERT INTO Thing (SKU, MatrixSKU, Name, Price, DeptID) VALUES ('a', 'a', 'Alpha', 2.5, 1), ('b', 'b', "
                                  "'Beta', NULL, 2), ('b', 'c', NULL, 1, NULL)",
                                  "CREATE PROCEDURE things @sku varchar(10) AS SELECT * FROM Thing WHERE SKU = @sku ORDER BY MatrixSKU"})
            run(batch);
    }
    std::shared_ptr<Recordset> open(const Sql& text, LockType lock = LockType::Optimistic) {
        auto rows = std::make_shared<Recordset>();
        rows->Open(text, connection, CursorType::Keyset, lock);
        return rows;
    }
    template <class Act> std::uint32_t hresultOf(Act act) {
        try {
            act();
            return 0;
        } catch (const DbError& error) {
            return error.hresult();
        }
    }

    Provider provider;
    ConnectionPtr connection;
};

TEST_F(Recordsets, WalkTheRows) {
    const auto rows = open("SELECT SKU, Name, Qty, Price, Active FROM Thing ORDER BY MatrixSKU", LockType::ReadOnly);
    EXPECT_EQ(rows->RecordCount(), 3);
    EXPECT_EQ((*rows)["name"].text(), "Alpha");
    EXPECT_EQ((*rows)["Price"].Value(), Value(Currency::fromText("2.5")));
    EXPECT_EQ((*rows)["Active"].Value(), Value(true));
    rows->MoveLast();
    EXPECT_TRUE((*rows)["Name"].isNull());
    rows->MoveNext();
    EXPECT_TRUE(rows->Eof());
    EXPECT_EQ(hresultOf([&] { (*rows)["Name"].Value(); }), kNoCurrentRow);
    EXPECT_EQ(hresultOf([&] { (*rows)["Nope"].Value(); }), kNotInCollection);
    EXPECT_EQ(hresultOf([&] { (*rows)["Name"] = "x"; }), kNoCurrentRow);
    rows->Close();
    EXPECT_EQ(hresultOf([&] { rows->MoveFirst(); }), kClosedObject);
    EXPECT_TRUE(open("SELECT * FROM Thing WHERE SKU = 'none'")->Eof());
}

TEST_F(Recordsets, ChangeTheTableBehindATableAJoinAndAProcedure) {
    const auto table = open("SELECT * FROM Thing WHERE SKU = 'a'");
    (*table)["Name"] = "Alpha 2";
    (*table)["Qty"] = "12";
    EXPECT_EQ((*table)["Qty"].Value(), Value(12));
    EXPECT_EQ(rowsOf("SELECT Name, Qty FROM Thing WHERE SKU = 'a'"), "Alpha|7");
    table->Update();
    EXPECT_EQ(rowsOf("SELECT Name, Qty FROM Thing WHERE SKU = 'a'"), "Alpha 2|12");

    const auto join = open(
        "SELECT t.SKU, t.MatrixSKU, t.Price, d.DeptID, d.Dept FROM Thing t INNER JOIN Dept d ON d.DeptID = t.DeptID WHERE t.SKU = 'b'");
    (*join)["Price"] = Null();
    (*join)["Dept"] = "Mugs";
    join->Update();
    EXPECT_EQ(rowsOf("SELECT Dept FROM Dept"), "Bags;Mugs");

    Command command(connection);
    command.setActiveConnection(connection->ConnectionString());
    command.setCommandType(CommandType::StoredProcedure);
    command.setCommandText("things");
    command.append("sku", {TypeKind::VarChar, 10, 0, 0}, "b");
    Recordset procedure;
    procedure.Open(command, CursorType::Dynamic, LockType::Optimistic);
    EXPECT_EQ(procedure.RecordCount(), 2);
    procedure.setCell(1, 2, "Gamma");
    EXPECT_EQ(rowsOf("SELECT Name FROM Thing WHERE MatrixSKU = 'c'"), "Gamma");
}

TEST_F(Recordsets, AddRowsWithDefaultsAndIdentity) {
    const auto departments = open("SELECT * FROM Dept");
    departments->AddNew();
    departments->Update();
    EXPECT_EQ((*departments)["DeptID"].Value(), Value(3));
    EXPECT_EQ((*departments)["Dept"].text(), "new");
    departments->addRow({Value(), "Hats"});
    EXPECT_EQ(rowsOf("SELECT * FROM Dept WHERE DeptID > 2"), "3|new;4|Hats");

    const auto things = open("SELECT * FROM Thing WHERE SKU = 'z'");
    things->AddNew();
    (*things)["MatrixSKU"] = "z";
    (*things)["SKU"] = "z";
    EXPECT_TRUE((*things)["Qty"].isNull());
    things->Update();
    EXPECT_EQ((*things)["Qty"].Value(), Value(7));
    EXPECT_EQ(things->RecordCount(), 1);
    things->Delete();
    EXPECT_EQ(things->RecordCount(), 0);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Thing WHERE SKU = 'z'"), "0");
}

TEST_F(Recordsets, ReportAConflictOnTheSameColumnOnly) {
    const auto rows = open("SELECT * FROM Thing WHERE SKU = 'a'");
    run("UPDATE Thing SET Qty = 99 WHERE SKU = 'a'");
    (*rows)["Name"] = "Mine";
    rows->Update();
    EXPECT_EQ(rowsOf("SELECT Name, Qty FROM Thing WHERE SKU = 'a'"), "Mine|99");
    (*rows)["Qty"] = 3;
    EXPECT_EQ(hresultOf([&] { rows->Update(); }), kConflict);
    EXPECT_EQ(rowsOf("SELECT Qty FROM Thing WHERE SKU = 'a'"), "99");
    rows->CancelUpdate();
    EXPECT_EQ((*rows)["Qty"].Value(), Value(7));
    run("DELETE FROM Thing WHERE SKU = 'a'");
    EXPECT_EQ(hresultOf([&] { rows->Delete(); }), kConflict);
}

TEST_F(Recordsets, RefuseWhatTheStoreRefuses) {
    const auto rows = open("SELECT * FROM Thing ORDER BY MatrixSKU");
    const auto write = [&](const char* column, const Value& value) {
        return hresultOf([&] {
            rows->MoveFirst();
            (*rows)[column] = value;
            rows->Update();
        });
    };
    EXPECT_EQ(write("DeptID", 99), kIntegrityError);
    rows->CancelUpdate();
    EXPECT_EQ(write("Qty", Null()), kIntegrityError);
    rows->CancelUpdate();
    EXPECT_NE(write("Qty", 40000), 0U); // does not fit a smallint
    rows->CancelUpdate();
    EXPECT_EQ(write("Qty", "abc"), kTypeMismatch);
    EXPECT_NE(write("Name", std::string(21, 'x')), 0U); // too long
    rows->CancelUpdate();
    EXPECT_EQ(hresultOf([&] { rows->addRow({"a", "a"}); }), kIntegrityError);
    EXPECT_FALSE(rows->editing());
    EXPECT_EQ(rows->RecordCount(), 3);
    EXPECT_EQ(rowsOf("SELECT * FROM Thing WHERE SKU = 'a'"), "a|a|Alpha|7|2.5|NULL|1|1");
    const auto locked = open("SELECT * FROM Thing", LockType::ReadOnly);
    EXPECT_EQ(hresultOf([&] { (*locked)["Name"] = "x"; }), kReadOnly);
    const auto counted = open("SELECT COUNT(*) AS n FROM Thing");
    EXPECT_EQ(hresultOf([&] {
                  (*counted)["n"] = 5;
                  counted->Update();
              }),
              kReadOnly);
}

TEST_F(Recordsets, AnEqualValueIsNoChange) {
    const auto rows = open("SELECT * FROM Thing WHERE SKU = 'a'");
    (*rows)["Name"] = "Alpha";
    (*rows)["Price"] = "2.50";
    (*rows)["Active"] = 1;
    EXPECT_FALSE(rows->editing());
}

TEST_F(Recordsets, FilterSortAndFindTouchNoRow) {
    const auto rows = open("SELECT SKU, MatrixSKU, Name, Price FROM Thing");
    rows->setFilter("SKU like '%b%'");
    EXPECT_EQ(rows->RecordCount(), 2);
    EXPECT_EQ(rows->sortedBy(), std::nullopt);
    rows->setSort("MatrixSKU DESC");
    EXPECT_EQ(rows->sortedBy(), (RowOrder{1, true}));
    EXPECT_EQ((*rows)["MatrixSKU"].text(), "c");
    EXPECT_EQ(hresultOf([&] { rows->setFilter("SKU like 'x"); }), kInvalidArgument);
    EXPECT_EQ(rows->RecordCount(), 2);
    rows->setFilter("");
    EXPECT_EQ((*rows)["MatrixSKU"].text(), "c");
    rows->setSort("SKU");
    rows->Find("Name = 'BETA'");
    EXPECT_EQ(rows->AbsolutePosition(), 2);
    rows->Find("Name = 'none'");
    EXPECT_TRUE(rows->Eof());
    rows->setFilter("Price > 1");
    rows->setCell(0, 2, "Renamed");
    EXPECT_EQ(rowsOf("SELECT Name FROM Thing WHERE SKU = 'a'"), "Renamed");
    rows->Requery();
    EXPECT_EQ(rows->RecordCount(), 1);
}

TEST_F(Recordsets, StatementsWithABrokenValueNeverReachTheStore) {
    const std::string attack = "x'; DELETE FROM Thing; --";
    EXPECT_EQ(hresultOf([&] { connection->Execute(Sql("UPDATE Thing SET Name = '") + attack + "'"); }), kSyntaxError);
    EXPECT_EQ(hresultOf([&] { connection->Execute(Sql("DELETE FROM Thing WHERE Qty = ") + std::string("1 OR 1=1")); }), kSyntaxError);
    EXPECT_EQ(hresultOf([&] { connection->Execute(Sql("things '") + attack + "'"); }), kSyntaxError);
    EXPECT_EQ(hresultOf([&] { connection->Execute(Sql("INSERT INTO Dept (Dept) VALUES ('") + attack + "')"); }), kSyntaxError);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Thing"), "3");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Dept"), "2");
}

TEST_F(Recordsets, TransactionsHoldAllOrNothing) {
    connection->BeginTrans();
    connection->Execute("INSERT INTO Dept (Dept) VALUES ('x')");
    connection->RollbackTrans();
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Dept"), "2");
    connection->BeginTrans();
    connection->Execute("INSERT INTO Dept (Dept) VALUES ('x')");
    connection->CommitTrans();
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM Dept"), "3");
}

TEST_F(Recordsets, FindTheirRowByAnotherKeyWhenThePrimaryOneIsNotSelected) {
    run("CREATE TABLE Unit (UnitID int IDENTITY(1, 1) PRIMARY KEY, SKU varchar(10) NOT NULL, Serial varchar(10) NOT NULL)");
    run("CREATE UNIQUE INDEX UX_Unit ON Unit (Serial)");
    run("INSERT INTO Unit (SKU, Serial) VALUES ('a', '1'), ('a', '2')");
    const auto rows = open("SELECT SKU, Serial FROM Unit ORDER BY UnitID");
    rows->setCell(0, 1, "1b");
    rows->addRow({"a", "3"});
    rows->removeRow(1);
    EXPECT_EQ(hresultOf([&] { rows->addRow({"a", "1B"}); }), kIntegrityError);
    const auto left = open("SELECT Serial FROM Unit ORDER BY UnitID");
    ASSERT_EQ(left->RecordCount(), 2);
    EXPECT_EQ(left->cell(0, 0), Value("1b"));
    EXPECT_EQ(left->cell(1, 0), Value("3"));
    EXPECT_EQ(hresultOf([&] { open("SELECT SKU FROM Unit")->setCell(0, 0, "b"); }), kReadOnly);
}

} // namespace
} // namespace merchantry::db
