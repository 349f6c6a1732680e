#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace merchantry::platform {

// Another program of this machine that has a file open.
struct Holder {
    int process = 0;
    std::string program; // as the system calls it; empty when this user may not know

    // "registersim (process 4711)".
    std::string name() const;
};

// Who else has the file open or holds a lock on it; this process is never among them. Of other users' programs only those are known that
// hold a lock. Empty for a file that is not there. The file itself is not opened.
std::vector<Holder> holdersOf(const std::filesystem::path& file);
// "registersim (process 4711) and merchantryctl (process 4712)"; empty for none.
std::string namesOf(const std::vector<Holder>& holders);

// A file that stands as long as the object does, also for those who only see the file: one that a killed program left counts for nothing.
class Notice {
public:
    // Throws std::filesystem::filesystem_error when it cannot be made, or stands already.
    Notice(std::filesystem::path file, const std::string& text);
    ~Notice();
    Notice(const Notice&) = delete;
    Notice& operator=(const Notice&) = delete;

private:
    std::filesystem::path file_;
    int held_ = -1;
};
// Whether somebody, in this process or another one, has that notice stand.
bool noticeStands(const std::filesystem::path& file);

// Whether a process of that number lives.
bool isRunning(int process);
int ownProcess();

// Makes a folder that only its owner may enter. Throws std::filesystem::filesystem_error, also when there is one already.
void createPrivateFolder(const std::filesystem::path& folder);
// Everything of the file, and its name in its folder, is on the disk when this returns. Throws std::filesystem::filesystem_error. Requires:
// this process holds no lock on the file; closing it would drop them.
void syncFile(const std::filesystem::path& file);
// Has what was written to a file go to its disk while more is being written, so that syncFile has little left to wait for. Only a hint:
// nothing happens where the system has no such thing. Requires: as syncFile, for as long as the object stands.
class WriteBehind {
public:
    explicit WriteBehind(const std::filesystem::path& file);
    ~WriteBehind();
    WriteBehind(const WriteBehind&) = delete;
    WriteBehind& operator=(const WriteBehind&) = delete;
    void push() const;

private:
    int file_;
};

// The next look at the file reads the disk, not what the system remembers of it, as far as the system can be told. Requires: as syncFile.
void forgetCached(const std::filesystem::path& file);
// Gives the file another name in the place of whatever has it, on the disk when this returns. Throws std::filesystem::filesystem_error;
// what had the name is whole then.
void moveInto(const std::filesystem::path& file, const std::filesystem::path& name);
// Adds a line to the end of a file, which is made for its owner only when it is not there; on the disk when this returns. Throws
// std::filesystem::filesystem_error.
void appendLine(const std::filesystem::path& file, const std::string& line);

} // namespace merchantry::platform
