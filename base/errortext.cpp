#include "base/errortext.h"

#include <filesystem>

namespace merchantry {

std::string sentenceOf(const std::exception& error) {
    const auto* file = dynamic_cast<const std::filesystem::filesystem_error*>(&error);
    if (file == nullptr)
        return error.what();
    const std::string path = file->path1().string();
    return (path.empty() ? "A file or folder" : path) + " cannot be used: " + file->code().message() + ".";
}

} // namespace merchantry
