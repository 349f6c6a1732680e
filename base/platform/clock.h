#pragma once

#include "base/date.h"

#include <functional>

namespace merchantry {

// The wall clock of the whole program. A test or a play may set it; from then on it stands still but for `advance`.
class Clock {
public:
    Date now() const;
    void set(Date date);
    // Lets a set clock run on; a clock that was never set is left to the system.
    void advance(std::int64_t ms);
    bool isSet() const { return fixed_; }

private:
    bool fixed_ = false;
    Date at_;
};

} // namespace merchantry
