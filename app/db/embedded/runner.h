#pragma once

#include "app/db/embedded/code.h"

namespace merchantry::db::embedded {

// What those who carry out a statement ask of whoever runs statements.
class Runner {
public:
    virtual ~Runner() = default;
    // Runs a batch, module or text to its end; throws DbError, ScopeEnd or BatchEnd.
    virtual void runFrame(Frame& frame) = 0;
    // The statement within another one: the EXEC of an INSERT.
    virtual void runInner(const tsql::Statement& statement) = 0;
};

} // namespace merchantry::db::embedded
