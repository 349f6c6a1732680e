#pragma once

#include <string>

namespace merchantry::catalog {

// Where a user stood in the list of items when one was chosen from it: the item takes it along, and the list opens there again.
struct ListPlace {
    enum class Shown { All, Active, Inactive };
    Shown shown = Shown::All;
    std::string field; // of the search, and its text
    std::string text;
    std::string pair; // the item
};

} // namespace merchantry::catalog
