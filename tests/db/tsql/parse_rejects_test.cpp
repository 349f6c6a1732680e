#include "app/db/tsql/parser.h"

#include <gtest/gtest.h>

namespace merchantry::db::tsql {
namespace {

struct Bad {
    const char* text;
    int number;
    int line;
};

TEST(ParseRejects, namesNumberAndLine) {
    const Bad kBad[] = {
        {"SELECT (1 + 2", 102, 1},
        {"SELECT 1\nFROM t WHERE", 102, 2},
        {"SELECT id, FROM t", 156, 1},
        {"SELECT id FROM t\nWHERE name", 4145, 2},
        {"SELEC * FROM t", 102, 1},
        {"SELECT 'abc", 105, 1},
        {"SELECT id FROM t WHERE name = 'O'Brien'", 102, 1},
        {"SELECT 1 /* open", 113, 1},
        {"IF 1 = 1 BEGIN SELECT 1", 102, 1},
        {"UPDATE t SET a + 1", 102, 1},
        {"INSERT INTO t VALUES (1, )", 102, 1},
        {"SELECT * FROM (SELECT 1 AS a)", 102, 1},
        {"CREATE TABLE t ()", 102, 1},
        {"SELECT 1\n\nBREAK", 135, 3},
        {"SELECT 1 p 'x'", 102, 1},
        {"EXEC p 'a' + 'b'", 102, 1},
        {"EXEC p @a = 1, 'x'", 119, 1},
        {"RETURN 5", 178, 1},
        {"SELECT a.b.c.d.e FROM t", 117, 1},
        {"SELECT TOP UNION SELECT 1", 156, 1}, // what is no literal was taken for a binary one, and its letters for digits
        {"SELECT TOP n id FROM t", 102, 1},
        {"DELETE TOP FROM t", 156, 1},
        {"SELECT CAST(1 AS) FROM t", 102, 1},
        {"BEGIN TRY SELECT 1 END TRY SELECT 2", 156, 1},
        {"THIS IS NO STATEMENT AT ALL", 156, 1},
    };
    for (const Bad& bad : kBad) {
        try {
            parseBatch(bad.text);
            ADD_FAILURE() << bad.text;
        } catch (const DbError& error) {
            EXPECT_EQ(error.native(), bad.number) << bad.text << ": " << error.what();
            EXPECT_EQ(error.line(), bad.line) << bad.text;
            EXPECT_EQ(error.category(), DbError::Category::Syntax) << bad.text;
            EXPECT_EQ(error.hresult(), kSyntaxError) << bad.text;
        }
    }
}

TEST(ParseRejects, nestingDeeperThanTheStack) {
    for (const std::string open : {"(", "NOT ", "-", "CASE WHEN "}) {
        std::string text = "SELECT 1 WHERE ";
        for (int i = 0; i < 100'000; ++i)
            text += open;
        EXPECT_THROW(parseBatch(text), DbError);
    }
    std::string blocks;
    for (int i = 0; i < 50'000; ++i)
        blocks += "BEGIN ";
    EXPECT_THROW(parseBatch(blocks), DbError);
}

} // namespace
} // namespace merchantry::db::tsql
