#pragma once

#include "app/db/embedded/evaluator.h"

#include <string>

namespace merchantry::db::embedded {

// What a batch says: PRINT, RAISERROR and THROW; and WAITFOR, in which it says nothing.
class Messages {
public:
    Messages(BatchState& batch, Transaction& transaction, Plans& plans, Evaluator& evaluator)
        : batch_(batch), transaction_(transaction), plans_(plans), evaluator_(evaluator) {}

    void print(const tsql::PrintStatement& statement);
    // A message up to severity 10, above it an error: DbError Raised.
    void raise(const tsql::RaiseStatement& statement);
    // Ends the batch (BatchEnd), or throws its error where a TRY waits for it.
    [[noreturn]] void raiseAndEnd(const tsql::ThrowStatement& statement);
    void wait(const tsql::WaitForStatement& statement);

private:
    DbError thrown(const tsql::ThrowStatement& statement);

    BatchState& batch_;
    Transaction& transaction_;
    Plans& plans_;
    Evaluator& evaluator_;
};

} // namespace merchantry::db::embedded
