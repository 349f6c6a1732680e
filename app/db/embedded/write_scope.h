#pragma once

#include <cstdint>

namespace merchantry::db::embedded {

class Engine;

// The piece of a transaction that one statement is: all of it or nothing. Outside a transaction it is one of its own, with the lock of the
// writer from the start; inside it is a savepoint, or nothing where one statement of SQLite, which undoes itself, is all there is. Not
// finished, it undoes what was done.
class WriteScope {
public:
    explicit WriteScope(Engine& engine, bool temporaryOnly = false, bool undoesItself = false);
    ~WriteScope();
    WriteScope(const WriteScope&) = delete;
    WriteScope& operator=(const WriteScope&) = delete;

    // Keeps what was done. Without effect when the transaction around was rolled back meanwhile.
    void finish();
    // Whether the transaction was rolled back since.
    bool isOver() const;
    // Whether the statement stands in no transaction but its own.
    bool isOwn() const { return mode_ == Mode::Own; }

private:
    enum class Mode { Own, SavePoint, Temporary, Itself, Done };
    Engine& engine_;
    Mode mode_ = Mode::Own;
    std::uint64_t transaction_ = 0;
};

// While it lives, the triggers of a statement that is a transaction of its own see that one counted. Without effect within another.
class TriggerCount {
public:
    TriggerCount(Engine& engine, bool own);
    ~TriggerCount();
    TriggerCount(const TriggerCount&) = delete;
    TriggerCount& operator=(const TriggerCount&) = delete;

private:
    Engine& engine_;
    bool own_;
    std::uint64_t transaction_;
};

} // namespace merchantry::db::embedded
