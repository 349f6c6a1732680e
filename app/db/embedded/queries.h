#pragma once

#include "app/db/embedded/evaluator.h"
#include "app/db/embedded/identities.h"
#include "app/db/embedded/table_maker.h"

namespace merchantry::db::embedded {

// SELECT: rows for the sink, values for variables, or a new table.
class Queries {
public:
    Queries(const DefinitionParts& parts, Transaction& transaction, Identities& identities, Plans& plans, Evaluator& evaluator,
            TableMaker& tables)
        : parts_(parts), batch_(parts.batch), transaction_(transaction), identities_(identities), plans_(plans), evaluator_(evaluator),
          tables_(tables) {}

    void select(const tsql::SelectStatement& statement);

private:
    void sendRows(StatementPlan& plan);
    void assignVariables(StatementPlan& plan);
    void into(const tsql::QueryPlan& query, int line);
    void noteNumbers(const tsql::TableDef& made);

    DefinitionParts parts_;
    BatchState& batch_;
    Transaction& transaction_;
    Identities& identities_;
    Plans& plans_;
    Evaluator& evaluator_;
    TableMaker& tables_;
};

} // namespace merchantry::db::embedded
