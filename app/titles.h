#pragma once

namespace merchantry::app {

// What stands on the common message boxes. Some screens spell it otherwise, and keep that to themselves.
constexpr const char* kProduct = "Velmora Tillmark Professional";

} // namespace merchantry::app
