// What the catalogue says of objects, where a recorded answer cannot: ids are each store's own.

#include "tests/db/teststore.h"

namespace merchantry::db {
namespace {

class CatalogueOfAStore : public OnAStore {};

// The hundredth check of a table had the id of its first reference, and a wide table's defaults those of the next table's keys.
TEST_F(CatalogueOfAStore, GivesNoTwoConstraintsOneId) {
    std::string wide = "CREATE TABLE Wide (A int PRIMARY KEY";
    for (int i = 0; i < 120; ++i) {
        const std::string number = std::to_string(i);
        wide += ", C" + number + " int DEFAULT " + number + " UNIQUE CHECK (C" + number + " > 0)";
    }
    run(wide + ")");
    std::string wider = "CREATE TABLE Wider (A int PRIMARY KEY REFERENCES Wide (A)";
    for (int i = 0; i < 800; ++i)
        wider += ", D" + std::to_string(i) + " int DEFAULT 1";
    run(wider + ") CREATE TABLE Last (A int PRIMARY KEY CHECK (A > 0))");
    EXPECT_EQ(rowsOf("SELECT count(*), count(DISTINCT object_id) FROM sys.objects"), "1168|1168");
    EXPECT_EQ(rowsOf("SELECT count(*) FROM sys.objects WHERE OBJECT_ID(name, type) = object_id"), "1168");
    EXPECT_EQ(rowsOf("SELECT count(*) FROM sys.foreign_keys AS k JOIN sys.objects AS o ON o.name = k.name AND o.type = k.type"), "1");
}

TEST_F(CatalogueOfAStore, ForgetsWhatASessionChose) {
    run("CREATE TABLE T (ID int IDENTITY(1, 1), N int)");
    run("USE Elsewhere CREATE TABLE #t (a int) SET IDENTITY_INSERT T ON SET DATEFIRST 3");
    EXPECT_EQ(rowsOf("SELECT DB_NAME(), @@DATEFIRST, (SELECT count(*) FROM Elsewhere.dbo.T)"), "Elsewhere|3|0");
    session.reset();
    session = store->session();
    EXPECT_EQ(rowsOf("SELECT DB_NAME(), @@DATEFIRST, OBJECT_ID('tempdb..#t')"), "Tillmark2k|7|NULL");
    EXPECT_THROW(run("INSERT INTO T (ID, N) VALUES (5, 1)"), DbError);
    EXPECT_THROW(rowsOf("SELECT * FROM Elsewhere.dbo.T"), DbError);
}

} // namespace
} // namespace merchantry::db
