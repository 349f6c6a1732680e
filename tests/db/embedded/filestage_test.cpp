// xp_cmdshell as the backup screen knows it: three commands to the letter while its stage stands, and the server's refusal otherwise.

#include "app/db/embedded/filestage.h"

#include "app/db/embedded/store.h"
#include "tests/scratchfolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace merchantry::db {
namespace {

void write(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    return bytes.str();
}

class Stages : public testing::Test {
protected:
    // The number of the error with which the store refuses it; 0 when it ran, -1 for one without a number.
    int refused(const std::string& command) {
        try {
            NoResult none;
            store->session()->execute("master..xp_cmdshell '" + command + "'", none);
            return 0;
        } catch (const DbError& error) {
            said = error.what();
            return error.native() == 0 ? -1 : error.native();
        }
    }

    ScratchFolder folder;
    std::shared_ptr<Store> store = Store::create(folder / "shop.store");
    std::filesystem::path chosen = folder / "out" / "b.bki";
    std::string said;

    void SetUp() override { std::filesystem::create_directory(folder / "out"); }
};

TEST_F(Stages, NothingRunsWithoutOne) {
    for (const char* command : {"copy \"/etc/passwd\" C:\\", "move C:\\b.bki \"/tmp/\"", "del C:\\b.bki", "ls", ""}) {
        EXPECT_EQ(refused(command), 15281) << command;
        EXPECT_EQ(said.find("SQL Server blocked access to procedure 'sys.xp_cmdshell'"), 0U) << said;
    }
}

TEST_F(Stages, TakeTheirThreeCommandsAndNoOthers) {
    FileStage stage(chosen, folder / "out");
    const std::string path = chosen.string();
    const std::string into = (folder / "out").string() + "/";
    write(stage.fileOf("C:\\b.bki"), "new");
    for (const std::string& command : std::vector<std::string>{
             "move C:\\b.bki \"" + into + "\" ", "move C:\\b.bki " + into, "MOVE C:\\b.bki \"" + into + "\"", "move C:\\b.bki \"/tmp/\"",
             "move C:\\b.bki \"" + into + "\" & rm -rf /tmp/x", "move C:\\other.bki \"" + into + "\"",
             "move C:\\..\\b.bki \"" + into + "\"", "copy \"" + (folder / "shop.store").string() + "\" C:\\", "copy \"" + path + "\" D:\\",
             "copy " + path + " C:\\", "del C:\\*", "del C:\\", "del b.bki", "del " + path, "dir", ""}) {
        EXPECT_EQ(refused(command), 15281) << command;
        EXPECT_EQ(bytesOf(stage.fileOf("C:\\b.bki")), "new") << command;
        EXPECT_FALSE(std::filesystem::exists(chosen)) << command;
    }
    write(chosen, "old");
    EXPECT_EQ(refused("move C:\\b.bki \"" + into + "\""), 0) << said;
    EXPECT_EQ(bytesOf(chosen), "new");
    EXPECT_EQ(refused("del C:\\b.bki"), -1);
    EXPECT_EQ(said, "Could Not Find C:\\b.bki");
    write(stage.fileOf("C:\\b.bki"), "more");
    EXPECT_EQ(refused("del C:\\b.bki"), 0) << said;
    EXPECT_FALSE(std::filesystem::exists(stage.fileOf("C:\\b.bki")));
}

TEST_F(Stages, CopyStoresOnly) {
    write(chosen, "no store");
    FileStage stage(chosen, folder.path());
    EXPECT_EQ(refused("copy \"" + chosen.string() + "\" C:\\"), -1);
    EXPECT_NE(said.find("is no Merchantry store"), std::string::npos) << said;
    std::filesystem::remove(chosen);
    Store::create(chosen);
    const std::string before = bytesOf(chosen);
    EXPECT_EQ(refused("copy \"" + chosen.string() + "\" C:\\"), 0) << said;
    EXPECT_NO_THROW(Store::open(stage.fileOf("C:\\b.bki")));
    EXPECT_EQ(bytesOf(chosen), before);
}

// The name stands without quotes in two of the commands.
TEST_F(Stages, ABlankInTheNameBreaksMoveAndDelAndHarmsNothing) {
    chosen = folder / "out" / "my shop.bki";
    FileStage stage(chosen, folder / "out");
    write(chosen, "old");
    write(stage.fileOf("C:\\my shop.bki"), "new");
    EXPECT_EQ(refused("move C:\\my shop.bki \"" + (folder / "out").string() + "/\""), -1);
    EXPECT_NE(said.find("has a blank"), std::string::npos) << said;
    EXPECT_EQ(refused("del C:\\my shop.bki"), -1);
    EXPECT_EQ(bytesOf(chosen), "old");
}

TEST_F(Stages, BelongToOneUserAndGoWithWhatIsOnThem) {
    std::filesystem::path place;
    {
        FileStage stage(chosen, folder / "out");
        place = stage.folder();
        EXPECT_EQ(std::filesystem::status(place).permissions(), std::filesystem::perms::owner_all);
        write(stage.fileOf("C:\\b.bki"), "left");
        EXPECT_THROW(FileStage(chosen, folder / "out"), DbError);
        for (const char* text : {"C:\\", "C:\\.", "C:\\..", "C:\\a/b", "C:\\a\\b", "D:\\a", "a"})
            EXPECT_THROW(stage.fileOf(text), DbError) << text;
    }
    EXPECT_FALSE(std::filesystem::exists(place));
    EXPECT_EQ(FileStage::current(), nullptr);
}

TEST_F(Stages, OfKilledProgramsGoWithTheNext) {
    const auto left = folder / "out" / ".merchantry-stage-999999999";
    const auto other = folder / "out" / ".merchantry-stage-mine";
    for (const auto& one : {left, other}) {
        std::filesystem::create_directory(one);
        write(one / "b.bki", "half");
    }
    FileStage stage(chosen, folder / "out");
    EXPECT_FALSE(std::filesystem::exists(left));
    EXPECT_TRUE(std::filesystem::exists(other / "b.bki"));
}

} // namespace
} // namespace merchantry::db
