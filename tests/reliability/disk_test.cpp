// A disk that is full and folders that may not be written: the change is refused with a sentence, and everything that stood before stands.
// The failing part runs in a child process, whose rights and limits end with it.

#include "tests/reliability/shopfolder.h"

#include "tools/registersim/query.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace merchantry;
using testing::HasSubstr;

namespace {

constexpr uid_t kNobody = 65534;
constexpr rlim_t kRoomBytes = 256 * 1024;

// What the action gives, run in a child process; "ended" when the child did not live to tell.
std::string inChild(const std::function<std::string()>& action) {
    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    const pid_t child = fork();
    if (child == 0) {
        const std::string said = action();
        const bool told = write(ends[1], said.data(), said.size()) == static_cast<ssize_t>(said.size());
        _exit(told ? 0 : 1);
    }
    close(ends[1]);
    std::string said;
    char part[512];
    for (ssize_t size = 0; (size = read(ends[0], part, sizeof part)) > 0;)
        said.append(part, static_cast<std::size_t>(size));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? said : "ended: " + said;
}

// Adds rows until the store refuses them; what it says then, and behind it that it can still be read.
std::string fillUp(const std::filesystem::path& file) {
    const auto session = db::Store::open(file)->session();
    const auto add = [&] {
        registersim::query(*session, "INSERT INTO ErrorLog (Tag, ProcedureName, Description) SELECT 'fill', 'up', REPLICATE('x', 2000) "
                                     "FROM ErrorLog UNION ALL SELECT 'fill', 'up', 'the first'");
    };
    std::string said;
    for (int i = 0; i < 30 && said.empty(); ++i)
        said = saidBy(add);
    const std::string rows = registersim::query(*session, "SELECT COUNT(*) FROM Departments").at(0).at(0).toText();
    return said + " Departments: " + rows;
}

TEST(FullDisk, RefusesTheChangeAndKeepsTheStore) {
    const ShopFolder folder;
    const auto file = folder.emptyStore("full.store");
    const std::string said = inChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{std::filesystem::file_size(file) + kRoomBytes, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &limit);
        return fillUp(file);
    });
    EXPECT_THAT(said, HasSubstr("The store " + file.string() + " cannot be read or written"));
    EXPECT_THAT(
        said, HasSubstr("This change may not have been saved; look before you repeat it. The disk may be full or failing. Departments: 1"));
    EXPECT_TRUE(app::checkStoreFile(file).empty());
}

TEST(FullDisk, LeavesNoHalfCopyAndNoHalfStore) {
    const ShopFolder folder;
    const auto file = folder.emptyStore("whole.store");
    const auto limited = [&](const std::function<void()>& action) {
        return inChild([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{kRoomBytes, RLIM_INFINITY};
            setrlimit(RLIMIT_FSIZE, &limit);
            return saidBy(action);
        });
    };
    EXPECT_THAT(limited([&] { app::backupStoreFile(file, folder / "copy.store"); }), HasSubstr("The disk may be full or failing."));
    EXPECT_THAT(limited([&] { app::restoreStoreFile(file, folder / "back.store"); }), HasSubstr("The disk may be full or failing."));
    EXPECT_THAT(limited([&] { folder.emptyStore("new.store"); }), HasSubstr("he disk may be full or failing"));
    for (const char* name : {"copy.store", "back.store", "new.store"})
        EXPECT_FALSE(std::filesystem::exists(folder / name)) << name;
    EXPECT_TRUE(app::checkStoreFile(file).empty());
}

