#include "app/db/embedded/filestage.h"

#include "app/db/dberror.h"
#include "app/db/embedded/filecopy.h"
#include "app/db/messages.h"
#include "base/platform/files.h"

#include <utility>

namespace merchantry::db {
namespace {

constexpr const char* kDrive = "C:\\";
constexpr const char* kStage = ".merchantry-stage-";

FileStage* standing = nullptr;

[[noreturn]] void refuse(const std::string& sentence) {
    throw DbError(DbError::Category::Storage, 0, sentence).withSeverity(16, 1);
}

// The stages of processes that live no more.
void sweep(const std::filesystem::path& folder) {
    std::error_code ignored;
    for (const auto& one : std::filesystem::directory_iterator(folder, ignored)) {
        const std::string name = one.path().filename().string();
        if (!name.starts_with(kStage))
            continue;
        const std::string process = name.substr(std::char_traits<char>::length(kStage));
        if (process.find_first_not_of("0123456789") == std::string::npos && !platform::isRunning(std::atoi(process.c_str())))
            std::filesystem::remove_all(one.path(), ignored);
    }
}

// The folder of a path as the screen splits it, with the separator.
std::string folderText(const std::string& path) {
    std::size_t at = path.rfind('\\');
    if (at == std::string::npos)
        at = path.rfind('/');
    return path.substr(0, at + 1);
}

} // namespace

void refuseShell() {
    throw serverMessage(Message::CommandShellOff).withSeverity(16, 1);
}

FileStage::FileStage(std::filesystem::path chosen, const std::filesystem::path& folder)
    : chosen_(std::move(chosen)), folder_(folder / (kStage + std::to_string(platform::ownProcess()))) {
    if (standing != nullptr)
        refuse("Another backup or restore is at work in this program.");
    sweep(folder);
    try {
        platform::createPrivateFolder(folder_);
    } catch (const std::filesystem::filesystem_error& error) {
        refuse("Nothing can be written in " + folder.string() + ": " + error.code().message() + ". Choose another folder.");
    }
    standing = this;
}

FileStage::~FileStage() {
    standing = nullptr;
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

FileStage* FileStage::current() {
    return standing;
}

std::filesystem::path FileStage::fileOf(const std::string& staged) const {
    if (!staged.starts_with(kDrive) || staged.find_first_of("/\\", 3) != std::string::npos || staged.size() == 3 || staged == "C:\\." ||
        staged == "C:\\..")
        refuse("\"" + staged + "\" is no file of the stage.");
    return folder_ / staged.substr(3);
}

void FileStage::run(const std::string& command) {
    const std::string path = chosen_.string();
    const std::string folder = folderText(path);
    const std::string name = path.substr(folder.size());
    if (command == "copy \"" + path + "\" " + kDrive)
        return static_cast<void>(taken());
    const bool moves = command == "move " + std::string(kDrive) + name + " \"" + folder + "\"";
    const bool deletes = command == "del " + std::string(kDrive) + name;
    if (!moves && !deletes)
        refuseShell();
    if (name.find(' ') != std::string::npos)
        refuse("The syntax of the command is incorrect: the file name \"" + name + "\" has a blank. " +
               (moves ? "The backup was not put in its folder, and nothing there was changed. Choose a name without blanks."
                      : "Choose a name without blanks; the file that was used is as it was."));
    if (moves)
        return move();
    if (!std::filesystem::remove(fileOf(kDrive + name)))
        refuse("Could Not Find " + std::string(kDrive) + name);
}

std::string FileStage::stagedName() const {
    return kDrive + chosen_.string().substr(folderText(chosen_.string()).size());
}

std::filesystem::path FileStage::taken() {
    const auto file = fileOf(stagedName());
    NewStoreFile made(file);
    copyStore(chosen_, made.path(), {.progress = progress});
    made.finish();
    return file;
}

// The same disk: the file that was there is replaced in one step, by one that is on the disk as a whole.
void FileStage::move() {
    const auto file = fileOf(stagedName());
    if (!std::filesystem::exists(file))
        refuse("The system cannot find the file " + std::string(kDrive) + file.filename().string() + ".");
    if (const auto holders = platform::holdersOf(chosen_); !holders.empty())
        refuse(chosen_.string() + " is open in " + platform::namesOf(holders) + " and was not replaced. Choose another name.");
    try {
        platform::moveInto(file, chosen_);
    } catch (const std::filesystem::filesystem_error& error) {
        refuse("The backup was not put in its folder as " + chosen_.string() + ": " + error.code().message() +
               ". What was there is as it was.");
    }
}

} // namespace merchantry::db
