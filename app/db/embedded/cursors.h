#pragma once

#include "app/db/embedded/evaluator.h"

#include <string>

namespace merchantry::db::embedded {

// DECLARE CURSOR, OPEN, FETCH, CLOSE and DEALLOCATE. A cursor's rows are read when it is opened, with the variables as they were when
// it was declared, and stand still from then on. One belongs
// to the session, or to its batch or module when it is local or held by a variable.
class Cursors {
public:
    Cursors(BatchState& batch, Transaction& transaction, Plans& plans, Evaluator& evaluator)
        : batch_(batch), transaction_(transaction), plans_(plans), evaluator_(evaluator) {}

    void run(const tsql::CursorStatement& statement);
    // CURSOR_STATUS: -3 none, -1 closed, 0 without rows, 1 open.
    int status(const std::string& name);

private:
    Cursor* find(const std::string& name);
    Cursor& require(const tsql::CursorStatement& statement);
    Cursor& requireOpen(const tsql::CursorStatement& statement);
    void declare(const tsql::CursorStatement& statement);
    void open(Cursor& cursor, const tsql::CursorStatement& statement);
    void close(Cursor& cursor);
    void deallocate(const tsql::CursorStatement& statement);
    void fetch(Cursor& cursor, const tsql::CursorStatement& statement);
    std::int64_t placeOf(const Cursor& cursor, const tsql::CursorStatement& statement);

    BatchState& batch_;
    Transaction& transaction_;
    Plans& plans_;
    Evaluator& evaluator_;
};

} // namespace merchantry::db::embedded