// On a file system of its own, where this user may mount one.
TEST(FullDisk, ThatIsReallyFullSaysSo) {
    const ShopFolder folder;
    const auto disk = folder / "disk";
    std::filesystem::create_directory(disk);
    const std::string said = inChild([&]() -> std::string {
        if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=3m") != 0)
            return "no disk";
        const auto file = folder.emptyStore("disk/full.store");
        const std::string filled = fillUp(file);
        const std::string copied = saidBy([&] { app::backupStoreFile(file, disk / "copy.store"); });
        return filled + " Copy: " + copied + (app::checkStoreFile(file).empty() ? " Sound." : " Damaged.");
    });
    if (said == "no disk")
        GTEST_SKIP() << "this user may not mount a file system";
    EXPECT_THAT(said, HasSubstr("The disk of the store " + (disk / "full.store").string() +
                                " is full. This change was not saved. Make room and try again. Departments: 1"));
    EXPECT_THAT(said, HasSubstr("Copy: The disk is full: "));
    EXPECT_THAT(said, HasSubstr("Sound."));
}

TEST(ReadOnly, FoldersAndFilesSaySo) {
    if (geteuid() != 0)
        GTEST_SKIP() << "needs to give up rights";
    const ShopFolder folder;
    const auto file = folder.emptyStore("locked.store");
    std::filesystem::permissions(folder / "", std::filesystem::perms(0755));
    std::filesystem::permissions(file, std::filesystem::perms(0644));
    const std::string bytes = bytesOf(file);
    const auto asNobody = [&](const std::function<void()>& action) {
        return inChild([&] { return setuid(kNobody) == 0 ? saidBy(action) : "no rights given up"; });
    };
    const auto write = [&] {
        registersim::query(*db::Store::open(file)->session(), "INSERT INTO Departments (Department) VALUES ('New')");
    };
    const std::string sentence = "The store " + file.string() + " or its folder is read-only for this user. This change was not saved.";
    EXPECT_EQ(asNobody(write), sentence);
    std::filesystem::permissions(folder / "", std::filesystem::perms(0777));
    EXPECT_EQ(asNobody(write), sentence);
    EXPECT_EQ(bytesOf(file), bytes);
    std::filesystem::permissions(file, std::filesystem::perms(0600));
    EXPECT_EQ(asNobody(write), "The store " + file.string() + " may not be read by this user.");
    std::filesystem::permissions(folder / "", std::filesystem::perms(0700));
    EXPECT_THAT(asNobody(write), HasSubstr("The store " + file.string() + " cannot be reached: "));
    std::filesystem::permissions(folder / "", std::filesystem::perms(0755));
    EXPECT_THAT(asNobody([&] { folder.emptyStore("new.store"); }), HasSubstr("cannot be made: "));
    EXPECT_TRUE(app::checkStoreFile(file).empty());
}

// A store on a read-only medium can still be checked, reported on and copied.
TEST(ReadOnly, StoresCanBeCheckedReadAndCopied) {
    if (geteuid() != 0)
        GTEST_SKIP() << "needs to give up rights";
    const ShopFolder folder;
    const auto file = folder.emptyStore("archive.store");
    std::filesystem::permissions(file, std::filesystem::perms(0444));
    std::filesystem::permissions(folder / "", std::filesystem::perms(0755));
    const auto own = folder / "own";
    std::filesystem::create_directory(own);
    ASSERT_EQ(chown(own.c_str(), kNobody, kNobody), 0);
    const std::string said = inChild([&]() -> std::string {
        if (setuid(kNobody) != 0)
            return "no rights given up";
        std::string all;
        for (const std::string& fault : app::checkStoreFile(file))
            all += fault;
        all += registersim::query(*db::Store::open(file)->session(), "SELECT COUNT(*) FROM Departments").at(0).at(0).toText();
        app::backupStoreFile(file, own / "copy.store");
        return all + (app::checkStoreFile(own / "copy.store").empty() ? " copied" : " damaged");
    });
    EXPECT_EQ(said, "1 copied");
    EXPECT_FALSE(std::filesystem::exists(file.string() + "-wal"));
}

TEST(NoRegularFile, IsRefusedAtOnce) {
    const ShopFolder folder;
    const auto pipe = folder / "pipe.store";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const auto& path : {pipe, folder / ""})
        EXPECT_THAT(saidBy([&] { app::checkStoreFile(path); }), HasSubstr("is no file: a store is a regular file."));
}

} // namespace
