// Each kind of statement comes to a visitor as the type that its parser made.

#include "app/db/tsql/parser.h"
#include "app/db/tsql/visit.h"

#include <gtest/gtest.h>

#include <set>
#include <type_traits>
#include <typeinfo>

namespace merchantry::db::tsql {
namespace {

const char* const kStatements[] = {
    "SELECT 1",
    "INSERT INTO t VALUES (1)",
    "UPDATE t SET a = 1",
    "DELETE FROM t",
    "TRUNCATE TABLE t",
    "CREATE TABLE t (a int)",
    "ALTER TABLE t ADD b int",
    "CREATE INDEX i ON t (a)",
    "CREATE VIEW v AS SELECT 1 AS a",
    "CREATE PROCEDURE p AS SELECT 1",
    "CREATE FUNCTION f() RETURNS int AS BEGIN RETURN 1 END",
    "CREATE TRIGGER r ON t AFTER INSERT AS SELECT 1",
    "CREATE TYPE y FROM int",
    "DROP TABLE t",
    "DECLARE @a int",
    "DECLARE @t TABLE (a int)",
    "SET @a = 1",
    "SET NOCOUNT ON",
    "IF 1 = 1 SELECT 1 ELSE SELECT 2",
    "WHILE 1 = 0 BEGIN BREAK CONTINUE END",
    "RETURN",
    "GOTO there",
    "there:",
    "BEGIN SELECT 1 SELECT 2 END",
    "BEGIN TRY SELECT 1 END TRY BEGIN CATCH SELECT 2 END CATCH",
    "RAISERROR('a', 16, 1)",
    "THROW 50000, 'a', 1",
    "PRINT 'a'",
    "EXEC p",
    "EXEC ('SELECT 1')",
    "BEGIN TRANSACTION",
    "COMMIT",
    "ROLLBACK",
    "SAVE TRANSACTION s",
    "USE master",
    "CHECKPOINT",
    "WAITFOR DELAY '00:00:00'",
    "OPEN c",
    "MERGE t USING u ON 1 = 1 WHEN MATCHED THEN DELETE;",
};

void expectItsOwnType(const Statement& statement, const char* text, std::set<StatementKind>& seen) {
    const bool isIts = visit(statement, [](const auto& as) { return typeid(as) == typeid(std::remove_cvref_t<decltype(as)>); });
    EXPECT_TRUE(isIts) << text;
    seen.insert(statement.kind);
    eachInner(statement, [&](const Statement& inner) { expectItsOwnType(inner, text, seen); });
}

TEST(Visit, BringsEachStatementAsItsOwnType) {
    std::set<StatementKind> seen;
    for (const char* text : kStatements) {
        const Batch batch = parseBatch(text);
        ASSERT_EQ(batch.statements.size(), 1U) << text;
        expectItsOwnType(*batch.statements[0], text, seen);
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(StatementKind::Unsupported) + 1) << "a kind that no statement above is of";
}

TEST(Visit, GoesIntoTheStatementsWithinOne) {
    const auto innerOf = [](const char* text) {
        std::string kinds;
        const Batch batch = parseBatch(text);
        eachInner(*batch.statements[0], [&](const Statement& inner) { kinds += std::to_string(static_cast<int>(inner.kind)) + " "; });
        return kinds;
    };
    const std::string select = std::to_string(static_cast<int>(StatementKind::Select)) + " ";
    const std::string print = std::to_string(static_cast<int>(StatementKind::Print)) + " ";
    EXPECT_EQ(innerOf("IF 1 = 1 SELECT 1 ELSE PRINT 'a'"), select + print);
    EXPECT_EQ(innerOf("IF 1 = 1 PRINT 'a'"), print);
    EXPECT_EQ(innerOf("BEGIN TRY SELECT 1 END TRY BEGIN CATCH PRINT 'a' END CATCH"), select + print);
    EXPECT_EQ(innerOf("WHILE 1 = 0 PRINT 'a'"), print);
    EXPECT_EQ(innerOf("BEGIN PRINT 'a' SELECT 1 END"), print + select);
    EXPECT_EQ(innerOf("CREATE PROCEDURE p AS SELECT 1"), "");
}

} // namespace
} // namespace merchantry::db::tsql
