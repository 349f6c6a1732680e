#pragma once

#include <filesystem>
#include <string>

namespace merchantry::ui {
class Desk;
}

namespace merchantry::exchange {

// Asks for the file of a backup, on the server's side: that of a store file is this machine.
class BackupFilePicker {
public:
    explicit BackupFilePicker(ui::Desk& desk) : desk_(desk) {}
    // The path, or empty. A file to write need not be there, and the user was asked whether to replace one that is.
    std::string Pick(bool toWrite, const std::string& proposedName);

private:
    ui::Desk& desk_;
};

} // namespace merchantry::exchange
