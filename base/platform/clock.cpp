#include "base/platform/clock.h"

#include "base/platform/platform.h"

namespace merchantry {

Date Clock::now() const {
    return fixed_ ? at_ : platform::localTime();
}

void Clock::set(Date date) {
    fixed_ = true;
    at_ = date;
}

void Clock::advance(std::int64_t ms) {
    if (fixed_)
        at_ = Date::fromMs(at_.ms() + ms);
}

} // namespace merchantry
