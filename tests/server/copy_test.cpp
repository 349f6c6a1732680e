#include "app/db/eachrow.h"
#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"
#include "app/storecopy.h"
#include "app/storefile.h"
#include "base/guard.h"
#include "tests/scratchfolder.h"
#include "tests/server/onaserver.h"

#include <algorithm>

namespace merchantry::app {
namespace {

class CopyOnAServer : public testing::Test {
protected:
    void SetUp() override {
        if (db::testServer().empty())
            GTEST_SKIP() << "skipped, no server";
        address = db::ownDatabase("copy");
    }
    void TearDown() override {
        if (IsSkipped())
            return;
        try {
            db::server::dropDatabase(address);
        } catch (const db::DbError&) { // nothing was left
        }
    }

    std::string place() const {
        return "Data Source=" + address.sourceText() + "; Initial Catalog=" + address.database + "; User ID=" + address.user +
               "; Password=" + address.password;
    }
    // All cells of all tables, the rows of each in order of their texts.
    static std::vector<std::string> allRows(db::Session& session) {
        std::vector<std::string> all;
        for (const std::string& table : db::schemaTables()) {
            db::EachRow rows([&](const db::RowView& row) {
                std::string text = table;
                for (int i = 0; i < row.size(); ++i)
                    text += "|" + row.value(i).toScriptText();
                all.push_back(std::move(text));
            });
            session.execute("SELECT * FROM [" + table + "]", rows);
        }
        std::sort(all.begin(), all.end());
        return all;
    }
    void makeFile(const std::filesystem::path& file) const {
        createStoreFile(
            file,
            [](db::Session& session, const std::function<void(int)>&) {
                db::NoResult none;
                session.execute("INSERT INTO Item (SKU, MatrixSKU, Name, TypeID, Reorder) VALUES ('A''1', 'A''1', '\xC3\x89tui', 6, 0.1) "
                                "INSERT INTO Item (SKU, MatrixSKU, Name, TypeID, Notes) VALUES ('B', 'B', '', 6, 'two\r\nlines') "
                                "INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) VALUES ('B', 'B', 'Receipt', 5, 3.3333) "
                                "DELETE FROM InventoryLedger WHERE Qty = 99 "
                                "INSERT INTO Customer (FirstName, LastName) VALUES ('Ann', 'O''Neil')",
                                none);
            },
            [](int) {});
    }

