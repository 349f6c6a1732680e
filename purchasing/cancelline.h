#pragma once

#include "purchasing/openlines.h"

#include <cstdint>
#include <vector>

namespace merchantry::purchasing {

// One open line with what of it will not be delivered.
struct CancelLine : OpenLine {
    std::int16_t CancelQty = 0;

    Currency extended() const { return Cost * CancelQty; }
};

// Takes what the lines give up off the order, in one transaction on the shared connection; the number that the cancellation got. Throws
// DbError, and then nothing of it is in the store.
std::int32_t postCancellation(std::int32_t PONumber, const std::vector<CancelLine>& lines);

} // namespace merchantry::purchasing
