#include "base/platform/platform.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

namespace merchantry::platform {
namespace {

std::filesystem::path homeFolder() {
    const char* home = std::getenv("HOME");
    return home != nullptr && *home != '\0' ? std::filesystem::path(home) : std::filesystem::temp_directory_path();
}

[[noreturn]] void failed(const char* what, const std::filesystem::path& path) {
    throw std::filesystem::filesystem_error(what, path, std::error_code(errno, std::generic_category()));
}

} // namespace

Date localTime() {
    timeval now{};
    gettimeofday(&now, nullptr);
    tm parts{};
    localtime_r(&now.tv_sec, &parts);
    const auto date = Date::fromParts(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min,
                                      parts.tm_sec > 59 ? 59 : parts.tm_sec, static_cast<int>(now.tv_usec / 1000));
    return date.value_or(Date());
}

std::string machineName() {
    std::array<char, 256> name{};
    if (gethostname(name.data(), name.size() - 1) != 0)
        return "localhost";
    return name.data();
}

std::filesystem::path configurationFolder() {
    const char* base = std::getenv("XDG_CONFIG_HOME");
    const std::filesystem::path folder =
        (base != nullptr && *base != '\0' ? std::filesystem::path(base) : homeFolder() / ".config") / "merchantry";
    std::filesystem::create_directories(folder);
    chmod(folder.c_str(), S_IRWXU);
    return folder;
}

std::filesystem::path documentsFolder() {
    const char* folder = std::getenv("XDG_DOCUMENTS_DIR");
    return folder != nullptr && *folder != '\0' ? std::filesystem::path(folder) : homeFolder() / "Documents";
}

std::filesystem::path programFolder() {
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::current_path() : path.parent_path();
}

void replaceFile(const std::filesystem::path& target, const std::string& text, bool ownerOnly) {
    std::filesystem::path beside = target;
    beside += ".new";
    const int file = open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, ownerOnly ? 0600 : 0644);
    if (file < 0)
        failed("cannot write", beside);
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = write(file, text.data() + done, text.size() - done);
        if (count < 0) {
            close(file);
            unlink(beside.c_str());
            failed("cannot write", beside);
        }
        done += static_cast<std::size_t>(count);
    }
    const bool kept = fsync(file) == 0;
    close(file);
    if (!kept) {
        unlink(beside.c_str());
        failed("cannot write", beside);
    }
    std::filesystem::rename(beside, target);
}

void createPrivateFile(const std::filesystem::path& file) {
    const int made = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (made < 0)
        failed("cannot make the file", file);
    close(made);
}

void restrictLike(const std::filesystem::path& file, const std::filesystem::path& original) {
    struct stat now {};
    if (stat(original.c_str(), &now) != 0 || chmod(file.c_str(), now.st_mode & (S_IRUSR | S_IWUSR)) != 0)
        failed("cannot restrict the file", file);
}

void moveToNewName(const std::filesystem::path& file, const std::filesystem::path& name) {
    if (renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) != 0)
        failed("cannot give the file its name", name);
    const std::filesystem::path folder = name.has_parent_path() ? name.parent_path() : ".";
    const int held = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (held < 0)
        return; // a folder that may not be read; the name is written with the next sync
    fsync(held);
    close(held);
}

bool mayWrite(const std::filesystem::path& file) {
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    return access(file.c_str(), W_OK) == 0 && access(folder.c_str(), W_OK) == 0;
}

LineState lineState(int socket) {
    char peeked = 0;
    const ssize_t got = recv(socket, &peeked, 1, MSG_PEEK | MSG_DONTWAIT);
    if (got > 0)
        return LineState::Readable;
    return got < 0 && (errno == EAGAIN || errno == EINTR) ? LineState::Quiet : LineState::Ended;
}

} // namespace merchantry::platform
