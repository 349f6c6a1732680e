#include "tests/db/embedded/rows.h"

#include <gtest/gtest.h>

namespace merchantry::db {
namespace {

// Days of plain columns are counted by SQLite's own arithmetic, all others by the engine's function: both alike, on either side of 1900.
TEST(Dates, DaysBetweenColumnsAreThoseBetweenValues) {
    const auto session = Store::scratch()->session();
    rowsOf(*session, "CREATE TABLE D (a datetime, b datetime, s smalldatetime)");
    for (const char* pair :
         {"'2024-02-29 23:59:59.997', '2024-03-01', '2024-03-01 12:00'", "'1899-12-31 23:00', '1900-01-01 01:00', '1900-01-01'",
          "'1890-05-05', '1890-05-04 23:59', NULL", "'1753-01-01', '9999-12-31 23:59:59', '2079-06-06'"})
        rowsOf(*session, std::string("INSERT INTO D VALUES (") + pair + ")");
    const std::string plain =
        rowsOf(*session, "SELECT DATEDIFF(day, a, b), DATEDIFF(dd, 0, a), DATEDIFF(d, '1899-12-30 12:00', b), DATEDIFF(day, b, s) "
                         "FROM D ORDER BY a");
    // An expression is no plain column any more.
    const std::string computed = rowsOf(
        *session, "SELECT DATEDIFF(day, DATEADD(day, 0, a), b), DATEDIFF(dd, 0, DATEADD(day, 0, a)), DATEDIFF(d, '1899-12-30 12:00', "
                  "DATEADD(day, 0, b)), DATEDIFF(day, DATEADD(day, 0, b), s) FROM D ORDER BY a");
    EXPECT_EQ(plain, computed);
    EXPECT_EQ(plain.substr(plain.find("1|45349")), "1|45349|45352|0\n");
    EXPECT_EQ(errorOf(*session, "SELECT DATEDIFF(day, a, 'no date') FROM D"), 241);
}

} // namespace
} // namespace merchantry::db
