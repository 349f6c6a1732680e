#pragma once

#include "app/db/ado/command.h"
#include "app/db/ado/recordset.h"

#include <memory>
#include <string>

namespace merchantry::app {

class ErrLog;

// Opens the connection, makes commands, opens recordsets from commands. All arguments go by reference, since each may be replaced;
// callers store them back.
class DataBroker {
public:
    explicit DataBroker(db::Provider& provider) : provider_(provider) {}

    // A command bound to the connection.
    void NewCommand(db::ConnectionPtr& connection, std::shared_ptr<ErrLog>& logger, db::CommandPtr& command);
    // Leaves the connection closed, and does not throw, when the store cannot be reached; whyClosed says why then.
    void OpenConnection(std::string& connectionString, std::shared_ptr<ErrLog>& logger, long& timeoutSeconds,
                        db::ConnectionPtr& connection);
    // Executes the command into the recordset; status 0.
    void OpenCommand(db::RecordsetPtr& rows, std::shared_ptr<ErrLog>& logger, db::CommandPtr& command, db::CursorType cursor,
                     db::LockType lock, int& status);

    // The sentence of the last OpenConnection that failed; empty when it worked.
    const std::string& whyClosed() const { return whyClosed_; }
    // Whether that one found its store, and would not have it.
    bool wasReached() const { return wasReached_; }

private:
    db::Provider& provider_;
    std::string whyClosed_;
    bool wasReached_ = false;
};

} // namespace merchantry::app
