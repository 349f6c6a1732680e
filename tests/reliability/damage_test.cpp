// Files that are no sound store: each is refused with a sentence that says what and what now, and stays as it was.

#include "tests/reliability/shopfolder.h"

#include "app/DataBroker.h"
#include "app/configstore.h"
#include "tools/registersim/query.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace merchantry;
using testing::HasSubstr;

namespace {

constexpr std::size_t kPage = 4096;

std::string whatOpeningSays(const std::filesystem::path& file) {
    return saidBy([&] { registersim::query(*db::Store::open(file)->session(), "SELECT COUNT(*) FROM Item WHERE Name LIKE '%z%'"); });
}

std::string overwritten(std::string bytes, std::size_t from, std::size_t to) {
    for (std::size_t at = from; at < std::min(to, bytes.size()); ++at)
        bytes[at] = static_cast<char>(at * 37);
    return bytes;
}

TEST(NoStore, IsRefusedAndLeftAsItIs) {
    const ShopFolder folder;
    const std::string store = bytesOf(folder.emptyStore("sound.store"));
    ASSERT_GT(store.size(), 50 * kPage);
    std::string foreign = store;
    foreign.replace(68, 4, "ABCD");
    const struct {
        const char* name;
        std::string bytes;
    } files[] = {
        {"nothing.store", ""},
        {"letter.store", "Dear supplier,\nplease find our order below.\n" + std::string(10'000, 'x')},
        {"foreign.store", foreign},
        {"header.store", overwritten(store, 0, 100)},
        {"stub.store", store.substr(0, 60)},
    };
    for (const auto& one : files) {
        const auto file = folder / one.name;
        writeBytes(file, one.bytes);
        const std::string sentence =
            "The file " + file.string() + " is no Merchantry store, or its beginning is damaged. It was not changed.";
        EXPECT_EQ(whatOpeningSays(file), sentence);
        EXPECT_EQ(saidBy([&] { app::checkStoreFile(file); }), sentence);
        EXPECT_EQ(saidBy([&] { app::backupStoreFile(file, folder / "copy.store"); }), sentence);
        EXPECT_THAT(saidBy([&] { app::restoreStoreFile(folder / "sound.store", file); }), HasSubstr("Nothing was restored: move "));
        EXPECT_EQ(bytesOf(file), one.bytes) << one.name;
        EXPECT_FALSE(std::filesystem::exists(file.string() + "-wal")) << one.name;
        EXPECT_FALSE(std::filesystem::exists(folder / "copy.store"));
    }
    EXPECT_EQ(whatOpeningSays(folder / "gone.store"), "There is no store file " + (folder / "gone.store").string() + ".");
}

TEST(DamagedStore, IsToldByTheCheckAndHealedByItsBackup) {
    const ShopFolder folder;
    const std::string store = bytesOf(folder.shop("sound.store"));
    const struct {
        const char* name;
        std::string bytes;
    } files[] = {
        {"middle.store", overwritten(store, store.size() / kPage / 4 * kPage, store.size() / kPage / 4 * 3 * kPage)},
        {"cut.store", store.substr(0, store.size() / kPage / 3 * kPage)},
    };
    for (const auto& one : files) {
        const auto file = folder / one.name;
        writeBytes(file, one.bytes);
        std::vector<std::string> found;
        const std::string refused = saidBy([&] { found = app::checkStoreFile(file); });
        EXPECT_TRUE(!found.empty() || refused.find("is damaged") != std::string::npos) << one.name << ": " << refused;
        const std::string said = whatOpeningSays(file);
        EXPECT_THAT(said, HasSubstr("is damaged")) << one.name;
        EXPECT_THAT(said, HasSubstr("restore the newest backup")) << one.name;
        EXPECT_THAT(saidBy([&] { app::restoreStoreFile(file, folder / "sound.store"); }), HasSubstr("damaged")) << one.name;
    }
    EXPECT_TRUE(app::checkStoreFile(folder / "sound.store").empty()) << "a damaged backup was not taken";

    // Set aside as the sentence says, its place is free for the backup.
    std::filesystem::rename(folder / "middle.store", folder / "aside.store");
    app::restoreStoreFile(folder / "sound.store", folder / "middle.store");
    EXPECT_TRUE(app::checkStoreFile(folder / "middle.store").empty());
}

TEST(NewerStore, IsRefusedAndNotChanged) {
    const ShopFolder folder;
    const auto file = folder.emptyStore("newer.store");
    registersim::query(*db::Store::open(file)->session(), "INSERT INTO SchemaVersion (Version) VALUES (1000)");
    const std::string bytes = bytesOf(file);
    db::Provider provider;
    app::DataBroker broker(provider);
    std::shared_ptr<app::ErrLog> log;
    long timeout = 5;
    std::string connectionString = "Data Source=" + file.string();
    db::ConnectionPtr connection;
    broker.OpenConnection(connectionString, log, timeout, connection);
    EXPECT_EQ(connection->State(), 0);
    EXPECT_THAT(broker.whyClosed(), HasSubstr("newer version"));
    EXPECT_EQ(bytesOf(file), bytes);
}

TEST(GarbageConfiguration, IsToldAndPutAside) {
    const ShopFolder folder;
    for (const std::string& garbage : {std::string("\x00\xff\x13 no toml", 11), std::string("Default = 3\n[[[\n"),
                                       std::string("Configuration = 7\n"), std::string("[[Configuration]]\nConfigName = [1, 2]\n")}) {
        const auto file = folder / "databases.toml";
        writeBytes(file, garbage);
        app::ConfigStore store(file);
        store.load();
        EXPECT_TRUE(store.all().empty()) << garbage;
        EXPECT_THAT(store.problem(), HasSubstr("cannot be read. It is kept as it is")) << garbage;
        EXPECT_EQ(bytesOf(file), garbage);
        store.put({"Shop", "/shop.store", "1", "", "", ""});
        store.save();
        EXPECT_EQ(bytesOf(folder / "databases.toml.damaged"), garbage);
        store.load();
        EXPECT_EQ(store.all().size(), 1U);
    }
}

} // namespace
