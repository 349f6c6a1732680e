#include "app/db/ado/needle.h"

#include "base/lettercase.h"

#include <algorithm>
#include <array>

namespace merchantry::db {
namespace {

using Byte = unsigned char;

constexpr std::array<Byte, 256> kFolded = [] {
    std::array<Byte, 256> table{};
    for (int i = 0; i < 256; ++i)
        table[static_cast<std::size_t>(i)] = static_cast<Byte>(i >= 'A' && i <= 'Z' ? i + 32 : i);
    return table;
}();

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<Byte>(c) < 0x80; });
}

} // namespace

Needle::Needle(std::string_view text) : folded_(lowerCase(text)), ascii_(isAscii(folded_)) {}

bool Needle::isIn(std::string_view text) const {
    if (!ascii_)
        return lowerCase(text).find(folded_) != std::string::npos;
    const std::size_t size = folded_.size();
    if (size == 0)
        return true;
    if (text.size() < size)
        return false;
    const auto first = static_cast<Byte>(folded_[0]);
    const auto* here = reinterpret_cast<const Byte*>(text.data());
    const Byte* const last = here + (text.size() - size);
    for (; here <= last; ++here) {
        if (kFolded[*here] != first)
            continue;
        std::size_t i = 1;
        while (i < size && kFolded[here[i]] == static_cast<Byte>(folded_[i]))
            ++i;
        if (i == size)
            return true;
    }
    return false;
}

} // namespace merchantry::db
