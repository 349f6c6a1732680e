#pragma once

#include "app/db/embedded/change_capture.h"
#include "app/db/embedded/evaluator.h"
#include "app/db/embedded/identities.h"

#include <optional>

namespace merchantry::db::embedded {

// Which rule a change broke: SQLite says that one is broken, the server names it.
class Conflicts {
public:
    using Kind = tsql::ChangePlan::Kind;

    Conflicts(Connection& connection, BatchState& batch, StoreCatalog& store, Identities& identities, ChangeCapture& capture,
              Evaluator& evaluator)
        : connection_(connection), batch_(batch), store_(store), identities_(identities), capture_(capture), evaluator_(evaluator) {}

    // The error of a change that failed, with the name of the rule. A broken reference is found by doing the change once more with all
    // references left open until its end, looking at what they hold then, and taking it back.
    DbError of(StatementPlan& plan, const DbError& error);
    // A broken check, or a duplicate with the name of its key: 2627 for a constraint and 2601 for an index. Other errors as they are.
    static DbError named(const DbError& error, const tsql::TableDef& table, Kind kind);
    // The first reference from or to the changed table that holds nowhere.
    std::optional<DbError> brokenReference(const tsql::ChangePlan& change);

private:
    const tsql::ForeignKeyDef* brokenIn(const tsql::TableDef& table);

    Connection& connection_;
    BatchState& batch_;
    StoreCatalog& store_;
    Identities& identities_;
    ChangeCapture& capture_;
    Evaluator& evaluator_;
};

} // namespace merchantry::db::embedded
