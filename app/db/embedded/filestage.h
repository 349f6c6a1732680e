#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace merchantry::db {

// The server's drive C on an engine that has no drives. While one stands, "C:\name" is the file `name` in a folder of its own, which only
// this user may enter and which goes with the object, and master..xp_cmdshell knows the three commands of the backup screen, to the letter:
//
//   copy "CHOSEN" C:\           a store file that the user chose is copied to the stage
//   move C:\NAME "FOLDER"       the file on the stage takes its place in the folder of the chosen one, in one step
//   del C:\NAME                 it goes from the stage
//
// NAME is the chosen file's, FOLDER its folder with the separator. No other file is ever touched, and no shell runs; anything else is the
// server's error 15281, as everything is while no stage stands. One at a time in a process.
class FileStage {
public:
    // Chosen: the path that the user picked; it need not be there. The stage is made in that folder, on whose disk its files lie. What a
    // killed program left there of its stages goes. Throws DbError Storage with a sentence.
    FileStage(std::filesystem::path chosen, const std::filesystem::path& folder);
    ~FileStage();
    FileStage(const FileStage&) = delete;
    FileStage& operator=(const FileStage&) = delete;

    // Runs one of the commands. Throws DbError.
    void run(const std::string& command);
    // Copies the chosen store to the stage; where it is there.
    std::filesystem::path taken();
    // The file behind "C:\name". Throws DbError Storage for any other text.
    std::filesystem::path fileOf(const std::string& staged) const;
    const std::filesystem::path& folder() const { return folder_; }

    // The one that stands in this process; null for none.
    static FileStage* current();

    // Takes how much of a copy is done, in percent; false stops it.
    std::function<bool(int percent)> progress;

private:
    std::string stagedName() const;
    void move();

    std::filesystem::path chosen_;
    std::filesystem::path folder_;
};

// The server's answer to xp_cmdshell where it is turned off.
[[noreturn]] void refuseShell();

} // namespace merchantry::db
