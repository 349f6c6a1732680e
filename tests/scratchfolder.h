#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace merchantry {

// A folder that no other test, and no other run of this test, has; it goes with the object.
class ScratchFolder {
public:
    ScratchFolder()
        : path_(std::filesystem::temp_directory_path() /
                ("merchantry-test-" + std::to_string(std::random_device()()) + std::to_string(std::random_device()()))) {
        std::filesystem::create_directories(path_);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

} // namespace merchantry
