#include "app/db/schema/content.h"
#include "app/db/schema/runfile.h"
#include "app/db/schema/schema.h"
#include "base/text.h"
#include "tests/db/teststore.h"

namespace merchantry::db {
namespace {

// Stores that another program of the same schema version has been at work on.
class Content : public OnAStore {
protected:
    Content() { createSchema(*session); }

    // As if the store had been made from another text of that file.
    void makeStale(const std::string& name) { run("UPDATE SchemaContent SET Fingerprint = 'old' WHERE Name = '" + name + "'"); }
    std::string renewed() {
        std::string names;
        for (const std::string& name : renewContent(*session))
            names += name + ";";
        return names;
    }
};

TEST_F(Content, OfAStoreThatThisProgramMadeIsLeftAlone) {
    run("ALTER PROCEDURE sp_GetPOID @PONumber int AS SELECT 0 AS POID");
    EXPECT_EQ(renewed(), "");
    EXPECT_EQ(rowsOf("sp_GetPOID 4"), "0");
}

TEST_F(Content, OfChangedFilesIsRenewedOnce) {
    run("ALTER PROCEDURE sp_GetPOID @PONumber int AS SELECT 0 AS POID DROP VIEW PurchaseOrderList DROP TRIGGER Item_Codes");
    for (const char* name : {"procedures/sp_GetPOID.sql", "views/PurchaseOrderList.sql", "triggers/Item_Codes.sql"})
        makeStale(name);
    run("DELETE FROM SchemaContent WHERE Name = 'procedures/bsp_NewItem.sql' DROP PROCEDURE bsp_NewItem");
    EXPECT_EQ(renewed(), "views/PurchaseOrderList.sql;triggers/Item_Codes.sql;procedures/bsp_NewItem.sql;procedures/sp_GetPOID.sql;");
    EXPECT_EQ(rowsOf("sp_GetPOID 4"), "");
    EXPECT_EQ(rowsOf("SELECT OBJECT_NAME(OBJECT_ID('Item_Codes')), OBJECT_NAME(OBJECT_ID('bsp_NewItem'))"), "Item_Codes|bsp_NewItem");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM PurchaseOrderList"), "0");
    EXPECT_EQ(renewed(), "");
}

TEST_F(Content, ThatTheProgramHasNoMoreGoes) {
    run("CREATE PROCEDURE bsp_Former AS SELECT 1");
    run("CREATE PROCEDURE OfTheShop AS SELECT 1");
    run("INSERT INTO SchemaContent VALUES ('procedures/bsp_Former.sql', 'f', '0.0.1')");
    EXPECT_EQ(renewed(), "procedures/bsp_Former.sql;");
    EXPECT_EQ(rowsOf("SELECT OBJECT_ID('bsp_Former'), OBJECT_NAME(OBJECT_ID('OfTheShop'))"), "NULL|OfTheShop");
}

TEST_F(Content, OfANewerProgramStays) {
    run("UPDATE SchemaContent SET Fingerprint = 'f', Program = '10.0.1' WHERE Name = 'procedures/sp_GetPOID.sql'");
    EXPECT_EQ(renewed(), "");
    run("UPDATE SchemaContent SET Program = '0.0.99' WHERE Name = 'procedures/sp_GetPOID.sql'");
    EXPECT_EQ(renewed(), "procedures/sp_GetPOID.sql;");
}

// What a shop made of the first rows is its own.
TEST_F(Content, OfFirstRowsLeavesWhatTheShopChanged) {
    run("UPDATE TierDefs SET TierName = 'Shop' DELETE FROM TenderTypes WHERE TenderType <> 'Cash' UPDATE Cashier SET Password = 'x'");
    run("INSERT INTO reportfieldsmapping (reportname, fieldname, fielddescription) VALUES ('DailySales', 'Item.UPC', 'UPC')");
    run("DELETE FROM reportfieldsmapping WHERE reportname = 'DailySales' AND position > 2");
    run("UPDATE LabelReports SET Report = 'OurRoll.rpt' WHERE Report = 'ItemRollSmall.rpt'");
    run("UPDATE SchemaContent SET Fingerprint = 'old' WHERE Name LIKE 'rows/%'");
    EXPECT_NE(renewed().find("rows/Cashier.sql;"), std::string::npos);
    EXPECT_EQ(rowsOf("SELECT TierName FROM TierDefs"), "Shop");
    EXPECT_EQ(rowsOf("SELECT TenderType FROM TenderTypes"), "Cash");
    EXPECT_EQ(rowsOf("SELECT Password FROM Cashier"), "x");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM reportfieldsmapping WHERE reportname = 'DailySales'"), "10");
    EXPECT_EQ(rowsOf("SELECT COUNT(*), COUNT(CASE WHEN Report = 'OurRoll.rpt' THEN 1 END) FROM LabelReports"), "20|1");
    EXPECT_EQ(renewed(), "");
}

TEST_F(Content, ThatCannotBePutLeavesTheStoreAsItWas) {
    makeStale("procedures/bsp_NewItem.sql");
    makeStale("procedures/sp_GetPOID.sql");
    run("DROP PROCEDURE sp_GetPOID CREATE TABLE sp_GetPOID (ID int)"); // the name is taken by something that is not dropped
    try {
        renewContent(*session);
        ADD_FAILURE() << "renewed over a table";
    } catch (const DbError& error) {
        EXPECT_EQ(std::string(error.what()).find("procedures/sp_GetPOID.sql, line "), 0U) << error.what();
    }
    EXPECT_EQ(session->transactionDepth(), 0);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM SchemaContent WHERE Fingerprint = 'old'"), "2");
    EXPECT_EQ(rowsOf("SELECT OBJECT_NAME(OBJECT_ID('bsp_NewItem'))"), "bsp_NewItem");
}

TEST_F(Content, WithAMistakeIsToldByFileAndLine) {
    const std::pair<const char*, const char*> mistakes[] = {
        {"-- Where an order is.\nCREATE PROCEDURE Wrong AS\nSELECT 1\nSELEC 2", "procedures/Wrong.sql, line 4: "},
        {"CREATE PROCEDURE Wrong AS\nIF 1 = 1\nBEGIN\n  SELECT (1\nEND", "procedures/Wrong.sql, line 5: "},
        {"IF 1 = 1\n  INSERT INTO TierDefs (Tier)\n  VALUES ('x')", "procedures/Wrong.sql, line 2: "},
        {"-- Lines of what is called are not this file's.\nEXEC Fails", "procedures/Wrong.sql: "},
    };
    run("CREATE PROCEDURE Fails AS\n\n\nRAISERROR('It failed.', 16, 1)");
    for (const auto& [text, told] : mistakes)
        try {
            runFile(*session, "procedures/Wrong.sql", text);
            ADD_FAILURE() << "ran: " << text;
        } catch (const DbError& error) {
            EXPECT_EQ(std::string(error.what()).find(told), 0U) << error.what();
        }
}

// Existing stores do not get what a table's file says unless a step brings it: a column without one is missed by its first user.
TEST(Tables, ThatChangeWantAVersionAndAStep) {
    std::string statements;
    for (const SchemaFile& file : schemaFiles())
        if (file.name.starts_with("tables/"))
            for (const std::string& line : split(file.text, "\n"))
                if (!line.starts_with("--"))
                    statements += line + "\n";
    EXPECT_EQ(std::to_string(kSchemaVersion) + " " + std::to_string(std::hash<std::string>()(statements)), "13 12514414434027000103")
        << "A table changed: raise kSchemaVersion in schema.h, add a step to schema.cpp for the stores that exist, then note the text "
           "above here.";
}

} // namespace
} // namespace merchantry::db
