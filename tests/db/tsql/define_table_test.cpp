#include "app/db/tsql/define_table.h"
#include "app/db/tsql/types.h"
#include "tests/db/tsql/parsed.h"

#include <gtest/gtest.h>

namespace merchantry::db::tsql {
namespace {

TableDef defined(const std::string& text) {
    const Batch batch = parseBatch(text);
    const auto& create = only<CreateTableStatement>(batch, StatementKind::CreateTable);
    return defineTable(create.table, create.body, 7, [](const TypeName& type, bool&) { return builtInType(type).value(); });
}

// The text that the store keeps stands for the same table.
TEST(TableSource, makesTheSameTableAgain) {
    const TableDef table =
        defined("CREATE TABLE [a b] (id INT IDENTITY(3, 4) PRIMARY KEY, v NVARCHAR(10) NULL DEFAULT N'it''s', m MONEY NOT NULL CONSTRAINT "
                "dm DEFAULT (1.5), "
                "d DECIMAL(20, 3) CHECK (d > 0 AND d < 10), [x]]y] CHAR(3) UNIQUE, FOREIGN KEY (v) REFERENCES u (w) ON DELETE SET NULL)");
    const std::string source = tableSource(table);
    const TableDef again = defined(source);
    EXPECT_EQ(tableSource(again), source);
    EXPECT_EQ(again.columns[4].name, "x]y");
    EXPECT_EQ(again.columns[0].increment, 4);
    EXPECT_EQ(again.keys.size(), 2U);
    EXPECT_EQ(again.foreignKeys[0].onDelete, "SET NULL");
    EXPECT_EQ(again.checks[0].expr->source, "d > 0 AND d < 10");
}

TEST(DefineTable, refusesWhatCannotBeATable) {
    struct Bad {
        const char* text;
        int number;
    };
    const Bad kBad[] = {
        {"CREATE TABLE t (a INT, A INT)", 2705},
        {"CREATE TABLE t (a INT IDENTITY, b INT IDENTITY)", 2744},
        {"CREATE TABLE t (a VARCHAR(5) IDENTITY)", 2749},
        {"CREATE TABLE t (a INT PRIMARY KEY, b INT PRIMARY KEY)", 8110},
        {"CREATE TABLE t (a INT NULL, PRIMARY KEY (a))", 8111},
        {"CREATE TABLE t (a INT, UNIQUE (b))", 1911},
        {"CREATE TABLE t (a INT DEFAULT 1 DEFAULT 2)", 1781},
    };
    for (const Bad& bad : kBad) {
        try {
            defined(bad.text);
            ADD_FAILURE() << bad.text;
        } catch (const DbError& error) {
            EXPECT_EQ(error.native(), bad.number) << bad.text;
        }
    }
}

} // namespace
} // namespace merchantry::db::tsql
