#include "tests/db/embedded/rows.h"

#include <gtest/gtest.h>

namespace merchantry::db {
namespace {

TEST(Script, partsAtLinesOfGo) {
    const auto batches = embedded::batchesOf("SELECT 1\r\nGO\r\n\n go  -- next\nSELECT '\nGO\n' /*\nGO */\nGo 3\n   \nGO\nSELECT 2 GO");
    ASSERT_EQ(batches.size(), 3U);
    EXPECT_EQ(batches[0].text, "SELECT 1\r\n");
    EXPECT_EQ(batches[1].line, 5);
    EXPECT_EQ(batches[1].times, 3);
    EXPECT_EQ(batches[2].text, "SELECT 2 GO\n");
}

TEST(Script, takesWindowsTextsForWhatTheyAre) {
    EXPECT_EQ(embedded::batchesOf("SELECT 'M\xFCnchen \x80'")[0].text, "SELECT 'M\xC3\xBCnchen \xE2\x82\xAC'\n");
    EXPECT_EQ(embedded::batchesOf("SELECT 'M\xC3\xBCnchen'")[0].text, "SELECT 'M\xC3\xBCnchen'\n");
}

// As tools of Windows save them: each character in two bytes or four, with a mark in front.
TEST(Script, readsUtf16InEitherOrder) {
    const std::u16string script = u"\uFEFFSELECT N'\u0141\u00F3\U0001F600'\r\nGO\r\nSELECT '\u0A0A'\r\n";
    for (const bool highFirst : {false, true}) {
        std::string bytes;
        for (const char16_t unit : script) {
            const char halves[] = {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
            bytes += halves[highFirst ? 0 : 1];
            bytes += halves[highFirst ? 1 : 0];
        }
        const auto batches = embedded::batchesOf(bytes);
        ASSERT_EQ(batches.size(), 2U);
        EXPECT_EQ(batches[0].text, "SELECT N'\xC5\x81\xC3\xB3\xF0\x9F\x98\x80'\r\n");
        EXPECT_EQ(batches[1].line, 3);
    }
    EXPECT_EQ(embedded::batchesOf(std::string("\xFF\xFE", 2) + std::string("1\0\x3D\xD8\x32", 5))[0].text, "1\xEF\xBF\xBD"
                                                                                                           "2\n"); // cut off
}

TEST(Script, findsWhatOldScriptsLookForBeforeTheyDropIt) {
    const auto session = Store::scratch()->session();
    runScript(*session, "CREATE PROCEDURE p AS SELECT 1\nGO\nCREATE TABLE t (a INT)\nGO\nCREATE VIEW v AS SELECT a FROM t\nGO\n"
                        "CREATE TRIGGER r ON t FOR INSERT AS RETURN\nGO\n"
                        "if exists (select * from sysobjects where id = object_id('dbo.p') and sysstat & 0xf = 4) drop procedure dbo.p");
    EXPECT_EQ(rowsOf(*session, "SELECT name, sysstat & 0xf FROM sysobjects WHERE sysstat & 0xf > 0 ORDER BY name"), "r|8\nt|3\nv|2\n");
}

// A script as sample databases have it: types of its own, defaults, checks, references, identity, trigger, view, procedures.
TEST(Script, runsWhatSampleDatabasesHold) {
    const auto session = Store::scratch()->session();
    Rows rows;
    runScript(
        *session,
        "SET NOCOUNT ON\nGO\nset dateformat mdy\nUSE master\nGO\nif exists (select * from sysdatabases where name='shop')\nbegin\n  "
        "raiserror('Dropping',0,1)\n"
        "  DROP database shop\nend\nGO\nCREATE DATABASE shop\nGO\nUSE shop\nGO\nexecute sp_addtype code, 'varchar(11)', 'NOT NULL'\nGO\n"
        "CREATE TABLE maker (id code CHECK (id like '[0-9][0-9]-[A-Z]%') CONSTRAINT pk_m PRIMARY KEY CLUSTERED, phone char(12) NOT NULL "
        "DEFAULT ('UNKNOWN'), made datetime NOT NULL DEFAULT (getdate()))\n"
        "GO\nCREATE TABLE job (id smallint IDENTITY(1,1) PRIMARY KEY, lvl tinyint NOT NULL CHECK (lvl >= 10), maker code REFERENCES "
        "maker(id))\nGO\n"
        "CREATE TRIGGER job_new ON job FOR insert, UPDATE AS\ndeclare @lvl tinyint\nselect @lvl = i.lvl from job j, inserted i where j.id "
        "= i.id\n"
        "IF (@lvl > 200)\nbegin\n   raiserror ('Level %d is too high for %s.', 16, 1, @lvl, 'it')\n   ROLLBACK TRANSACTION\nend\nGO\n"
        "insert maker (id) values ('12-Abc')\ninsert job values (10, '12-Abc')\nGO\n"
        "CREATE INDEX ix ON job (lvl)\nGO\nCREATE VIEW jobs AS select j.id, phone from job j, maker m where j.maker = m.id\nGO\n"
        "CREATE PROCEDURE bylevel @lvl int = 10, @n int OUTPUT AS select id from job where lvl >= @lvl\nset @n = @@rowcount\nGO\n"
        "GRANT EXECUTE ON bylevel TO guest\nGO\nUPDATE STATISTICS job\nCHECKPOINT\nGO\n"
        "declare @n int\nexec bylevel @n = @n output\nselect @n, phone from jobs\n",
        rows);
    EXPECT_EQ(rows.text, "1\n--\n1|UNKNOWN     \n");
    EXPECT_EQ(errorOf(*session, "insert job values (201, '12-Abc')"), 50000);
    EXPECT_EQ(errorOf(*session, "insert maker (id) values ('1-A')"), 547);
    EXPECT_EQ(rowsOf(*session, "select count(*) from job"), "1\n");
}

TEST(Script, namesTheLineOfTheScript) {
    const auto session = Store::scratch()->session();
    try {
        runScript(*session, "SELECT 1\nGO\n\nSELECT 1\nSELECT nope\n");
        ADD_FAILURE();
    } catch (const DbError& error) {
        EXPECT_EQ(error.line(), 5);
    }
}

} // namespace
} // namespace merchantry::db
