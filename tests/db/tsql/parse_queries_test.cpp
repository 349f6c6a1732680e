#include "tests/db/tsql/parsed.h"

#include <gtest/gtest.h>

namespace merchantry::db::tsql {
namespace {

TEST(ParseSelect, keepsEveryPart) {
    const Batch batch =
        parseBatch("SELECT DISTINCT TOP (5) a, t.b AS x, 'y' = c FROM t WHERE a > 1 GROUP BY a, b, c HAVING COUNT(*) > 2 ORDER BY x DESC");
    const Query& query = *only<SelectStatement>(batch, StatementKind::Select).query;
    const SelectCore& core = *query.core;
    EXPECT_TRUE(core.distinct);
    ASSERT_TRUE(core.top);
    EXPECT_EQ(core.top->count->text, "5");
    ASSERT_EQ(core.items.size(), 3U);
    EXPECT_EQ(core.items[1].alias, "x");
    EXPECT_EQ(core.items[2].alias, "y");
    EXPECT_EQ(core.groupBy.size(), 3U);
    EXPECT_TRUE(core.having);
    ASSERT_EQ(query.orderBy.size(), 1U);
    EXPECT_TRUE(query.orderBy[0].descending);
}

TEST(ParseSelect, bindsIntersectBeforeUnionAndTheRestFromTheLeft) {
    const Batch batch = parseBatch("SELECT 1 UNION SELECT 2 INTERSECT SELECT 3 EXCEPT SELECT 4");
    const Query& query = *only<SelectStatement>(batch, StatementKind::Select).query;
    EXPECT_EQ(query.op, SetOperator::Except);
    EXPECT_EQ(query.left->op, SetOperator::Union);
    EXPECT_EQ(query.left->right->op, SetOperator::Intersect);
}

TEST(ParseSelect, nestsJoinsAsTheirConditionsSay) {
    const Batch batch = parseBatch("SELECT 1 FROM a LEFT JOIN b JOIN c ON c.x = b.x ON b.y = a.y, d WITH (NOLOCK)");
    const SelectCore& core = *only<SelectStatement>(batch, StatementKind::Select).query->core;
    ASSERT_EQ(core.from.size(), 2U);
    const TableRef& join = *core.from[0];
    EXPECT_EQ(join.join, JoinKind::Left);
    EXPECT_EQ(join.left->name.last(), "a");
    EXPECT_EQ(join.right->join, JoinKind::Inner);
    EXPECT_EQ(core.from[1]->alias, "");
}

TEST(ParseSelect, readsCommonTables) {
    const Batch batch = parseBatch(";WITH a (n) AS (SELECT 1), b AS (SELECT n FROM a) SELECT * FROM b OPTION (MAXRECURSION 7)");
    const Query& query = *only<SelectStatement>(batch, StatementKind::Select).query;
    ASSERT_EQ(query.commonTables.size(), 2U);
    EXPECT_EQ(query.commonTables[0].columns, std::vector<std::string>{"n"});
    EXPECT_EQ(query.maxRecursion, 7);
}

TEST(ParseInsert, readsEverySource) {
    EXPECT_EQ(only<InsertStatement>(parseBatch("INSERT t VALUES (1, DEFAULT), (2, 'x')"), StatementKind::Insert).rows.size(), 2U);
    EXPECT_TRUE(only<InsertStatement>(parseBatch("INSERT INTO t DEFAULT VALUES"), StatementKind::Insert).defaultValues);
    const Batch fromQuery = parseBatch("INSERT INTO t (a, [b c]) SELECT 1, 2");
    EXPECT_EQ(only<InsertStatement>(fromQuery, StatementKind::Insert).columns, (std::vector<std::string>{"a", "b c"}));
    EXPECT_TRUE(only<InsertStatement>(parseBatch("INSERT INTO t (a) (SELECT 1)"), StatementKind::Insert).query);
    const Batch fromProcedure = parseBatch("INSERT INTO #t EXEC p 1, 'x'");
    EXPECT_EQ(only<InsertStatement>(fromProcedure, StatementKind::Insert).execute->kind, StatementKind::Execute);
    EXPECT_EQ(
        only<InsertStatement>(parseBatch("INSERT t (a) OUTPUT inserted.a INTO @x VALUES (1)"), StatementKind::Insert).output->into.last(),
        "@x");
}

TEST(ParseUpdate, readsAssignmentsToColumnsAndVariables) {
    const Batch batch =
        parseBatch("UPDATE TOP (3) i SET i.a = 1, b += 2, @v = c, @w = d = DEFAULT FROM t i JOIN u ON u.x = i.x WHERE u.y = 1");
    const auto& update = only<UpdateStatement>(batch, StatementKind::Update);
    ASSERT_EQ(update.assignments.size(), 4U);
    EXPECT_EQ(update.assignments[0].column, "a");
    EXPECT_EQ(update.assignments[1].op, "+=");
    EXPECT_EQ(update.assignments[2].variable, "@v");
    EXPECT_TRUE(update.assignments[2].column.empty());
    EXPECT_EQ(update.assignments[3].column, "d");
    EXPECT_EQ(update.from.size(), 1U);
    EXPECT_TRUE(update.where);
}

TEST(ParseDelete, tellsTheTableFromTheSources) {
    const auto batch = parseBatch("DELETE FROM i FROM t i LEFT JOIN u ON u.x = i.x WHERE u.x IS NULL");
    const auto& statement = only<DeleteStatement>(batch, StatementKind::Delete);
    EXPECT_EQ(statement.table.last(), "i");
    EXPECT_EQ(statement.from.size(), 1U);
    EXPECT_EQ(only<TruncateStatement>(parseBatch("TRUNCATE TABLE dbo.t"), StatementKind::Truncate).table.parts.size(), 2U);
}

TEST(ParseTable, readsColumnsConstraintsAndActions) {
    const Batch batch = parseBatch(
        "CREATE TABLE dbo.t (id INT IDENTITY(5, 2) NOT NULL PRIMARY KEY, v NVARCHAR(MAX) NULL CONSTRAINT d DEFAULT ('x'), "
        "c AS id * 2, p INT REFERENCES u (id) ON DELETE CASCADE ON UPDATE SET NULL, CONSTRAINT k UNIQUE (v, p DESC), CHECK (id > 0))");
    const auto& create = only<CreateTableStatement>(batch, StatementKind::CreateTable);
    ASSERT_EQ(create.body.columns.size(), 4U);
    EXPECT_EQ(create.body.columns[0].seed, 5);
    EXPECT_EQ(create.body.columns[0].increment, 2);
    EXPECT_TRUE(create.body.columns[1].type.max);
    EXPECT_EQ(create.body.columns[1].constraints[0].expr->source, "('x')");
    EXPECT_EQ(create.body.columns[2].computed->source, "id * 2");
    EXPECT_EQ(create.body.columns[3].constraints[0].foreignKey.onUpdate, "SET NULL");
    ASSERT_EQ(create.body.constraints.size(), 2U);
    EXPECT_TRUE(create.body.constraints[0].columns[1].descending);

    const Batch alter = parseBatch("ALTER TABLE t DROP CONSTRAINT a, b");
    EXPECT_EQ(only<AlterTableStatement>(alter, StatementKind::AlterTable).names.size(), 2U);
    EXPECT_EQ(only<AlterTableStatement>(parseBatch("ALTER TABLE t DISABLE TRIGGER ALL"), StatementKind::AlterTable).enable, false);
}

TEST(ParseIndex, readsOldAndNewForms) {
    const Batch create = parseBatch("CREATE UNIQUE NONCLUSTERED INDEX i ON t (a DESC, b) INCLUDE (c) WITH (FILLFACTOR = 80)");
    EXPECT_TRUE(only<CreateIndexStatement>(create, StatementKind::CreateIndex).unique);
    EXPECT_EQ(only<DropStatement>(parseBatch("DROP INDEX t.i"), StatementKind::Drop).onTable.last(), "t");
    EXPECT_EQ(only<DropStatement>(parseBatch("DROP INDEX i ON dbo.t"), StatementKind::Drop).names[0].last(), "i");
    EXPECT_EQ(only<DropStatement>(parseBatch("DROP TABLE IF EXISTS a, b"), StatementKind::Drop).names.size(), 2U);
}

TEST(ParseSelect, takesTheHintsThatLockOnAServer) {
    for (const char* text :
         {"SELECT @n = MAX(a) FROM t WITH (UPDLOCK, HOLDLOCK)", "SELECT a FROM t AS x WITH (XLOCK, ROWLOCK) JOIN u (NOLOCK) ON b = a",
          "UPDATE t WITH (ROWLOCK) SET a = (SELECT MAX(a) + 1 FROM t WITH (UPDLOCK, HOLDLOCK))", "DELETE FROM t WITH (TABLOCKX)",
          "INSERT INTO t WITH (TABLOCK) (a) VALUES (1)", "SELECT a FROM t WITH (INDEX(ix), UPDLOCK) WHERE a = 1"})
        EXPECT_EQ(parseBatch(text).statements.size(), 1U) << text;
    EXPECT_THROW(parseBatch("SELECT a FROM t WITH (UPLOCK)"), DbError);
}

} // namespace
} // namespace merchantry::db::tsql
