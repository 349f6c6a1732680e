#pragma once

#include "app/db/embedded/calls.h"
#include "app/db/embedded/definer.h"

namespace merchantry::db::embedded {

// The procedures that are there without being in the store: sp_executesql and its like. The shell is none: only the three commands of the
// backup screen are, while its stage stands.
class SystemProcedures {
public:
    SystemProcedures(BatchState& batch, SessionCatalog& catalog, SchemaVersion& schema, Calls& calls, Definer& definer,
                     Transaction& transaction, Identities& identities)
        : batch_(batch), catalog_(catalog), schema_(schema), calls_(calls), definer_(definer), transaction_(transaction),
          identities_(identities) {}

    // Throws DbError Name 2812 when there is none of that name either.
    void execute(const tsql::ExecuteStatement& statement);

private:
    struct Entry;
    static const Entry* find(const std::string& name);
    void executeSql(const tsql::ExecuteStatement& statement);
    void addType(const tsql::ExecuteStatement& statement);
    void reindexTexts(const tsql::ExecuteStatement& statement);
    void useIdentity(const tsql::ExecuteStatement& statement);
    void runShell(const tsql::ExecuteStatement& statement);
    void doNothing(const tsql::ExecuteStatement&) {}

    BatchState& batch_;
    SessionCatalog& catalog_;
    SchemaVersion& schema_;
    Calls& calls_;
    Definer& definer_;
    Transaction& transaction_;
    Identities& identities_;
};

} // namespace merchantry::db::embedded
