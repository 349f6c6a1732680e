#pragma once

#include "app/db/embedded/session_state.h"

#include <atomic>
#include <vector>

namespace merchantry::db::embedded {

// Ends the batch; the errors are already noted.
struct BatchEnd {};

// An error that ends the module or batch in which it came up, and not its caller: a name that does not exist when it is reached.
struct ScopeEnd {
    DbError error;
    const Frame* frame;
};

// The running batch. What changes while a part of it runs is put back by the guards of scopes.h.
struct BatchState {
    explicit BatchState(SessionState& state) : session(state) {}

    SessionState& session;
    Frame* frame = nullptr; // the innermost one; null while no batch runs
    ResultSink* sink = nullptr;
    std::vector<DbError> errors;
    std::vector<DbError> caught; // of the CATCH blocks around
    int tries = 0;               // TRY blocks around
    int level = 0;               // @@NESTLEVEL
    bool inInsertExec = false;
    bool checking = false;        // its statements are bound, and not run
    std::int64_t scopeNumber = 0; // of the last frame that began
    std::atomic<bool> cancelled = false;

    // One more error of the batch: the first is thrown at its end, the others are told to the sink.
    void note(const DbError& error);
    // Runs what has to be done also while an error is under way: its own error is noted as one more of the batch.
    void noting(const std::function<void()>& what);
    bool inTrigger() const;
    // Whether the statement that the innermost trigger runs for sets the column.
    bool isUpdated(int column) const;
    // Of the running frame.
    const tsql::Variable& variable(int slot) const { return frame->code->variables[static_cast<std::size_t>(slot)]; }
    const tsql::Cell& value(int slot) const { return frame->variables[static_cast<std::size_t>(slot)]; }
    void assign(int slot, tsql::Cell cell) { frame->variables[static_cast<std::size_t>(slot)] = std::move(cell); }
};

} // namespace merchantry::db::embedded
