#include "tests/db/tsql/parsed.h"

#include <gtest/gtest.h>

namespace merchantry::db::tsql {
namespace {

TEST(ParseControl, givesAnElseToTheNearestIf) {
    const Batch batch = parseBatch("IF 1 = 1 IF 1 = 2 SELECT 'a' ELSE SELECT 'b'");
    const auto& outer = only<IfStatement>(batch, StatementKind::If);
    EXPECT_FALSE(outer.otherwise);
    EXPECT_TRUE(static_cast<const IfStatement&>(*outer.then).otherwise);
}

TEST(ParseControl, readsDeclarations) {
    const Batch batch = parseBatch("DECLARE @a INT = 5, @b AS VARCHAR(10), @c CURSOR");
    const auto& declare = only<DeclareStatement>(batch, StatementKind::Declare);
    ASSERT_EQ(declare.variables.size(), 3U);
    EXPECT_TRUE(declare.variables[0].value);
    EXPECT_EQ(declare.variables[1].type.first, 10);
    EXPECT_TRUE(declare.variables[2].cursor);
    EXPECT_EQ(only<DeclareTableStatement>(parseBatch("DECLARE @t TABLE (a INT)"), StatementKind::DeclareTable).body.columns.size(), 1U);
}

TEST(ParseControl, readsTryCatchAndItsStatements) {
    const Batch batch =
        parseBatch("BEGIN TRY SELECT 1; THROW 50001, 'x', 1 END TRY BEGIN CATCH RAISERROR ('%d', 16, 1, 5) WITH NOWAIT; THROW; END CATCH");
    const auto& tried = only<TryStatement>(batch, StatementKind::TryCatch);
    EXPECT_EQ(tried.body.size(), 2U);
    ASSERT_EQ(tried.handler.size(), 2U);
    EXPECT_EQ(static_cast<const RaiseStatement&>(*tried.handler[0]).arguments.size(), 1U);
    EXPECT_FALSE(static_cast<const ThrowStatement&>(*tried.handler[1]).number);
}

// Without a semicolon in front, a label was taken for the alias, argument or name that the statement before it may end with.
TEST(ParseControl, seesALabelBehindEveryStatement) {
    for (const char* before : {"SELECT 'x'",
                               "SELECT a FROM t",
                               "SELECT a FROM t AS b JOIN c ON a = d",
                               "EXEC p",
                               "p",
                               "EXEC p 1",
                               "BEGIN TRAN",
                               "COMMIT",
                               "ROLLBACK TRAN",
                               "DELETE FROM t",
                               "DELETE t",
                               "UPDATE t SET a = 1",
                               "INSERT t SELECT 1",
                               "INSERT t DEFAULT VALUES",
                               "PRINT 'x'",
                               "DECLARE @a INT",
                               "SET @a = 1",
                               "RETURN",
                               "GOTO Branch",
                               "FETCH NEXT FROM c",
                               "CLOSE c",
                               "RAISERROR ('x', 16, 1)",
                               "WAITFOR DELAY '0:0:1'",
                               "CREATE TABLE t (a INT)",
                               "DROP TABLE t",
                               "SELECT a FROM t ORDER BY a",
                               "SELECT a FROM t GROUP BY a",
                               "USE pubs",
                               "GRANT SELECT ON t TO a",
                               "THROW",
                               "CHECKPOINT"}) {
        const Batch batch = parseBatch(std::string(before) + "\nBranch:\nSELECT 1");
        ASSERT_EQ(batch.statements.size(), 3U) << before;
        EXPECT_EQ(batch.statements[1]->kind, StatementKind::Label) << before;
        EXPECT_EQ(batch.statements[1]->line, 2) << before;
    }
}

TEST(ParseControl, readsTransactionsWithAndWithoutNames) {
    const Batch batch = parseBatch("BEGIN TRAN outerone COMMIT TRANSACTION SAVE TRAN s ROLLBACK TRAN s ROLLBACK WORK");
    ASSERT_EQ(batch.statements.size(), 5U);
    EXPECT_EQ(static_cast<const TransactionStatement&>(*batch.statements[0]).name, "outerone");
    EXPECT_EQ(static_cast<const TransactionStatement&>(*batch.statements[3]).name, "s");
    EXPECT_EQ(static_cast<const TransactionStatement&>(*batch.statements[4]).name, "");
}

TEST(ParseControl, readsOptions) {
    EXPECT_EQ(only<SetOptionStatement>(parseBatch("SET ANSI_NULLS, QUOTED_IDENTIFIER ON"), StatementKind::SetOption).options.size(), 2U);
    EXPECT_EQ(only<SetOptionStatement>(parseBatch("SET IDENTITY_INSERT dbo.t OFF"), StatementKind::SetOption).table.last(), "t");
    EXPECT_TRUE(only<SetOptionStatement>(parseBatch("SET ROWCOUNT 5"), StatementKind::SetOption).expr);
    EXPECT_EQ(only<SetVariableStatement>(parseBatch("SET @n %= 5"), StatementKind::SetVariable).op, "%=");
}

TEST(ParseControl, readsCursors) {
    const Batch batch = parseBatch(
        "DECLARE c CURSOR LOCAL STATIC FOR SELECT 1 FOR READ ONLY OPEN c FETCH ABSOLUTE -2 FROM c INTO @a, @b CLOSE c DEALLOCATE c");
    ASSERT_EQ(batch.statements.size(), 5U);
    EXPECT_TRUE(static_cast<const CursorStatement&>(*batch.statements[0]).local);
    EXPECT_EQ(static_cast<const CursorStatement&>(*batch.statements[2]).into.size(), 2U);
}

TEST(ParseControl, takesStatementsWithoutEffectAndGoesOnBehindThem) {
    EXPECT_EQ(parseBatch("GRANT SELECT, INSERT ON t TO public\nSELECT 1").statements.size(), 2U);
    EXPECT_EQ(parseBatch("CHECKPOINT USE pubs UPDATE STATISTICS t SELECT 1").statements.size(), 4U);
    EXPECT_EQ(parseBatch("IF 1 = 1 BEGIN DROP DATABASE pubs END").statements.size(), 1U);
}

} // namespace
} // namespace merchantry::db::tsql
