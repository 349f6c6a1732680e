#include "app/db/embedded/store.h"
#include "app/db/messages.h"
#include "tests/server/onaserver.h"

namespace merchantry::db {
namespace {

using ErrorsOnAServer = OnAServer;
using Category = DbError::Category;

// One statement for each kind of failure.
struct Failing {
    const char* batch;
    Category category;
};
constexpr Failing kFailing[] = {
    {"SELECT FROM t", Category::Syntax},
    {"SELECT 'a", Category::Syntax},
    {"SELECT * FROM Nowhere", Category::Name},
    {"SELECT Nothing FROM Good", Category::Name},
    {"EXEC NoSuchProcedure", Category::Name},
    {"SELECT NoSuchFunction(1)", Category::Name},
    {"INSERT INTO Good (Id, Name) VALUES (1, 'again')", Category::Integrity},
    {"INSERT INTO Good (Id, Name) VALUES (2, NULL)", Category::Integrity},
    {"INSERT INTO Good (Id, Name, Kind) VALUES (2, 'b', 77)", Category::Integrity},
    {"INSERT INTO Good (Id, Name) VALUES (2, 'much too long for ten')", Category::Type},
    {"SELECT CAST('abc' AS int)", Category::Type},
    {"SELECT CAST(70000 AS smallint)", Category::Type},
    {"SELECT 1/0", Category::Type},
    {"RAISERROR('It is so.', 16, 1)", Category::Raised},
    {"ROLLBACK TRANSACTION", Category::Transaction},
    {"ROLLBACK TRANSACTION Nowhere", Category::Transaction},
};

constexpr const char* kTables =
    "CREATE TABLE Kinds (Kind int NOT NULL PRIMARY KEY)\n"
    "CREATE TABLE Good (Id int NOT NULL PRIMARY KEY, Name varchar(10) NOT NULL, Kind int NULL REFERENCES Kinds (Kind))\n"
    "INSERT INTO Good (Id, Name) VALUES (1, 'first')";

DbError failureOf(Session& session, const std::string& batch) {
    try {
        NoResult none;
        session.execute(batch, none);
    } catch (const DbError& error) {
        return error;
    }
    return {Category::Other, 0, "no error"};
}

TEST(CategoryTest, IsTheSameForAStoreInAFile) {
    const auto session = Store::scratch()->session();
    NoResult none;
    session->execute(kTables, none);
    for (const auto& [batch, category] : kFailing) {
        const DbError error = failureOf(*session, batch);
        EXPECT_EQ(error.category(), category) << batch << ": " << error.native() << " " << error.what();
    }
}

// What callers tell errors by: the number that ADO gives.
TEST_F(ErrorsOnAServer, ReadAsThoseOfAStoreInAFile) {
    const auto file = Store::scratch()->session();
    NoResult none;
    file->execute(kTables, none);
    run("IF OBJECT_ID('Good') IS NOT NULL DROP TABLE Good\nIF OBJECT_ID('Kinds') IS NOT NULL DROP TABLE Kinds");
    run(kTables);
    for (const auto& [batch, category] : kFailing) {
        const DbError own = failureOf(*file, batch);
        const DbError sent = errorOf(batch);
        if (sent.native() != kUnnamedError) {
            EXPECT_EQ(sent.category(), category) << batch << ": " << sent.native() << " " << sent.what();
            EXPECT_EQ(own.hresult(), sent.hresult()) << batch << ": " << own.what() << " / " << sent.native() << " " << sent.what();
        }
    }
}

TEST_F(ErrorsOnAServer, LetLaterStatementsRunAndAreAllTold) {
    table("Twice", "Id int NOT NULL PRIMARY KEY");
    class All : public NoResult {
    public:
        void beginSet(const std::vector<Column>&) override { ++sets; }
        void error(const DbError& one) override { later.push_back(one.native()); }
        int sets = 0;
        std::vector<int> later;
    } all;
    int first = 0;
    try {
        session->execute(
            "INSERT INTO Twice VALUES (1)\nSELECT 1 AS a\nINSERT INTO Twice VALUES (1)\nSELECT 2 AS b\nINSERT INTO Twice VALUES "
            "(NULL)\nSELECT 3 AS c",
            all);
    } catch (const DbError& error) {
        first = error.native();
    }
    EXPECT_EQ(first, 2627);
    EXPECT_EQ(all.later, std::vector{515});
    EXPECT_EQ(all.sets, 3);
}

TEST_F(ErrorsOnAServer, AtTheVeryStartDoNotLoseWhatFollows) {
    table("First", "Id int NOT NULL PRIMARY KEY");
    run("INSERT INTO First VALUES (1)");
    class Sets : public NoResult {
    public:
        void beginSet(const std::vector<Column>&) override { ++sets; }
        void message(const std::string& text) override { messages += "[" + text + "]"; }
        int sets = 0;
        std::string messages;
    } seen;
    EXPECT_THROW(session->execute("INSERT INTO First VALUES (1)\nSELECT 1 AS a\nPRINT 'said'\nSELECT 2 AS b", seen), DbError);
    EXPECT_EQ(seen.sets, 2);
    EXPECT_EQ(seen.messages, "[said]");
}

TEST_F(ErrorsOnAServer, LeaveTheSessionOfUse) {
    EXPECT_NE(errorOf("SELECT * FROM Nowhere").native(), 0);
    EXPECT_EQ(rowsOf("SELECT 1"), "1");
}

} // namespace
} // namespace merchantry::db
