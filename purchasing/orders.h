#pragma once

#include <cstdint>

namespace merchantry::purchasing {

// The number that stands for an order that does not exist yet.
constexpr std::int16_t kNewOrder = -1;

// The database key (POID) of the order that the store knows by that number; 0 when there is none. Throws DbError.
std::int16_t PONumberToPOID(std::int16_t PONumber);

} // namespace merchantry::purchasing
