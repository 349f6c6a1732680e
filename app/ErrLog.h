#pragma once

#include "app/db/ado/connection.h"

#include <string>

namespace merchantry::ui {
class Desk;
}

namespace merchantry::app {

// The error logger: shows a failure to the user and, when asked, keeps it as a row of the table ErrorLog.
class ErrLog {
public:
    explicit ErrLog(ui::Desk& desk) : desk_(desk) {}

    // The thirteen arguments of every report, in their order; the reserved ones carry nothing, but the first
    // may hold a plain sentence that stands before the number. `style` 16 is a stop icon with an OK button.
    // May put another connection into `connection`.
    void Report(std::string& plain, std::string& tag, std::string& procedure, int& style, std::string& caption, int& number,
                std::string& description, std::string& reserved8, int& reserved9, bool& logToDatabase, db::ConnectionPtr& connection,
                int& reserved12, int& reserved13);

private:
    ui::Desk& desk_;
};

} // namespace merchantry::app
