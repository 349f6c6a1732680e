#pragma once

#include <string>
#include <string_view>

namespace merchantry::db {

// A text prepared to be found inside others, without case (ASCII and the Latin letters that the store's collation folds).
class Needle {
public:
    explicit Needle(std::string_view text);
    bool isIn(std::string_view text) const;
    const std::string& folded() const { return folded_; }

private:
    std::string folded_;
    bool ascii_;
};

} // namespace merchantry::db
