#pragma once

#include "app/db/embedded/code.h"
#include "base/platform/clock.h"

#include <map>
#include <string>

namespace merchantry::db::embedded {

// What SET chose.
struct Settings {
    bool ansiNulls = true;
    bool quotedIdentifiers = true;
    bool xactAbort = false;
    bool noCount = false;
    std::int64_t rowCount = 0; // 0: no limit
    int dateFirst = 7;
};

// What a session keeps from one batch to the next, beside its transaction, its temporary tables and the numbers it was given.
struct SessionState {
    Settings settings;
    std::int64_t rowCount = 0; // @@ROWCOUNT
    int error = 0;             // @@ERROR
    int fetchStatus = 0;       // @@FETCH_STATUS
    std::map<std::string, Cursor> cursors;
    std::int64_t cursorNumber = 0; // of the cursors that variables hold
    const Clock* clock = nullptr;  // null: that of the computer

    Date now() const;
    // As a new session has it.
    void reset();
};

} // namespace merchantry::db::embedded
