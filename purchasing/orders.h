#pragma once

#include <cstdint>

namespace merchantry::purchasing {

// The number that stands for an order that does not exist yet.
constexpr std::int32_t kNewOrder = -1;

// The database key (POID) of the order that the store knows by that number; 0 when there is none. Throws DbError.
std::int32_t PONumberToPOID(std::int32_t PONumber);

} // namespace merchantry::purchasing
