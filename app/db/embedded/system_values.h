#pragma once

#include "app/db/embedded/batch_state.h"
#include "app/db/embedded/identities.h"
#include "app/db/embedded/session_catalog.h"
#include "app/db/embedded/transaction.h"

namespace merchantry::db::embedded {

// What @@ROWCOUNT, GETDATE(), ERROR_NUMBER() and their kin give while a batch runs.
class SystemValues {
public:
    SystemValues(const BatchState& batch, const Transaction& transaction, const Identities& identities, const SessionCatalog& catalog)
        : batch_(batch), transaction_(transaction), identities_(identities), catalog_(catalog) {}

    tsql::Cell of(tsql::SystemValue value) const;

private:
    tsql::Cell ofSession(tsql::SystemValue value) const;
    // Of the error that the innermost CATCH block handles; null outside of one.
    tsql::Cell ofError(tsql::SystemValue value) const;
    static tsql::Cell ofProgram(tsql::SystemValue value);

    const BatchState& batch_;
    const Transaction& transaction_;
    const Identities& identities_;
    const SessionCatalog& catalog_;
};

} // namespace merchantry::db::embedded
