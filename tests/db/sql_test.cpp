#include "app/db/sql.h"

#include "app/db/dberror.h"

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
    for (const char* good : {"12", "-3", "+1.5", "1e5", "-1.5E-3", "Item", "TierID", "", "''", "'x'", "'O''Brien'", "'1; --'"})
        EXPECT_EQ(errorOf(Sql("DELETE FROM T WHERE ID = ") + std::string(good)), 0) << good;
    for (const char* bad :
         {"1 OR 1=1", "1;", "1--", "--1", "(1)", "1/**/", "a b", "'x' OR 1=1 OR 'a'='a'", "'x''", "'", "N'x'", "x'y'", "1,2", "-", "- 1"})
        EXPECT_EQ(errorOf(Sql("DELETE FROM T WHERE ID = ") + std::string(bad)), 102) << bad;
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
}

} // namespace
} // namespace merchantry::db