    db::server::Address address;
    ScratchFolder folder;
};

TEST_F(CopyOnAServer, ThereAndBackIsTheSameStore) {
    const auto file = folder / "shop.store";
    const auto back = folder / "back.store";
    makeFile(file);
    const StoreCopy up = copyStoreTo(file.string(), place(), [](int) {});
    const StoreCopy down = copyStoreTo(place(), back.string(), [](int) {});
    EXPECT_GT(up.rows, 3);
    EXPECT_EQ(up.rows, down.rows);
    EXPECT_EQ(allRows(*db::Store::open(file)->session()), allRows(*db::Store::open(back)->session()));
    EXPECT_EQ(checkStoreFile(back), std::vector<std::string>{});
    const auto server = openStore(place());
    EXPECT_EQ(allRows(*server).size(), allRows(*db::Store::open(file)->session()).size());
    db::NoResult none;
    server->execute("INSERT INTO InventoryLedger (SKU, MatrixSKU, Type, Qty, Cost_ea) VALUES ('B', 'B', 'Receipt', 2, 3)", none);
    EXPECT_EQ(db::brokenInvariants(*server), std::vector<std::string>{}); // its triggers run, its numbers go on
}

// Every character that JSON or a statement writes in its own way, and more rows than one block holds.
TEST_F(CopyOnAServer, TextsComeThroughToTheByte) {
    const auto file = folder / "shop.store";
    makeFile(file);
    {
        const auto session = db::Store::open(file)->session();
        db::NoResult none;
        const std::vector<std::string> texts{"\"q\" \\ ''",      "tab\there",          " blanks  ", "\x01\x1F\x7F", "5 \xE2\x82\xAC",
                                             "\xC2\xA0\xC3\xBF", "line\nline\r\nline", "",          "\\u0041",      "{\"c0\":[null]}"};
        for (std::size_t i = 0; i < texts.size(); ++i)
            session->execute("INSERT INTO SalesMessages (Message) VALUES (N'" + texts[i] + "')", none);
        session->execute(
            "INSERT INTO ErrorLog (Tag, ProcedureName, ErrorNumber, Description, LogDate) SELECT 'MR_frmItems', 'x', -2147217900, "
            "'d', DATEADD(ms, a.ID * 3 + b.ID * 7, '20040229 23:59:59.123') FROM "
            "(SELECT SalesMsgID AS ID FROM SalesMessages) a CROSS JOIN (SELECT SalesMsgID AS ID FROM SalesMessages) b "
            "CROSS JOIN (SELECT SalesMsgID AS ID FROM SalesMessages) c CROSS JOIN (SELECT TOP 3 SalesMsgID AS ID FROM SalesMessages) d",
            none);
        session->execute("UPDATE StoreOptions SET MinDepositPct = 33.3333", none);
        session->execute("INSERT INTO AccountingFile (Bytes, Content) VALUES (3, 0x00FF10)", none);
    }
    copyStoreTo(file.string(), place(), [](int) {});
    copyStoreTo(place(), (folder / "back.store").string(), [](int) {});
    const std::vector<std::string> before = allRows(*db::Store::open(file)->session());
    const std::vector<std::string> after = allRows(*db::Store::open(folder / "back.store")->session());
    EXPECT_EQ(before.size(), after.size());
    for (std::size_t i = 0; i < std::min(before.size(), after.size()); ++i)
        ASSERT_EQ(before[i], after[i]);
}

// A server with a narrow collation would make a question mark of it without a word.
TEST_F(CopyOnAServer, ACharacterThatTheServerDoesNotHaveIsNoticed) {
    const auto file = folder / "shop.store";
    makeFile(file);
    {
        const auto session = db::Store::open(file)->session();
        db::NoResult none;
        session->execute("INSERT INTO SalesMessages (Message) VALUES (N'apple \xF0\x9F\x8D\x8E')", none);
    }
    try {
        copyStoreTo(file.string(), place(), [](int) {});
        EXPECT_EQ(allRows(*openStore(place())), allRows(*db::Store::open(file)->session()));
    } catch (const db::DbError& error) {
        EXPECT_NE(std::string(error.what()).find("characters that the server's collation does not have"), std::string::npos)
            << error.what();
        EXPECT_THROW(openStore(place()), db::DbError);
    }
}

// The number of a message that was deleted would be given to another one.
TEST_F(CopyOnAServer, NumbersOfDeletedRowsAreNotGivenAgain) {
    const auto file = folder / "shop.store";
    const auto back = folder / "back.store";
    makeFile(file);
    const auto runIn = [](db::Session& session, const std::string& batch) {
        std::int64_t number = 0;
        db::EachRow rows([&](const db::RowView& row) { number = row.value(0).toInteger(); });
        session.execute(batch, rows);
        return number;
    };
    const std::string message = "INSERT INTO SalesMessages (Message) VALUES ('m') SELECT @@IDENTITY";
    const std::string emptied = "INSERT INTO StockSerials (SKU, MatrixSKU, SerialNo) VALUES ('B', 'B', '1') SELECT @@IDENTITY";
    std::int64_t last = 0;
    std::int64_t lastSerial = 0;
    {
        const auto session = db::Store::open(file)->session();
        runIn(*session, message);
        for (int i = 0; i < 3; ++i) {
            last = runIn(*session, message);
            lastSerial = runIn(*session, emptied + " DELETE FROM StockSerials");
        }
        runIn(*session, "DELETE FROM SalesMessages WHERE SalesMsgID > 1");
    }
    copyStoreTo(file.string(), place(), [](int) {});
    copyStoreTo(place(), back.string(), [](int) {});
    EXPECT_EQ(runIn(*openStore(place()), message), last + 1);
    EXPECT_GT(runIn(*openStore(place()), emptied), lastSerial);
    EXPECT_EQ(runIn(*openStore(back.string()), message), last + 1);
    EXPECT_EQ(checkStoreFile(back), std::vector<std::string>{});
}

// Registers sell on into the file while it is copied: the copy is the file as it was when it began.
TEST_F(CopyOnAServer, AFileInUseIsCopiedAsItWasAtOneMoment) {
    const auto file = folder / "shop.store";
    makeFile(file);
    const auto seller = db::Store::open(file)->session();
    db::NoResult none;
    bool sold = false;
    copyStoreTo(file.string(), place(), [&](int) {
        if (!std::exchange(sold, true))
            seller->execute("INSERT INTO Suppliers (Supplier) VALUES ('Late') INSERT INTO SalesMessages (Message) VALUES ('Late')", none);
    });
    int late = -1;
    db::EachRow rows([&](const db::RowView& row) { late = static_cast<int>(row.number(0)); });
    openStore(place())->execute("SELECT COUNT(*) FROM Suppliers WHERE Supplier = 'Late'", rows);
    EXPECT_TRUE(sold);
    EXPECT_EQ(late, 0);
}

TEST_F(CopyOnAServer, NothingOfAnotherStoreIsOverwritten) {
    const auto file = folder / "shop.store";
    makeFile(file);
    createServerStore(place(), [](int) {});
    EXPECT_THROW(copyStoreTo(file.string(), place(), [](int) {}), db::DbError);
    EXPECT_THROW(createServerStore(place(), [](int) {}), db::DbError);
    EXPECT_EQ(db::schemaVersion(*openStore(place())), db::kSchemaVersion);
    EXPECT_FALSE(upgradeServerStore(place()));
}

// Only one that this program can bring up to date is offered to be.
TEST_F(CopyOnAServer, AnOlderStoreIsKnownAsOne) {
    EXPECT_FALSE(isOlderServerStore(place())); // there is none
    createServerStore(place(), [](int) {});
    EXPECT_FALSE(isOlderServerStore(place()));
    const auto session = openStore(place());
    db::NoResult none;
    session->execute("UPDATE SchemaVersion SET Version = Version - 1", none);
    EXPECT_TRUE(isOlderServerStore(place()));
    EXPECT_TRUE(upgradeServerStore(place()));
    EXPECT_EQ(db::schemaVersion(*session), db::kSchemaVersion);
    session->execute("INSERT INTO SchemaVersion (Version) VALUES (99)", none);
    EXPECT_FALSE(isOlderServerStore(place()));
}

TEST_F(CopyOnAServer, ACopyThatFailsLeavesNoDatabase) {
    const auto file = folder / "shop.store";
    makeFile(file);
    {
        const auto session = db::Store::open(file)->session();
        db::NoResult none;
        session->execute("INSERT INTO SchemaVersion (Version) VALUES (99)", none);
    }
    EXPECT_THROW(copyStoreTo(file.string(), place(), [](int) {}), db::DbError);
    const auto stopped = [](int) { throw std::runtime_error("stopped"); };
    const auto sound = folder / "sound.store";
    makeFile(sound);
    EXPECT_THROW(copyStoreTo(sound.string(), place(), stopped), std::runtime_error);
    EXPECT_THROW(openStore(place()), db::DbError);
}

} // namespace
} // namespace merchantry::app
