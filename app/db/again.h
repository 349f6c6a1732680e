#pragma once

#include "app/db/servererrors.h"
#include "app/db/session.h"

namespace merchantry::db {

// Runs work that begins and ends a transaction of its own, and once more when the server gave it up because others were in the way. Inside
// a transaction that stands already it is run once: what came before would be lost. Gives what the work gives.
// Requires: the work keeps nothing of a run that failed.
template <class Whole> auto againWhenBusy(Session& session, Whole&& whole) {
    if (session.transactionDepth() > 0)
        return whole();
    try {
        return whole();
    } catch (const TryAgain&) {
        return whole();
    }
}

} // namespace merchantry::db
