#include "app/storefile.h"
#include "base/text.h"

#include "app/db/embedded/store.h"
#include "app/db/schema/version9.h"
#include "app/serverstore.h"
#include "tests/scratchfolder.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>

namespace merchantry::app {
namespace {

class StoreFiles : public testing::Test {
protected:
    void run(const std::filesystem::path& store, const std::string& batch) const {
        db::NoResult none;
        db::Store::open(store)->session()->execute(batch, none);
    }
    static int version(const std::filesystem::path& store) { return db::schemaVersion(*db::Store::open(store)->session()); }
    template <class Act> static std::string sentenceOf(Act act) {
        try {
            act();
            return "";
        } catch (const std::exception& error) {
            return error.what();
        }
    }
    void makeStore() const {
        createStoreFile(file, {}, [](int) {});
    }

    ScratchFolder folder;
    std::filesystem::path file = folder / "a.store";
};

TEST_F(StoreFiles, AreMadeWholeOrNotAtAll) {
    makeStore();
    EXPECT_TRUE(checkStoreFile(file).empty());
    EXPECT_NE(sentenceOf([&] { makeStore(); }).find("already"), std::string::npos);
    const auto broken = folder / "broken.store";
    EXPECT_EQ(sentenceOf([&] {
                  createStoreFile(
                      broken, [](db::Session&, const auto&) { throw std::runtime_error("no goods"); }, [](int) {});
              }),
              "no goods");
    EXPECT_FALSE(std::filesystem::exists(broken));
}

TEST_F(StoreFiles, BelongToWhoMadeThemAndACopyHasNeverMoreThanItsOriginal) {
    using std::filesystem::perms;
    const auto rights = [](const std::filesystem::path& path) { return std::filesystem::status(path).permissions(); };
    makeStore();
    EXPECT_EQ(rights(file), perms::owner_read | perms::owner_write);
    std::filesystem::permissions(file, perms(0666));
    backupStoreFile(file, folder / "copy.store");
    EXPECT_EQ(rights(folder / "copy.store"), perms::owner_read | perms::owner_write);
    std::filesystem::permissions(folder / "copy.store", perms::owner_read);
    restoreStoreFile(folder / "copy.store", folder / "back.store");
    EXPECT_EQ(rights(folder / "back.store"), perms::owner_read);
}

// What a killed program leaves of a store, a backup or an upgrade's copy.
TEST_F(StoreFiles, HalfMadeOnesAreKnownAndReplaced) {
    makeStore();
    const auto half = [&](const char* name) {
        const std::filesystem::path path = (folder / name).string() + ".making";
        std::filesystem::copy_file(file, path);
        std::ofstream(path.string() + "-journal") << "half";
        EXPECT_NE(sentenceOf([&] { checkStoreFile(path); }).find("was never finished"), std::string::npos);
        return path;
    };
    const auto store = half("new.store");
    createStoreFile(folder / "new.store", {}, [](int) {});
    const auto copy = half("copy.store");
    backupStoreFile(file, folder / "copy.store");
    for (const auto& path : {store, copy}) {
        EXPECT_FALSE(std::filesystem::exists(path));
        EXPECT_FALSE(std::filesystem::exists(path.string() + "-journal"));
    }
    EXPECT_TRUE(checkStoreFile(folder / "new.store").empty());
    EXPECT_TRUE(checkStoreFile(folder / "copy.store").empty());
    // An upgrade that was ended behind its copy makes another: the first may be the only one of the old store.
    const int now = db::kSchemaVersion;
    const std::array<db::UpgradeStep, 1> steps{db::UpgradeStep{now + 1, ""}};
    std::ofstream(file.string() + ".v" + std::to_string(now) + ".bak") << "kept";
    EXPECT_EQ(upgradeStoreFile(file, steps, now + 1), std::filesystem::path(file.string() + ".v" + std::to_string(now) + ".2.bak"));
}

TEST_F(StoreFiles, AreCheckedForChangedAndDamagedTexts) {
    makeStore();
    run(file, "ALTER PROCEDURE sp_GetPOID @PONumber int AS SELECT 0 AS POID");
    run(file, "DROP VIEW PurchaseOrderList");
    EXPECT_EQ(checkStoreFile(file),
              (std::vector<std::string>{"The procedure sp_GetPOID is not as this program made it: it was changed or is damaged.",
                                        "The store lacks PurchaseOrderList."}));
    run(file, "CREATE PROCEDURE OfTheShop AS SELECT Name FROM StoreOptions");
    std::string bytes;
    {
        std::ifstream stream(file, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(stream), {});
    }
    const std::size_t at = bytes.find("OfTheShop AS SELECT");
    ASSERT_NE(at, std::string::npos);
    std::ofstream(file, std::ios::binary) << bytes.replace(at + 13, 6, "SE)ECT");
    const auto found = checkStoreFile(file);
    ASSERT_FALSE(found.empty());
    EXPECT_NE(found.front().find("The text of the procedure OfTheShop in the store is damaged: "), std::string::npos) << found.front();
}

// Another build of the same version made the store, or its backup: what it has otherwise is renewed at the next opening.
TEST_F(StoreFiles, WhoseProceduresWaitToBeRenewedAreSound) {
    makeStore();
    EXPECT_EQ(renewalInWords(file.string()), "");
    run(file, "ALTER PROCEDURE sp_GetPOID @PONumber int AS SELECT 0 AS POID");
    run(file, "DROP VIEW PurchaseOrderList");
    run(file, "UPDATE SchemaContent SET Fingerprint = 'old' WHERE Name IN ('procedures/sp_GetPOID.sql', 'rows/TierDefs.sql')");
    run(file, "DELETE FROM SchemaContent WHERE Name = 'views/PurchaseOrderList.sql'");
    EXPECT_EQ(checkStoreFile(file), std::vector<std::string>());
    EXPECT_EQ(renewalInWords(file.string()),
              "3 procedures, triggers, views and files of first rows wait to be renewed: the program does so "
              "when it opens the store, \"merchantryctl store upgrade\" at once.");
    restoreStoreFile(file, folder / "restored.store");
    EXPECT_EQ(renewStore((folder / "restored.store").string()), 3U);
    EXPECT_EQ(renewalInWords((folder / "restored.store").string()), "");

    run(file, "UPDATE SchemaContent SET Program = '99.0.0' WHERE Name = 'procedures/sp_GetPOID.sql'");
    EXPECT_EQ(checkStoreFile(file), std::vector<std::string>());
    EXPECT_NE(renewalInWords(file.string()).find("as a newer program made them"), std::string::npos);
    run(file, "ALTER PROCEDURE sp_GetPO @PONumber int AS SELECT 0");
    EXPECT_EQ(checkStoreFile(file).size(), 1U) << "what another build did not change";
}

TEST_F(StoreFiles, AreCheckedForTablesThatWereChanged) {
    makeStore();
    run(file, "DROP INDEX PurchaseOrder.IX_PurchaseOrder_Number CREATE TABLE OfTheShop (ID int) ALTER TABLE Suppliers ADD Rating int NULL "
              "ALTER TABLE Customer ALTER COLUMN Email varchar(20) NULL ALTER TABLE BillingCycle DROP CONSTRAINT CK_BillingCycle");
    run(file, "ALTER TABLE StoreOptions DROP COLUMN GiftExpire");
    EXPECT_EQ(checkStoreFile(file),
              (std::vector<std::string>{"The column Email of the table Customer is not as this program makes it.",
                                        "The store lacks the column GiftExpire of the table StoreOptions.",
                                        "The store lacks the index IX_PurchaseOrder_Number of the table PurchaseOrder.",
                                        "The store lacks the key or check CK_BillingCycle of the table BillingCycle."}));
}

TEST_F(StoreFiles, AreCheckedForReferencesToTablesThatAreNotThere) {
    makeStore();
    std::string bytes;
    {
        std::ifstream stream(file, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(stream), {});
    }
    const std::string reference = "REFERENCES \"PurchaseOrder\"(\"POID\")";
    std::size_t at = bytes.find(reference);
    ASSERT_NE(at, std::string::npos);
    bytes[at + reference.find("r\"(")] = 'Z';
    std::ofstream(file, std::ios::binary) << bytes;
    const auto found = checkStoreFile(file);
    ASSERT_FALSE(found.empty());
    EXPECT_NE(found.front().find("refers to a table PurchaseOrdeZ, which is not there"), std::string::npos) << found.front();
}

TEST_F(StoreFiles, CopiesAndRestoresAreComplete) {
    makeStore();
    run(file, "INSERT INTO Suppliers (Supplier) VALUES ('Acme')");
    const auto copy = folder / "copy.store";
    backupStoreFile(file, copy);
    EXPECT_NE(sentenceOf([&] { backupStoreFile(file, copy); }).find("already"), std::string::npos);
    run(file, "DELETE FROM Suppliers WHERE SupID = 1");
    run(copy, "IF (SELECT COUNT(*) FROM Suppliers) <> 2 RAISERROR('the copy lacks a row', 16, 1)");
    restoreStoreFile(copy, file);
    run(file, "IF (SELECT COUNT(*) FROM Suppliers) <> 2 RAISERROR('not restored', 16, 1)");
    EXPECT_TRUE(checkStoreFile(file).empty());
}

TEST_F(StoreFiles, ABadBackupIsNeverRestored) {
    makeStore();
    run(file, "INSERT INTO Suppliers (Supplier) VALUES ('Acme')");
    const auto bad = folder / "bad.store";
    std::ofstream(bad) << "This is a letter to a supplier.";
    EXPECT_NE(sentenceOf([&] { restoreStoreFile(bad, file); }), "");
    EXPECT_NE(sentenceOf([&] { restoreStoreFile(folder / "none.store", file); }), "");
    run(file, "IF (SELECT COUNT(*) FROM Suppliers) <> 2 RAISERROR('touched', 16, 1)");
}

TEST_F(StoreFiles, OlderStoresAreUpgradedWithACopyAndNewerOnesRefused) {
    makeStore();
    EXPECT_EQ(upgradeStoreFile(file), std::filesystem::path());
    run(file, "DROP PROCEDURE bsp_NewItem");
    const int now = db::kSchemaVersion;
    const std::array<db::UpgradeStep, 2> steps{db::UpgradeStep{now, "RAISERROR('run twice', 16, 1)"},
                                               db::UpgradeStep{now + 1, "ALTER TABLE Suppliers ADD Rating int NOT NULL DEFAULT 3"}};
    const auto copy = upgradeStoreFile(file, steps, now + 1);
    EXPECT_EQ(copy, std::filesystem::path(file.string() + ".v" + std::to_string(now) + ".bak"));
    EXPECT_EQ(version(copy), now);
    EXPECT_EQ(version(file), now + 1);
    run(file, "IF (SELECT Rating FROM Suppliers) <> 3 RAISERROR('no rating', 16, 1)");
    run(file, "bsp_NewItem 'a', 'a'");
    EXPECT_NE(sentenceOf([&] { db::checkSchemaVersion(*db::Store::open(file)->session()); }).find("newer version"), std::string::npos);
    EXPECT_NE(sentenceOf([&] { db::refuseNewerSchema(*db::Store::open(file)->session()); }).find("newer version"), std::string::npos);
    EXPECT_NE(sentenceOf([&] { checkStoreFile(file); }).find("newer version"), std::string::npos);
    EXPECT_NE(sentenceOf([&] { restoreStoreFile(file, folder / "back.store"); }).find("newer version"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(folder / "back.store"));
    EXPECT_NE(sentenceOf([&] { upgradeStoreFile(file); }).find("newer version"), std::string::npos);

    const auto other = folder / "other.store";
    createStoreFile(other, {}, [](int) {});
    const std::array<db::UpgradeStep, 2> failing{db::UpgradeStep{now + 1, "ALTER TABLE Suppliers ADD Rating int NULL"},
                                                 db::UpgradeStep{now + 2, "SELECT * FROM Nowhere"}};
    EXPECT_NE(sentenceOf([&] { upgradeStoreFile(other, failing, now + 2); }).find("version " + std::to_string(now + 2)), std::string::npos);
    EXPECT_EQ(version(other), now);
    EXPECT_NE(sentenceOf([&] { run(other, "SELECT Rating FROM Suppliers"); }), "");
}

TEST_F(StoreFiles, StoresOfTheFirstVersionGetTheTablesAndProceduresMadeSince) {
    makeStore();
    run(file, "DELETE FROM SchemaVersion WHERE Version > 1 INSERT INTO SchemaVersion (Version) VALUES (1) DROP PROCEDURE bsp_SubsGrid "
              "DROP TABLE PriceChangeItem DROP TABLE PriceChange DROP VIEW PurchaseOrderList");
    run(file, "DROP TABLE LabelReports DELETE FROM reportfieldsmapping");
    run(file, "DROP TABLE ImportItem DROP TABLE ImportField DROP TABLE ImportRun DROP TABLE ImportHeadings");
    run(file, "ALTER TABLE reportfieldsmapping DROP CONSTRAINT DF_reportfieldsmapping_Position");
    run(file, "ALTER TABLE reportfieldsmapping DROP COLUMN position");
    run(file, "DROP TRIGGER InventoryLedger_Insert ALTER TABLE InventoryLedger DROP COLUMN ReversesID");
    run(file,
        "INSERT INTO Item (SKU, MatrixSKU) VALUES ('a', 'a') INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea, Cost_wt, "
        "QtyAfter) VALUES ('a', 'a', 'Adjustment', 5, 2, 2, 5)");
    EXPECT_TRUE(isOlderStore(file));
    EXPECT_NE(sentenceOf([&] { db::checkSchemaVersion(*db::Store::open(file)->session()); }).find("older version"), std::string::npos);
    EXPECT_EQ(upgradeStoreFile(file), std::filesystem::path(file.string() + ".v1.bak"));
    EXPECT_FALSE(isOlderStore(file));
    EXPECT_EQ(version(file), db::kSchemaVersion);
    run(file, "bsp_SubsGrid 'a', 'a' EXEC bsp_PurchaseOrders");
    run(file, "bsp_NewPriceChange 'a' INSERT INTO PriceChangeItem VALUES (1, 'a', 'a', 1, 1, 2, 3) EXEC bsp_PriceChangeItems 1");
    run(file, "bsp_UndoAdjustment 1"); // a movement of the older store can be taken back now
    run(file, "IF NOT EXISTS (SELECT * FROM InventoryLedger WHERE ReversesID = 1 AND QtyAfter = 0) RAISERROR('not undone', 16, 1)");
    run(file, "IF NOT EXISTS (SELECT * FROM reportfieldsmapping WHERE reportname = 'DailySales' AND position = 1 AND dateconvert = 1) "
              "RAISERROR('no criteria', 16, 1)");
    run(file, "CREATE TABLE #r (Report varchar(255)) INSERT INTO #r EXEC sp_GetLabelRpt 'Roll, 1 1/2 x 1 in', 'PO #' "
              "IF NOT EXISTS (SELECT * FROM #r WHERE Report = 'ItemRollSmallPO.rpt') RAISERROR('no labels', 16, 1)");
    EXPECT_EQ(checkStoreFile(file), std::vector<std::string>()); // the upgraded tables are those of a new store
    EXPECT_FALSE(isOlderStore(folder / "none.store"));
}

// A store as version 8 left it: order keys of 16 bits, movements without a kind, and a write-off that came back at what was paid for the
// others.
TEST_F(StoreFiles, VersionEightGetsWideOrderNumbersKindsAndTheAveragesOfUndoneWriteOffs) {
    makeStore();
    const std::string step = db::kToVersion9;
    const std::string narrow = replaced(step.substr(0, step.find("-- What a movement is")), " int N", " smallint N");
    run(file, "INSERT INTO PurchaseOrder (PONumber) VALUES (1) INSERT INTO Item (SKU, MatrixSKU) VALUES ('a', 'a') "
              "INSERT INTO PurchaseOrderItem (POID, SKU, MatrixSKU, Qty, QtyCanceled) VALUES (1, 'a', 'a', 3, 3) "
              "INSERT INTO ItemSubstitutes (SKU, MatrixSKU, SubSKU, SubMatrixSKU) VALUES ('a', 'a', 'gone', 'gone')");
    run(file, replaced(narrow, "'POID') = 2", "'POID') = 4"));
    run(file, "DROP TRIGGER InventoryLedger_Insert DROP TRIGGER TaxDef_Rate ALTER TABLE TransactionTax DROP COLUMN Rate "
              "ALTER TABLE InventoryLedger DROP CONSTRAINT DF_InventoryLedger_Kind");
    run(file, "ALTER TABLE InventoryLedger DROP COLUMN Kind DELETE FROM SchemaVersion INSERT INTO SchemaVersion (Version) VALUES (8)");
    run(file,
        "INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea, Cost_wt, QtyAfter, ReversesID) VALUES "
        "('a', 'a', 'Receipt', 10, 2, 2, 10, NULL), ('a', 'a', 'Damaged', -5, 0, 2, 5, NULL), ('a', 'a', 'Receipt', 5, 4, 3, 10, NULL), "
        "('a', 'a', 'Damaged', 5, 0, 3, 15, 2), ('a', 'a', 'Sale', -5, 3, 3, 10, NULL)");
    upgradeStoreFile(file);
    EXPECT_EQ(checkStoreFile(file), std::vector<std::string>());
    run(file, "SET IDENTITY_INSERT PurchaseOrder ON INSERT INTO PurchaseOrder (POID, PONumber) VALUES (40000, 70000) SET IDENTITY_INSERT "
              "PurchaseOrder OFF EXEC sp_InsertPOItem 40000, 'a', 'a', 1, 1, ''");
    run(file, "IF (SELECT COUNT(*) FROM PurchaseOrderItem WHERE POID IN (1, 40000)) <> 2 RAISERROR('an order is lost', 16, 1) "
              "IF EXISTS (SELECT * FROM InventoryLedger WHERE Kind <> CASE Type WHEN 'Damaged' THEN 'Adjustment' ELSE Type END) "
              "RAISERROR('no kind', 16, 1)");
    run(file,
        "IF EXISTS (SELECT * FROM InventoryLedger WHERE Cost_wt <> CASE WHEN LedgerID < 3 THEN 2 WHEN LedgerID = 3 THEN 3 ELSE 2.6667 "
        "END) RAISERROR('a wrong average', 16, 1)");
    run(file, "IF (SELECT Status FROM PurchaseOrder WHERE POID = 1) <> 'C' OR EXISTS (SELECT * FROM ItemSubstitutes) RAISERROR('left "
              "behind', 16, "
              "1)");
    EXPECT_NE(sentenceOf([&] { run(file, "INSERT INTO PurchaseOrderItem (POID, SKU, MatrixSKU) VALUES (7, 'a', 'a')"); }), "");
}

// Version 11 did not know which postings a run of statements had seen: those that were there when it was posted.
TEST_F(StoreFiles, VersionElevenGetsThePostingsThatItsStatementsKnew) {
    makeStore();
    run(file, "ALTER TABLE StatementRun DROP CONSTRAINT DF_StatementRun_LastPosting");
    run(file, "ALTER TABLE StatementRun DROP COLUMN LastPosting DELETE FROM SchemaVersion INSERT INTO SchemaVersion (Version) VALUES (11)");
    run(file, "INSERT INTO Customer (FirstName) VALUES ('Ann') INSERT INTO batch (CashierID) VALUES (5) "
              "INSERT INTO StatementRun (AsAt, Posted, BatchNumber) VALUES ('20260320', '20260321 10:00', 1) "
              "INSERT INTO CreditTransaction (CustomerID, Time) VALUES (1, '20260301'), (1, '20260320 23:59:59'), (1, '20260401')");
    upgradeStoreFile(file);
    EXPECT_EQ(checkStoreFile(file), std::vector<std::string>());
    run(file, "IF (SELECT LastPosting FROM StatementRun) <> 2 RAISERROR('other postings', 16, 1)");
}

// Version 9 took any description for a tax class, and had no word on which one is the default.
TEST_F(StoreFiles, VersionNineKeepsEveryTaxClassUnderANameOfItsOwn) {
    makeStore();
    run(file, "DROP TRIGGER TaxDef_Default DROP INDEX TaxDef.IX_TaxDef_Description DROP TABLE FirstRoad DELETE FROM TenderTypes WHERE "
              "TenderType = 'Mobile Payment' DELETE FROM SchemaVersion INSERT INTO SchemaVersion (Version) VALUES (9)");
    run(file, "INSERT INTO TaxDef (Amt, Description, DefaultTax) VALUES (5, 'VAT', 1), (6, 'vat ', 1), (7, 'VAT (2)', 0), (8, 'VAT', 0), "
              "(9, 'NONE', 0), (10, REPLICATE('x', 50), 0), (11, REPLICATE('X', 50), 0)");
    run(file, "INSERT INTO Item (SKU, MatrixSKU, TaxID) VALUES ('a', 'a', 4)");
    upgradeStoreFile(file);
    EXPECT_EQ(sentenceOf([&] { checkStoreFile(file); }), "");
    run(file,
        "CREATE TABLE #wanted (Amt float, Description varchar(50), DefaultTax bit) INSERT INTO #wanted VALUES (0, 'None', 0), (5, 'VAT', "
        "0), "
        "(6, 'vat (3)', 1), (7, 'VAT (2)', 0), (8, 'VAT (4)', 0), (9, 'NONE (2)', 0), (10, REPLICATE('x', 50), 0), "
        "(11, REPLICATE('X', 46) + ' (2)', 0) "
        "IF EXISTS (SELECT Amt, Description, DefaultTax FROM TaxDef EXCEPT SELECT * FROM #wanted) OR (SELECT COUNT(*) FROM TaxDef) <> 8 "
        "RAISERROR('a class is lost', 16, 1)");
    run(file, "IF (SELECT t.Amt FROM TaxDef t INNER JOIN Item i ON i.TaxID = t.TaxID) <> 8 RAISERROR('another rate', 16, 1) "
              "IF (SELECT Available FROM TenderTypes WHERE TenderType = 'Mobile Payment') <> 0 RAISERROR('offered unasked', 16, 1) "
              "IF (SELECT PutAway FROM FirstRoad) IS NULL RAISERROR('a shop at work is shown its first steps', 16, 1)");
    EXPECT_NE(sentenceOf([&] { run(file, "INSERT INTO TaxDef (Description) VALUES ('vat')"); }), "");
}

TEST_F(StoreFiles, AreReachedByLinks) {
    makeStore();
    const auto link = folder / "link.store";
    std::filesystem::create_symlink(file, link);
    EXPECT_EQ(checkStoreFile(link), std::vector<std::string>());
    run(link, "UPDATE StoreOptions SET Name = 'by the link'");
    run(file, "IF (SELECT Name FROM StoreOptions) <> 'by the link' RAISERROR('another store', 16, 1)");
}

TEST_F(StoreFiles, WhatIsNoStoreIsSaidToBeNone) {
    db::Store::create(file);
    EXPECT_NE(sentenceOf([&] { db::checkSchemaVersion(*db::Store::open(file)->session()); }).find("not a store"), std::string::npos);
    EXPECT_NE(sentenceOf([&] { checkStoreFile(folder / "none.store"); }).find("no store file"), std::string::npos);
}

} // namespace
} // namespace merchantry::app
