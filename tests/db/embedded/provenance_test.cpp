#include "tests/db/embedded/rows.h"

#include <gtest/gtest.h>

namespace merchantry::db {
namespace {

class Provenance : public testing::Test {
protected:
    void SetUp() override {
        runScript(*session, "CREATE TABLE item (id INT IDENTITY PRIMARY KEY, name VARCHAR(20), price MONEY, twice AS price * 2)\n"
                            "CREATE TABLE stock (id INT, qty INT)\nGO\n"
                            "CREATE VIEW cheap AS SELECT id, name AS label FROM item WHERE price < 5\nGO\n"
                            "CREATE PROCEDURE list @most MONEY AS SELECT COUNT(*) FROM item SELECT i.id, i.name, s.qty FROM item i LEFT "
                            "JOIN stock s ON s.id = i.id WHERE i.price < @most");
    }

    // "table.column" for each column of the last result, "-" where there is none.
    std::string originsOf(const std::string& batch) {
        Rows rows;
        session->execute(batch, rows);
        std::string text;
        for (const Column& column : rows.columns)
            text += (text.empty() ? "" : " ") + (column.baseTable.empty() ? "-" : column.baseTable + "." + column.baseColumn);
        return text;
    }

    std::unique_ptr<Session> session = Store::scratch()->session();
};

TEST_F(Provenance, isKnownForPlainColumns) {
    EXPECT_EQ(originsOf("SELECT * FROM ITEM"), "item.id item.name item.price item.twice");
    EXPECT_EQ(originsOf("SELECT x.Name AS n, price + 1, 'a' FROM item x"), "item.name - -");
    EXPECT_EQ(originsOf("SELECT label FROM cheap"), "item.name");
    EXPECT_EQ(originsOf("list 5"), "item.id item.name stock.qty");
    EXPECT_EQ(originsOf("SELECT d.id FROM (SELECT id FROM item) d"), "item.id");
    EXPECT_EQ(originsOf("SELECT d.id FROM (SELECT i.id FROM stock s, item i LEFT JOIN stock t ON t.id = i.id) d"), "item.id");
    EXPECT_EQ(originsOf("SELECT i.id FROM stock s, item i RIGHT JOIN stock t ON t.id = i.id"), "item.id");
}

TEST_F(Provenance, isNotClaimedWhereRowsAreNoRowsOfTheTable) {
    EXPECT_EQ(originsOf("SELECT name FROM item GROUP BY name"), "-");
    EXPECT_EQ(originsOf("SELECT DISTINCT name FROM item"), "-");
    EXPECT_EQ(originsOf("SELECT name FROM item UNION ALL SELECT name FROM item"), "-");
    EXPECT_EQ(originsOf("SELECT m FROM (SELECT MAX(id) AS m FROM item) d"), "-");
}

TEST_F(Provenance, tellsIdentityAndComputed) {
    Rows rows;
    session->execute("SELECT id, name, twice FROM item", rows);
    EXPECT_TRUE(rows.columns[0].identity);
    EXPECT_FALSE(rows.columns[1].identity);
    EXPECT_TRUE(rows.columns[2].computed);
    EXPECT_EQ(rows.columns[2].type.kind, TypeKind::Money);
}

TEST_F(Provenance, hasTheShapeOfTheTable) {
    const TableShape shape = session->table("[dbo].[Item]");
    EXPECT_EQ(shape.name, "item");
    EXPECT_EQ(shape.keys.front(), std::vector<std::string>{"id"});
    EXPECT_TRUE(shape.fields[0].identity);
    EXPECT_TRUE(session->table("stock").keys.empty());
    EXPECT_THROW(session->table("nope"), DbError);
}

} // namespace
} // namespace merchantry::db
