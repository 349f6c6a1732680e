#pragma once

#include "ui/qt/skin.h"

#include <filesystem>
#include <string>
#include <vector>

class QApplication;

namespace merchantry::programs {

// The configuration file of one run: for a store named on the command line a file of its own, which goes with the object; otherwise the
// user's.
class ConfigFor {
public:
    explicit ConfigFor(const std::string& store);
    ~ConfigFor();
    ConfigFor(const ConfigFor&) = delete;
    ConfigFor& operator=(const ConfigFor&) = delete;
    // Empty: the user's own.
    const std::filesystem::path& file() const { return file_; }

private:
    std::filesystem::path folder_;
    std::filesystem::path file_;
};

// Runs screen scripts with their windows drawn, each on a copy of the store; `picture "name"` in a script leaves name.png in the folder.
// The exit code: 0 when all passed.
int playInDesktop(QApplication& application, ui::Tone tone, const std::string& store, const std::vector<std::string>& scripts,
                  const std::string& folder);

// Leaves a picture of every form, with what the store holds, light and dark, in the folder.
int pictureEveryForm(QApplication& application, const std::string& store, const std::string& folder);

} // namespace merchantry::programs
