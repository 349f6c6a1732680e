#include "tests/db/tsql/parsed.h"

#include <gtest/gtest.h>

namespace merchantry::db::tsql {
namespace {

TEST(ParseModule, readsProceduresWithTheirText) {
    const char* text =
        "-- what it is for\nCREATE PROC p @a INT, @b VARCHAR(9) = abc OUTPUT WITH RECOMPILE AS SET NOCOUNT ON SELECT @a RETURN 5";
    const Batch batch = parseBatch(text);
    const auto& create = only<CreateProcedureStatement>(batch, StatementKind::CreateProcedure);
    ASSERT_EQ(create.parameters.size(), 2U);
    EXPECT_EQ(create.parameters[1].defaultValue->text, "abc");
    EXPECT_TRUE(create.parameters[1].output);
    EXPECT_EQ(create.body.size(), 3U);
    EXPECT_EQ(create.text.substr(0, 13), "CREATE PROC p");
    EXPECT_EQ(create.line, 2);
}

TEST(ParseModule, readsTriggersFunctionsAndViews) {
    const Batch trigger = parseBatch("CREATE TRIGGER tr ON dbo.t FOR INSERT, UPDATE AS IF UPDATE(a) SELECT 1");
    const auto& created = only<CreateTriggerStatement>(trigger, StatementKind::CreateTrigger);
    EXPECT_TRUE(created.onInsert && created.onUpdate && !created.onDelete && !created.insteadOf);
    EXPECT_TRUE(only<CreateTriggerStatement>(parseBatch("ALTER TRIGGER tr ON v INSTEAD OF DELETE AS RETURN"), StatementKind::CreateTrigger)
                    .insteadOf);
    const Batch function = parseBatch("CREATE FUNCTION dbo.f (@n INT = 1) RETURNS INT AS BEGIN RETURN @n * 2 END");
    EXPECT_EQ(only<CreateFunctionStatement>(function, StatementKind::CreateFunction).returns.name, "INT");
    EXPECT_TRUE(only<CreateFunctionStatement>(parseBatch("CREATE FUNCTION f () RETURNS TABLE AS RETURN (SELECT 1 AS a)"),
                                              StatementKind::CreateFunction)
                    .table);
    const Batch view = parseBatch("CREATE VIEW v (a) WITH SCHEMABINDING AS SELECT 1 WITH CHECK OPTION");
    EXPECT_EQ(only<CreateViewStatement>(view, StatementKind::CreateView).columns.size(), 1U);
}

TEST(ParseModule, readsCallsWithBareWordsAndNames) {
    const Batch batch = parseBatch("p abc, [d e], -1.5, @n OUTPUT, DEFAULT");
    const auto& call = only<ExecuteStatement>(batch, StatementKind::Execute);
    ASSERT_EQ(call.arguments.size(), 5U);
    EXPECT_EQ(call.arguments[0].value->text, "abc");
    EXPECT_EQ(call.arguments[1].value->text, "d e");
    EXPECT_TRUE(call.arguments[3].output);
    EXPECT_EQ(only<ExecuteStatement>(parseBatch("EXEC @r = dbo.p @a = 1, @b = 'x'"), StatementKind::Execute).result, "@r");
    EXPECT_EQ(parseBatch("EXEC p\nSELECT 1").statements.size(), 2U);
    EXPECT_EQ(only<ExecuteTextStatement>(parseBatch("EXEC ('a' + @b)"), StatementKind::ExecuteText).text->text, "+");
}

TEST(ParseModule, mustStandAloneInItsBatch) {
    for (const char* text : {"SELECT 1 CREATE PROCEDURE p AS SELECT 1", "SELECT 1 CREATE VIEW v AS SELECT 1 AS a"}) {
        try {
            parseBatch(text);
            ADD_FAILURE() << text;
        } catch (const DbError& error) {
            EXPECT_EQ(error.native(), 111) << text;
        }
    }
}

} // namespace
} // namespace merchantry::db::tsql
