#include "base/platform/files.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <set>
#include <sstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <utility>

namespace merchantry::platform {
namespace {

[[noreturn]] void failed(const char* what, const std::filesystem::path& path) {
    throw std::filesystem::filesystem_error(what, path, std::error_code(errno, std::generic_category()));
}

// An open file; closed with the object.
class Descriptor {
public:
    Descriptor(const std::filesystem::path& file, int flags) : number_(open(file.c_str(), flags | O_CLOEXEC, S_IRUSR | S_IWUSR)) {}
    ~Descriptor() {
        if (number_ >= 0)
            close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool opened() const { return number_ >= 0; }
    int number() const { return number_; }
    int released() { return std::exchange(number_, -1); }

private:
    int number_;
};

std::filesystem::path folderOf(const std::filesystem::path& file) {
    return file.has_parent_path() ? file.parent_path() : ".";
}

void syncFolder(const std::filesystem::path& folder) {
    const Descriptor held(folder, O_RDONLY | O_DIRECTORY);
    if (held.opened() && fsync(held.number()) != 0 && errno != EINVAL) // some file systems sync no folders
        failed("cannot write", folder);
}

// The processes among the numbers of a folder of /proc.
int numberOf(const std::filesystem::path& entry) {
    const std::string name = entry.filename().string();
    return name.find_first_not_of("0123456789") == std::string::npos ? std::atoi(name.c_str()) : 0;
}

bool hasOpen(const std::filesystem::path& process, const struct stat& file) {
    std::error_code error;
    for (const auto& one : std::filesystem::directory_iterator(process / "fd", error)) {
        struct stat opened {};
        if (stat(one.path().c_str(), &opened) == 0 && opened.st_dev == file.st_dev && opened.st_ino == file.st_ino)
            return true;
    }
    return false;
}

// Of a line of /proc/locks, as "1: POSIX  ADVISORY  READ 4711 fd:01:131 1073741826 1073742335": the process when it is on the file.
int lockOn(const std::string& line, const std::string& place) {
    std::istringstream words(line);
    std::string word;
    std::string process;
    while (words >> word) {
        if (word == place)
            return std::atoi(process.c_str());
        process = word;
    }
    return 0;
}

std::string placeOf(const struct stat& file) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%02x:%02x:%llu", major(file.st_dev), minor(file.st_dev),
                  static_cast<unsigned long long>(file.st_ino));
    return text.data();
}

std::string programOf(int process) {
    std::ifstream stream("/proc/" + std::to_string(process) + "/comm");
    std::string name;
    std::getline(stream, name);
    return name;
}

} // namespace

std::string Holder::name() const {
    return (program.empty() ? "a program" : program) + " (process " + std::to_string(process) + ")";
}

std::vector<Holder> holdersOf(const std::filesystem::path& file) {
    struct stat place {};
    if (stat(file.c_str(), &place) != 0)
        return {};
    std::set<int> found;
    std::error_code error;
    for (const auto& one : std::filesystem::directory_iterator("/proc", error))
        if (const int process = numberOf(one.path()); process > 0 && hasOpen(one.path(), place))
            found.insert(process);
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);)
        if (const int process = lockOn(line, placeOf(place)); process > 0)
            found.insert(process);
    found.erase(getpid());
    std::vector<Holder> holders;
    for (const int process : found)
        holders.push_back({process, programOf(process)});
    return holders;
}

std::string namesOf(const std::vector<Holder>& holders) {
    std::string names;
    for (std::size_t i = 0; i < holders.size(); ++i)
        names += (i == 0 ? "" : i + 1 == holders.size() ? " and " : ", ") + holders[i].name();
    return names;
}

Notice::Notice(std::filesystem::path file, const std::string& text) : file_(std::move(file)) {
    Descriptor made(file_, O_RDWR | O_CREAT);
    if (!made.opened() || flock(made.number(), LOCK_EX | LOCK_NB) != 0 || ftruncate(made.number(), 0) != 0 ||
        write(made.number(), text.data(), text.size()) < 0)
        failed("cannot write", file_);
    held_ = made.released();
}

Notice::~Notice() {
    unlink(file_.c_str());
    close(held_);
}

bool noticeStands(const std::filesystem::path& file) {
    const Descriptor seen(file, O_RDONLY);
    return seen.opened() && flock(seen.number(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

bool isRunning(int process) {
    return kill(process, 0) == 0 || errno == EPERM;
}

int ownProcess() {
    return getpid();
}

void createPrivateFolder(const std::filesystem::path& folder) {
    if (mkdir(folder.c_str(), S_IRWXU) != 0)
        failed("cannot make the folder", folder);
}

void syncFile(const std::filesystem::path& file) {
    const Descriptor opened(file, O_RDONLY);
    if (!opened.opened() || fsync(opened.number()) != 0)
        failed("cannot write", file);
    syncFolder(folderOf(file));
}

WriteBehind::WriteBehind(const std::filesystem::path& file) : file_(open(file.c_str(), O_WRONLY | O_CLOEXEC)) {}

WriteBehind::~WriteBehind() {
    if (file_ >= 0)
        close(file_);
}

void WriteBehind::push() const {
    if (file_ >= 0)
        sync_file_range(file_, 0, 0, SYNC_FILE_RANGE_WRITE);
}

void forgetCached(const std::filesystem::path& file) {
    const Descriptor opened(file, O_RDONLY);
    if (opened.opened())
        posix_fadvise(opened.number(), 0, 0, POSIX_FADV_DONTNEED);
}

void moveInto(const std::filesystem::path& file, const std::filesystem::path& name) {
    if (rename(file.c_str(), name.c_str()) != 0)
        failed("cannot give the file its name", name);
    syncFolder(folderOf(name));
}

void appendLine(const std::filesystem::path& file, const std::string& line) {
    const Descriptor opened(file, O_WRONLY | O_CREAT | O_APPEND);
    const std::string text = line + "\n";
    if (!opened.opened() || write(opened.number(), text.data(), text.size()) != static_cast<ssize_t>(text.size()) ||
        fsync(opened.number()) != 0)
        failed("cannot write", file);
}

} // namespace merchantry::platform
