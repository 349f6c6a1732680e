#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace merchantry {

// A number of things in words: "1 row", "2 rows", "1,234 rows"; `many` where it is not `one` with an s: "1 class", "2 classes".
std::string counted(std::int64_t number, std::string_view one, std::string_view many = {});

} // namespace merchantry
