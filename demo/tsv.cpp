#include "demo/tsv.h"

#include "base/text.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <stdexcept>

namespace merchantry::demo {

Tsv::Tsv(const std::filesystem::path& file) : file_(file.string()) {
    std::ifstream in(file, std::ios::binary);
    std::string line;
    if (!in || !std::getline(in, line))
        throw std::runtime_error("The demo data file " + file_ + " cannot be read.");
    heading_ = split(line, "\t");
    while (std::getline(in, line)) {
        rows_.push_back(split(line, "\t"));
        if (rows_.back().size() != heading_.size())
            throw std::runtime_error("The demo data file " + file_ + " is damaged at line " + std::to_string(rows_.size() + 1) + ".");
    }
}

const std::string& Tsv::at(std::size_t row, std::string_view column) const {
    const auto place = std::find(heading_.begin(), heading_.end(), column);
    if (place == heading_.end())
        throw std::runtime_error("The demo data file " + file_ + " has no column " + std::string(column) + ".");
    return rows_.at(row)[static_cast<std::size_t>(place - heading_.begin())];
}

int Tsv::number(std::size_t row, std::string_view column) const {
    const std::string& text = at(row, column);
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size())
        throw std::runtime_error("The demo data file " + file_ + " has no number in " + std::string(column) + " at line " +
                                 std::to_string(row + 2) + ".");
    return number;
}

} // namespace merchantry::demo
