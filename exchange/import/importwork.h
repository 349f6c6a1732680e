#pragma once

#include "app/db/session.h"
#include "ui/desk.h"

#include <functional>
#include <string>

namespace merchantry::exchange {

// Makes the steps of a work that writes; the session is lent to them. May throw as the steps may.
using WorkBegun = std::function<std::function<int()>(db::Session&)>;

// Runs the steps on a connection of its own until 100, behind a window that shows the percent and can stop them: a stop or a failure leaves
// the store without a trace. False when it was stopped or failed, which was said. Failures are reported under the procedure of the screen.
bool workOnTheStore(ui::Desk& desk, const char* procedure, const std::string& what, const WorkBegun& begun);

} // namespace merchantry::exchange
