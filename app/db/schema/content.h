#pragma once

#include "app/db/session.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace merchantry::db {

// Views, procedures, triggers and first rows are renewed in existing stores by their content: a store keeps a fingerprint of each file of
// the schema that it was made from (table SchemaContent), so that only a change of a table wants a new version. A file of rows runs again
// in every store when it changes, and says itself what it leaves alone.

// What a store has from other texts than this program's files, lacks, or has of files that the program knows no more.
struct OtherContent {
    std::set<std::string, std::less<>> files; // "procedures/bsp_NewItem.sql"
    bool isNewer = false;                     // a newer program's, and stays; else it waits to be renewed
};
OtherContent otherContent(Session& session);

// Puts what differs from this program's files, and takes away what the program has no more, in one transaction. A store that a newer
// program renewed is left as it is. Returns the names of the files that were renewed, "procedures/bsp_NewItem.sql". Throws DbError, naming
// the file; nothing is changed then.
std::vector<std::string> renewContent(Session& session);

// All of it, in the caller's transaction.
void putContent(Session& session);

// Notes that the store's content is this program's, in the caller's transaction.
void noteContent(Session& session);

} // namespace merchantry::db
