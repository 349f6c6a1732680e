#pragma once

#include <cstdint>
#include <string>

namespace merchantry::purchasing {

// The number that stands for an order that does not exist yet.
constexpr std::int32_t kNewOrder = -1;

// An order as the store has it now.
struct OrderHead {
    std::int32_t POID = 0;
    std::string Status; // "O" open, "P" partial, "C" closed

    // Whether it can be edited: nothing of it was received or cancelled so far.
    bool isOpen() const { return Status == "O"; }
    // "Closed", as the list of orders has it.
    const char* statusWord() const { return isOpen() ? "Open" : Status == "P" ? "Partial" : "Closed"; }
};

// The order that the store knows by that number. Throws DbError, also when there is none.
OrderHead orderHead(std::int32_t PONumber);

// The database key (POID) of the order that the store knows by that number; 0 when there is none. Throws DbError.
std::int32_t PONumberToPOID(std::int32_t PONumber);

} // namespace merchantry::purchasing
