#pragma once

#include "app/db/embedded/plans.h"

namespace merchantry::db::embedded {

// Binds every statement of a batch or module once before it runs, so that a name that is wrong in a table that is there keeps it from
// running at all. What does not exist yet may exist when its statement is reached.
class BatchCheck {
public:
    BatchCheck(BatchState& batch, Plans& plans, const SchemaVersion& schema) : batch_(batch), plans_(plans), schema_(schema) {}

    // Throws what the binder does, or DbError Syntax 133 for a GOTO to nowhere. Once for each version of the schema. Requires: its frame is
    // the running one.
    void check(Code& code);

private:
    void checkEach(const tsql::Statement& statement);
    void bind(const tsql::Statement& statement);

    BatchState& batch_;
    Plans& plans_;
    const SchemaVersion& schema_;
};

} // namespace merchantry::db::embedded
