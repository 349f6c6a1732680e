#include "base/newfile.h"

#include <stdexcept>
#include <system_error>

namespace merchantry {

NewFile::NewFile(std::filesystem::path target) : target_(std::move(target)), part_(target_) {
    part_ += ".part";
    out.open(part_, std::ios::binary | std::ios::trunc);
    if (!out)
        throw std::runtime_error("The file " + target_.string() + " cannot be written.");
}

NewFile::~NewFile() {
    out.close();
    std::error_code ignored;
    std::filesystem::remove(part_, ignored);
}

void NewFile::finish() {
    out.close();
    std::error_code problem;
    if (out)
        std::filesystem::rename(part_, target_, problem);
    if (!out || problem)
        throw std::runtime_error("The file " + target_.string() + " could not be written.");
}

} // namespace merchantry
