#pragma once

#include <filesystem>
#include <fstream>

namespace merchantry {

// A file in the making, beside the one whose place it takes when all is written: whatever goes wrong before, and when it is let go
// unfinished, what stood there is whole.
class NewFile {
public:
    // Throws std::runtime_error with a sentence when nothing can be written there.
    explicit NewFile(std::filesystem::path target);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    // Puts it in its place. Throws std::runtime_error with a sentence when not all of it could be written.
    void finish();

    std::ofstream out; // binary

private:
    std::filesystem::path target_;
    std::filesystem::path part_;
};

} // namespace merchantry
