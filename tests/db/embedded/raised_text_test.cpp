#include "tests/db/embedded/rows.h"

#include <gtest/gtest.h>

namespace merchantry::db {
namespace {

// What RAISERROR says with these arguments; or "error N".
std::string raised(const std::string& arguments) {
    const auto session = Store::scratch()->session();
    try {
        rowsOf(*session, "RAISERROR (" + arguments + ")");
    } catch (const DbError& error) {
        return error.native() == 50000 ? error.what() : "error " + std::to_string(error.native());
    }
    return "nothing";
}

TEST(RaisedText, fillsInWhatTheFormatAsksFor) {
    const std::pair<const char*, const char*> kCases[] = {
        {"'plain', 16, 1", "plain"},
        {"'%d and %i', 16, 1, -42, 7", "-42 and 7"},
        {"'%u', 16, 1, -1", "4294967295"},
        {"'%x %X %o', 16, 1, 255, 255, 8", "ff FF 10"},
        {"'%#x', 16, 1, 255", "0xff"},
        {"'[%5d][%-5d][%05d][%+d][% d]', 16, 1, 42, 42, 42, 42, 42", "[   42][42   ][00042][+42][ 42]"},
        {"'[%.3d]', 16, 1, 7", "[007]"},
        {"'[%*d][%-*s]', 16, 1, 4, 7, 4, 'a'", "[   7][a   ]"},
        {"'[%s][%6s][%-6s][%.2s][%6.2s]', 16, 1, 'text', 'right', 'left', 'cut', 'cut'", "[text][ right][left  ][cu][    cu]"},
        {"N'[%4s]', 16, 1, N'\xC5\x81\xC3\xB3'", "[  \xC5\x81\xC3\xB3]"}, // by characters, not bytes
        {"'%d%% of %s', 16, 1, 5, 'all'", "5% of all"},
        {"'%d %s', 16, 1, NULL", "(null) (null)"},
        {"'%hd %ld', 16, 1, 3, 4", "3 4"},
        {"'%z', 16, 1", "error 2787"},
        {"'100%', 16, 1", "error 2787"},
        {"'%d', 16, 1, 'x'", "error 2786"},
        {"'%s', 16, 1, 5", "error 2786"},
        {"'%d', 16, 1, $5", "error 2786"},
    };
    for (const auto& [arguments, text] : kCases)
        EXPECT_EQ(raised(arguments), text) << arguments;
}

TEST(RaisedText, takesBigNumbersInTheirOwnFormat) {
    const auto session = Store::scratch()->session();
    const auto say = [&](const std::string& format) {
        return rowsOf(*session, "DECLARE @b BIGINT SET @b = 12345678901 BEGIN TRY RAISERROR ('" + format +
                                    "', 16, 1, @b) END TRY BEGIN CATCH SELECT ERROR_MESSAGE() END CATCH");
    };
    EXPECT_EQ(say("%I64d"), "12345678901\n");
    EXPECT_EQ(say("%d").substr(0, 41), "The data type of substitution parameter 1");
}

TEST(RaisedText, endsInPointsWhereAMessageEnds) {
    const auto session = Store::scratch()->session();
    EXPECT_EQ(rowsOf(*session, "DECLARE @t VARCHAR(3000) SET @t = REPLICATE('a', 3000) BEGIN TRY RAISERROR (@t, 16, 1) END TRY BEGIN CATCH "
                               "SELECT LEN(ERROR_MESSAGE()), RIGHT(ERROR_MESSAGE(), 4) END CATCH"),
              "2047|a...\n");
}

} // namespace
} // namespace merchantry::db
