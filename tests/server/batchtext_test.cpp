#include "app/db/server/batchtext.h"

#include <gtest/gtest.h>

namespace merchantry::db::server {
namespace {

TEST(SentBatchTest, OpensWithAnEmptyMessageOnTheFirstLine) {
    EXPECT_EQ(sentBatch("SELECT 1\nSELECT 2").text, "PRINT ''; SELECT 1\nSELECT 2");
    EXPECT_EQ(sentBatch("WITH c AS (SELECT 1 a) SELECT a FROM c").text, "PRINT ''; WITH c AS (SELECT 1 a) SELECT a FROM c");
}

TEST(SentBatchTest, ACallWithoutItsWordGetsOne) {
    EXPECT_EQ(sentBatch("sp_GetAllItems 1, 0 SELECT 1").text, "PRINT ''; EXEC sp_GetAllItems 1, 0 SELECT 1");
    EXPECT_EQ(sentBatch("  -- all\n [sp_GetAllItems]\nSELECT 1").text, "PRINT ''; EXEC   -- all\n [sp_GetAllItems]\nSELECT 1");
    EXPECT_EQ(sentBatch("EXEC sp_GetAllItems SELECT 1").text, "PRINT ''; EXEC sp_GetAllItems SELECT 1");
    EXPECT_EQ(sentBatch("again: SELECT 1").text, "PRINT ''; again: SELECT 1");
}

TEST(SentBatchTest, ACallAloneIsSentAsItIs) {
    for (const char* batch :
         {"sp_GetAllItems 1, 0", "  -- all\n [sp_GetAllItems]", "EXEC sp_GetAllItems", "execute sp_PostIt 'a''b', -1.5"}) {
        EXPECT_EQ(sentBatch(batch).text, batch);
        EXPECT_FALSE(sentBatch(batch).opened);
    }
    EXPECT_TRUE(sentBatch("EXEC ('SELECT 1')").opened) << "any text may be behind it";
}

TEST(SentBatchTest, ADefinitionOfAModuleStandsAlone) {
    for (const char* batch : {"CREATE PROCEDURE p AS SELECT 1", "-- why\nCREATE TRIGGER t ON x AFTER INSERT AS RETURN",
                              "create view v AS SELECT 1 a", "ALTER PROC p AS SELECT 1", "CREATE OR ALTER PROCEDURE p AS SELECT 1"}) {
        EXPECT_EQ(sentBatch(batch).text, batch);
        EXPECT_FALSE(sentBatch(batch).opened);
    }
    EXPECT_TRUE(sentBatch("CREATE TABLE t (a int)").opened);
}

TEST(ReadingTest, IsOneSelectOrOneCall) {
    EXPECT_TRUE(isOneReading("SELECT a FROM t ORDER BY a"));
    EXPECT_TRUE(isOneReading("EXEC sp_GetPO 1"));
    EXPECT_TRUE(isOneReading("sp_GetPO 1"));
    EXPECT_FALSE(isOneReading("SELECT 1; DELETE FROM t"));
    EXPECT_FALSE(isOneReading("SELECT a INTO u FROM t"));
    EXPECT_FALSE(isOneReading("DELETE FROM t"));
    EXPECT_FALSE(isOneReading("SELECT 'a"));
}

TEST(TracesTest, AreSettingsAndTemporaryTables) {
    EXPECT_TRUE(leavesTraces("SET ROWCOUNT 5"));
    EXPECT_TRUE(leavesTraces("SET IDENTITY_INSERT t ON"));
    EXPECT_TRUE(leavesTraces("CREATE TABLE #t (a int)"));
    EXPECT_FALSE(leavesTraces("UPDATE t SET a = 1, b = '#'"));
    EXPECT_FALSE(leavesTraces("DECLARE @a int SET @a = 1"));
}

} // namespace
} // namespace merchantry::db::server
