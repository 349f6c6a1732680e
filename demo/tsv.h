#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::demo {

// A file of rows with a heading line, cells parted by tabs. Throws std::runtime_error naming the file when it cannot be read, a row has
// another number of cells than the heading, or a column is asked for that is not there.
class Tsv {
public:
    explicit Tsv(const std::filesystem::path& file);

    std::size_t size() const { return rows_.size(); }
    const std::string& at(std::size_t row, std::string_view column) const;
    int number(std::size_t row, std::string_view column) const;

private:
    std::string file_;
    std::vector<std::string> heading_;
    std::vector<std::vector<std::string>> rows_;
};

} // namespace merchantry::demo
