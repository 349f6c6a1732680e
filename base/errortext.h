#pragma once

#include <exception>
#include <string>

namespace merchantry {

// What an exception says, as a sentence for the user: the system's "filesystem error: cannot open file: …" becomes the path and the reason.
std::string sentenceOf(const std::exception& error);

} // namespace merchantry
