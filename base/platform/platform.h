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

} // namespace merchantry::platform
