#pragma once

#include "app/db/session.h"
#include "exchange/backup/dmo.h"

namespace merchantry::exchange {

// Opens a session by its connection string; throws DbError with a sentence.
using SessionOpener = std::function<std::unique_ptr<db::Session>(const std::string& connectionString)>;

// A T-SQL server, which backs up and restores its databases itself, by statements on a session of its own beside the databases. Its files
// are on its own drives. What a backup is worth, the server says: it reads the file again.
std::unique_ptr<SQLServer> remoteServer(SessionOpener open);

// "12" of "12 percent processed."; -1 of any other text.
int percentOf(const std::string& message);

} // namespace merchantry::exchange
