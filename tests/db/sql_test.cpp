#include "app/db/tsql/sql.h"

#include "app/db/dberror.h"
#include "app/db/tsql/parser.h"

#include <gtest/gtest.h>

namespace merchantry::db {
namespace {

int errorOf(const Sql& statement) {
    try {
        statement.check();
        return 0;
    } catch (const DbError& error) {
        EXPECT_EQ(error.hresult(), kSyntaxError);
        return error.native();
    }
}

TEST(Sql, GivesTheJoinedTextByteForByte) {
    const std::string sku = "A 1";
    const Sql statement = Sql("UPDATE PriceMatrix SET Price = ") + 2.5 + " WHERE SKU ='" + sku + "' AND Tier = " + 1 + " AND D = '" +
                          *Date::fromParts(2026, 3, 9) + "' AND C = " + Currency::fromText("1.20");
    EXPECT_EQ(statement.text(), "UPDATE PriceMatrix SET Price = 2.5 WHERE SKU ='A 1' AND Tier = 1 AND D = '03/09/2026' AND C = 1.2");
    EXPECT_EQ(errorOf(statement), 0);
}

TEST(Sql, NoValueInQuotesCanLeaveThem) {
    const std::pair<const char*, int> cases[] = {
        {"O'Brien", 102},
        {"' OR '1'='1", 102},
        {"'", 105},
        {"x'; DROP TABLE Item; --", 102},
        {"x' --", 102},
        {"'+(SELECT Password FROM Cashier)+'", 102},
        {"a'''", 105},
        {"''", 0}, // an apostrophe in a pair is part of the literal
        {"O''Brien", 0},
        {"a''' OR 1=1", 102},
        {"plain; text -- and /* signs */", 0},
        {"", 0},
        {"\xE2\x80\x99 OR 1=1", 0}, // a typographic apostrophe ends nothing
    };
    for (const auto& [value, number] : cases) {
        const std::string text = value;
        EXPECT_EQ(errorOf(Sql("SELECT * From Cashier where name = '") + text + "' and managerflag = 1"), number) << value;
    }
}

TEST(Sql, NoBareValueIsMoreThanOneToken) {
    for (const char* good : {"12", " 12 ", "-3", "+1.5", "1e5", "-1.5E-3", "-$5", "0xAF", "Item", "TierID", "NULL", "default", "", "''",
                             "'x'", "'O''Brien'", "'1; --'", "'\xC3\xA4'"})
        EXPECT_EQ(errorOf(Sql("DELETE FROM T WHERE ID = ") + std::string(good)), 0) << good;
    for (const char* bad : {"1 OR 1=1",
                            "1;",
                            "1--",
                            "--1",
                            "(1)",
                            "1/**/",
                            "a b",
                            "'x' OR 1=1 OR 'a'='a'",
                            "'x''",
                            "'",
                            "N'x'",
                            "x'y'",
                            "1,2",
                            "-",
                            "- 1",
                            "1COMMIT",
                            "1e5SHUTDOWN",
                            "$1COMMIT",
                            "0xAFz",
                            "1.COMMIT",
                            "@v",
                            "[x]",
                            "1\n",
                            "\xC2\xA0",
                            "1\xC2\xA0",
                            "a\xC3\xA4",
                            "\xEF\xBB\xBF"
                            "1"})
        EXPECT_EQ(errorOf(Sql("DELETE FROM T WHERE ID = ") + std::string(bad)), 102) << bad;
}

TEST(Sql, AWordOfTheLanguageIsNoValue) {
    for (const char* word : {"COMMIT", "shutdown", "Or", "SELECT"})
        EXPECT_EQ(errorOf(Sql("sp_GetPO ") + std::string(word)), 156) << word;
}

TEST(Sql, ValuesSideBySideAreOne) {
    EXPECT_EQ(errorOf(Sql("sp_GetPO ") + std::string("1") + std::string("COMMIT")), 102);
    EXPECT_EQ(errorOf(Sql("sp_GetPO ") + 1 + std::string("COMMIT")), 102);
    EXPECT_EQ(errorOf(Sql("sp_GetPO ") + std::string("1") + 2), 0);
    EXPECT_EQ(errorOf(Sql("UPDATE Stock SET Quantity = Quantity -") + -3), 102); // two signs would begin a comment
    EXPECT_EQ(errorOf(Sql("SELECT [") + std::string("a] FROM t; DELETE FROM [t") + "]"), 102);
    EXPECT_EQ(errorOf(Sql("SELECT \"") + std::string("O'Brien") + "\" WHERE a = " + std::string("1 OR 1=1")), 102);
}

// Whatever two pieces a value is made of: one that is let through is one argument of one call, and leaves an UPDATE one statement.
TEST(Sql, NoPairOfTokensBecomesASecondStatement) {
    const char* const kPieces[] = {"a",    "COMMIT",      "[a]",  "\"a\"", "@a",       "@@ERROR",  "1",
                                   "1.5",  ".5",          "1.",   "1e5",   "1e",       "$1",       "$",
                                   "'a'",  "''",          "N'a'", "N",     "0xA",      "0x",       "'a",
                                   "'",    "[a",          "\"a",  ";",     ",",        "(",        ")",
                                   "=",    "-",           "+",    "*",     "/",        ".",        ":",
                                   "--x",  "/*x*/",       "/*",   "*/",    "\xC3\xA4", "\xC2\xA0", "\xE2\x80\x99",
                                   "\xFF", "\xEF\xBB\xBF"};
    int let = 0;
    for (const std::string first : kPieces) {
        for (const char* joint : {"", " ", "\n", "/**/", "\t"}) {
            for (const char* second : kPieces) {
                const std::string value = first + joint + second;
                const Sql call = Sql("sp_GetPO ") + value;
                if (errorOf(call) != 0)
                    continue;
                ++let;
                const tsql::Batch batch = tsql::parseBatch(call.text());
                ASSERT_EQ(batch.statements.size(), 1U) << value;
                EXPECT_EQ(static_cast<const tsql::ExecuteStatement&>(*batch.statements[0]).arguments.size(), 1U) << value;
                EXPECT_EQ(tsql::parseBatch("UPDATE t SET a = " + value + " WHERE b = 1").statements.size(), 1U) << value;
            }
        }
    }
    EXPECT_GT(let, 40); // 11, 1.51, a1, 'a''a', -1 and their like
}

TEST(Sql, KeepsAFaultThroughFurtherJoining) {
    const std::string bad = "x' OR 1=1 OR name = '";
    EXPECT_EQ(errorOf(Sql("SELECT 1 WHERE a = '") + bad + "'" + " AND b = " + 1), 102);
    EXPECT_EQ(errorOf(Sql("SELECT 1 WHERE a = '") + (Sql("") + bad) + "'"), 102);
}

TEST(Sql, TellsNoSecret) {
    for (const char* secret : {"PASSWORD1'", "x' PASSWORD1", "PASSWORD1' --"}) {
        try {
            (Sql("SELECT 1 WHERE a = '") + Secret{secret} + "' AND b = '" + std::string("c'd") + "'").check();
            ADD_FAILURE() << secret;
        } catch (const DbError& error) {
            EXPECT_EQ(std::string(error.what()).find("PASSWORD1"), std::string::npos) << error.what();
        }
    }
    EXPECT_EQ((Sql("a = '") + Secret{"plain"} + "'").text(), "a = 'plain'");
    const Sql joined =
        Sql("n = '") + std::string("Ann") + "' AND " + (Sql("a = '") + Secret{"plain"} + "'") + " OR b = '" + Secret{"x"} + "'";
    EXPECT_EQ(joined.text(), "n = 'Ann' AND a = 'plain' OR b = 'x'");
    EXPECT_EQ(joined.shownText(), "n = 'Ann' AND a = '…' OR b = '…'");
}

} // namespace
} // namespace merchantry::db
