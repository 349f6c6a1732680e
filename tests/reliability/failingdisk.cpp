#include "tests/reliability/failingdisk.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace {

int callsLeft = 0; // 0: nothing fails

bool failsNow() {
    if (callsLeft <= 0 || --callsLeft > 0)
        return false;
    callsLeft = -1;
    errno = EIO;
    return true;
}

using Call = sqlite3_syscall_ptr;

// SQLite's own call of that name, as it was.
template <int Place> Call original = nullptr;

template <int Place, class Result, class... Arguments> Result failing(Arguments... arguments) {
    if (failsNow())
        return static_cast<Result>(-1);
    return reinterpret_cast<Result (*)(Arguments...)>(original<Place>)(arguments...);
}

struct Replaced {
    const char* name;
    Call* original;
    Call ours;
};

template <int Place, class Result, class... Arguments> Replaced replaced(const char* name) {
    return {name, &original<Place>, reinterpret_cast<Call>(&failing<Place, Result, Arguments...>)};
}

const std::array<Replaced, 10> kCalls{replaced<0, int, const char*, int, int>("open"),
                                      replaced<1, ssize_t, int, void*, size_t>("read"),
                                      replaced<2, ssize_t, int, void*, size_t, off_t>("pread"),
                                      replaced<3, ssize_t, int, void*, size_t, off64_t>("pread64"),
                                      replaced<4, ssize_t, int, const void*, size_t>("write"),
                                      replaced<5, ssize_t, int, const void*, size_t, off_t>("pwrite"),
                                      replaced<6, ssize_t, int, const void*, size_t, off64_t>("pwrite64"),
                                      replaced<7, int, int, off_t>("ftruncate"),
                                      replaced<8, int, int, mode_t>("fchmod"),
                                      replaced<9, int, const char*>("unlink")};

} // namespace

// The program's own calls, which the linker finds here first.
extern "C" {
int fsync(int file) {
    return failsNow() ? -1 : static_cast<int>(syscall(SYS_fsync, file));
}
int fdatasync(int file) {
    return failsNow() ? -1 : static_cast<int>(syscall(SYS_fdatasync, file));
}
int rename(const char* from, const char* to) noexcept {
    return failsNow() ? -1 : static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    return failsNow() ? -1 : static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}
int mkdir(const char* folder, mode_t mode) noexcept {
    return failsNow() ? -1 : static_cast<int>(syscall(SYS_mkdirat, AT_FDCWD, folder, mode));
}
int chmod(const char* file, mode_t mode) noexcept {
    return failsNow() ? -1 : static_cast<int>(syscall(SYS_fchmodat, AT_FDCWD, file, mode));
}
}

namespace merchantry {

FailingDisk::FailingDisk(int call) {
    sqlite3_vfs* layer = sqlite3_vfs_find(nullptr);
    for (const Replaced& one : kCalls) {
        *one.original = layer->xGetSystemCall(layer, one.name);
        if (*one.original != nullptr)
            layer->xSetSystemCall(layer, one.name, one.ours);
    }
    callsLeft = call;
}

FailingDisk::~FailingDisk() {
    callsLeft = 0;
    sqlite3_vfs* layer = sqlite3_vfs_find(nullptr);
    for (const Replaced& one : kCalls)
        if (*one.original != nullptr)
            layer->xSetSystemCall(layer, one.name, nullptr);
}

bool FailingDisk::failed() const {
    return callsLeft < 0;
}

} // namespace merchantry
