#pragma once

#include "app/db/embedded/evaluator.h"
#include "app/db/embedded/session_catalog.h"

namespace merchantry::db::embedded {

// SET of an option. Throws DbError Unsupported for a value that would make statements mean something else, Syntax 195 for an option that
// is none.
class Options {
public:
    Options(SessionState& session, SessionCatalog& catalog, SchemaVersion& schema, Plans& plans, Evaluator& evaluator)
        : session_(session), catalog_(catalog), schema_(schema), plans_(plans), evaluator_(evaluator) {}

    void set(const tsql::SetOptionStatement& statement);
    // What a procedure, a trigger or a text that was executed chose ends with it.
    void putBack(const Settings& before);

private:
    struct Entry;
    static const Entry* find(const std::string& option);
    void setAnsiNulls(const tsql::SetOptionStatement& statement);
    void setQuotedIdentifiers(const tsql::SetOptionStatement& statement);
    void setXactAbort(const tsql::SetOptionStatement& statement);
    void setNoCount(const tsql::SetOptionStatement& statement);
    void setRowCount(const tsql::SetOptionStatement& statement);
    void setDateFirst(const tsql::SetOptionStatement& statement);
    void setIdentityInsert(const tsql::SetOptionStatement& statement);
    std::int64_t number(const tsql::SetOptionStatement& statement);

    SessionState& session_;
    SessionCatalog& catalog_;
    SchemaVersion& schema_;
    Plans& plans_;
    Evaluator& evaluator_;
};

} // namespace merchantry::db::embedded
