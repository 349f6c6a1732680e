#pragma once

#include "app/db/embedded/connection.h"
#include "app/db/embedded/session_catalog.h"
#include "app/db/embedded/shared_state.h"

#include <map>
#include <memory>

namespace merchantry::db::embedded {

// The numbers that identity columns give. Those of failed statements are used up: what the sessions of this process gave counts beside what
// the file holds. The file gets the numbers with the transaction's end: until then no other writer can ask for them. Tables are named by
// their ids; those of temporary tables are negative, and their numbers are the session's alone.
class Identities {
public:
    Identities(Connection& connection, SessionCatalog& catalog, std::shared_ptr<SharedState> shared)
        : connection_(connection), catalog_(catalog), shared_(std::move(shared)) {}

    // The number of the next row; throws DbError Value when there is none any more.
    std::int64_t next(std::int64_t table);
    // A row came with a number of its own.
    void note(std::int64_t table, std::int64_t given);
    // Of a table with an identity column: 0 the last number, 1 the seed, 2 the increment. Null for any other table.
    tsql::Cell info(const tsql::TableDef* table, int which);

    // The last number that this session was given; null when the last INSERT gave none.
    const tsql::Cell& last() const { return last_; }
    void forgetLast() { last_ = {}; }

    // Around a statement that may give numbers: what one that fails gave is not kept for the file.
    void beginStatement() { counters_.clear(); }
    void endStatement();
    // Writes what the transaction's statements gave. Requires: a write transaction.
    void write();
    void rolledBack() { unwritten_.clear(); }
    // The table is gone.
    void forget(std::int64_t table) { unwritten_.erase(table); }
    // The table begins with its seed again. Requires: a write transaction.
    void startOver(std::int64_t table);

    // All numbers as they are, for a statement that is run for a trial only.
    struct Numbers;
    Numbers numbers();
    void putBack(Numbers numbers);

private:
    struct Counter {
        std::int64_t last;
        std::int64_t increment;
        SqlType type;
        bool changed;
    };
    using Counters = std::map<std::int64_t, Counter>;
    using LastNumbers = std::map<std::int64_t, std::int64_t>;

    Counter& counterOf(std::int64_t table);
    std::optional<std::int64_t> lastInFile(std::int64_t table);
    std::optional<std::int64_t> lastInProcess(std::int64_t table);
    void keep(std::int64_t table, Counter& counter, std::int64_t number);

    Connection& connection_;
    SessionCatalog& catalog_;
    std::shared_ptr<SharedState> shared_;
    Statement3 read_;
    Statement3 write_;
    Counters counters_;     // of the running statement
    LastNumbers unwritten_; // given in the transaction
    LastNumbers temporary_; // of temporary tables
    tsql::Cell last_;
};

struct Identities::Numbers {
    Counters counters;
    LastNumbers temporary;
    LastNumbers shared;
    tsql::Cell last;
};

} // namespace merchantry::db::embedded
