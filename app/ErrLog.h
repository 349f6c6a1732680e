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

    // The thirteen arguments of every report, in their order; the reserved ones carry nothing. `style` 16 is a stop icon with an OK button.
    // May put another connection into `connection`. `plain`, where given, is a sentence for the user that stands before the number; the
    // table does not keep it.
    void Report(std::string& reserved1, std::string& tag, std::string& procedure, int& style, std::string& caption, int& number,
                std::string& description, std::string& reserved8, int& reserved9, bool& logToDatabase, db::ConnectionPtr& connection,
                int& reserved12, int& reserved13, const std::string& plain = {});

private:
    ui::Desk& desk_;
};

} // namespace merchantry::app
