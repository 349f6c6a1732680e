#pragma once

#include "base/date.h"

#include <filesystem>
#include <string>

// What the program must ask of the operating system, and nothing else: one source file per system beside this page.
namespace merchantry::platform {

Date localTime();
std::string machineName();
// Where the user's settings of this program live; made when missing, readable by its owner only.
std::filesystem::path configurationFolder();
std::filesystem::path documentsFolder();
// The folder of the running program's file.
std::filesystem::path programFolder();
// Writes the text to a file beside the target and puts it in the target's place in one step, readable by its owner only
// when ownerOnly. Throws std::filesystem::filesystem_error; the old file is whole in that case.
void replaceFile(const std::filesystem::path& target, const std::string& text, bool ownerOnly);

// Makes an empty file that only its owner may read and write. Throws std::filesystem::filesystem_error, also when there is one already.
void createPrivateFile(const std::filesystem::path& file);
// Takes from the group and the others what they may do with the file, and from its owner what the owner of the original may not.
void restrictLike(const std::filesystem::path& file, const std::filesystem::path& original);
// Gives a file that stands complete on the disk its name in the same folder, for good when this returns. Throws
// std::filesystem::filesystem_error, also when there is a file of that name: nothing is overwritten.
void moveToNewName(const std::filesystem::path& file, const std::filesystem::path& name);
// Whether this user may write the file and in its folder.
bool mayWrite(const std::filesystem::path& file);

// What is seen of a connected socket without reading from it: nothing, something to read, or its other end is gone.
enum class LineState { Quiet, Readable, Ended };
LineState lineState(int socket);

} // namespace merchantry::platform
