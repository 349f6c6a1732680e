#pragma once

#include "app/db/dberror.h"
#include "app/db/sqltype.h"
#include "base/platform/clock.h"
#include "base/value.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::db {

// A column of a result. Where the column comes straight from a table (also through a join, a view of one, or a procedure
// whose last statement is a plain select), baseTable and baseColumn name it and a recordset may write through them.
struct Column {
    std::string name; // as the select names it; may be empty
    SqlType type;
    bool nullable = true;
    std::string baseTable;
    std::string baseColumn;
    bool identity = false;
    bool computed = false;
};

// One row while the session hands it over; valid only during the call.
class RowView {
public:
    virtual ~RowView() = default;
    virtual int size() const = 0;
    virtual bool isNull(int column) const = 0;
    virtual Value value(int column) const = 0;
    // Text columns only: the text in place.
    virtual std::string_view text(int column) const = 0;
    // The 64-bit number behind a cell, where there is one: whole numbers as they are, money in ten-thousandths, dates in
    // milliseconds since 1900. Requires: a Bit, whole, money or date column that is not null.
    virtual std::int64_t number(int column) const = 0;
};

// Takes what a batch gives, in order. The session calls it while the batch runs; an exception thrown here stops the batch and passes
// through.
class ResultSink {
public:
    virtual ~ResultSink() = default;
    // Whether the columns must name their tables, since rows will be written back. A store in a file always does; a server is asked first.
    virtual bool wantsTables() const { return false; }
    virtual void beginSet(const std::vector<Column>& columns) = 0;
    virtual void row(const RowView& row) = 0;
    virtual void endSet() {}
    // Rows that a statement without a result changed.
    virtual void changed(std::int64_t /*rows*/) {}
    // PRINT and messages of severity below 11.
    virtual void message(const std::string& /*text*/) {}
    // An error that did not end the batch; the first one is thrown from execute when the batch is over.
    virtual void error(const DbError& /*error*/) {}
};

// A sink for statements whose rows nobody reads.
class NoResult : public ResultSink {
public:
    void beginSet(const std::vector<Column>&) override {}
    void row(const RowView&) override {}
};

// Who is told, in the session's own thread, that a statement waits for another program which is saving to the store. It must not use the
// session.
class Waiter {
public:
    virtual ~Waiter() = default;
    // Asked again and again with how long that has lasted. False gives up: the statement fails with Category::Busy, and nothing of it was
    // done.
    virtual bool goOn(std::chrono::milliseconds waited) = 0;
    // The statement runs, or has failed.
    virtual void over() {}
};

struct Parameter {
    std::string name; // without "@"; may be empty for calls by position
    SqlType type;
    Value value;
    bool output = false; // execute puts the result into value
};

// What a base table looks like to a recordset that writes through it.
struct TableShape {
    struct Field {
        std::string name;
        SqlType type;
        bool nullable = true;
        bool identity = false;
        bool computed = false;
        bool hasDefault = false;
    };
    std::string name;
    std::vector<Field> fields;
    // Every set of columns, none of them nullable, that tells one row: the primary key first, then the unique keys and indexes.
    std::vector<std::vector<std::string>> keys;
};

// One connection to a store: one user, one transaction at a time, one thread (but for cancel).
// Made by openSession; dropping it rolls back what is open and gives the connection back.
class Session {
public:
    virtual ~Session() = default;

    // Runs a batch to its end. Parameters stand as variables in it. Errors of single statements let the batch go on where the
    // server would; the first error is thrown as DbError after the rest has run.
    virtual void execute(std::string_view batch, std::vector<Parameter>& parameters, ResultSink& sink) = 0;
    void execute(std::string_view batch, ResultSink& sink) {
        std::vector<Parameter> none;
        execute(batch, none, sink);
    }
    // Calls a procedure with parameters by name (or by position, where names are empty).
    virtual void call(std::string_view procedure, std::vector<Parameter>& parameters, ResultSink& sink) = 0;

    // The shape of a base table; throws DbError 208 when there is none.
    virtual TableShape table(std::string_view name) = 0;

    virtual void begin() = 0;
    virtual void commit() = 0;
    virtual void rollback() = 0;
    virtual int transactionDepth() const = 0;

    // Value of the last identity that this session inserted; null when none.
    virtual Value lastIdentity() const = 0;

    // Stops the running batch as soon as possible: it throws Category::Cancelled. May be called from another thread.
    virtual void cancel() = 0;

    // From here on every change is refused with error 3906, also in what is called, temporary tables included. The session's end takes it
    // back.
    virtual void setReadOnly(bool readOnly) = 0;

    // Who is asked while a statement waits, owned by the caller; without one (null) it gives up after twenty seconds. The session's end
    // takes it back.
    virtual void setWaiter(Waiter* waiter) = 0;

    // The clock that GETDATE() reads. The caller owns it; null means the system's.
    virtual void setClock(const Clock* clock) = 0;
};

} // namespace merchantry::db
