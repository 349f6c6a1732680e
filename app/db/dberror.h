#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace merchantry::db {

// The numbers that callers of the store know by heart.
constexpr std::uint32_t kIntegrityError = 0x80040E2F; // duplicate, reference, null or check refused
constexpr std::uint32_t kSyntaxError = 0x80040E14;    // the statement is no statement
constexpr std::uint32_t kConflict = 0x80040E38;       // the row was changed by someone else
constexpr std::uint32_t kGeneralError = 0x80004005;
constexpr std::uint32_t kInvalidArgument = 0x800A0BB9; // a filter, sort or find text that is none
constexpr std::uint32_t kNoCurrentRow = 0x800A0BCD;    // before the first row or behind the last
constexpr std::uint32_t kNotInCollection = 0x800A0CC1; // no column of that name
constexpr std::uint32_t kReadOnly = 0x800A0CB3;        // the recordset cannot be changed
constexpr std::uint32_t kClosedObject = 0x800A0E78;    // the connection or recordset is closed
constexpr std::uint32_t kTypeMismatch = 0x80020005;    // the value is not of the column's type

// The one error of the data floor, the same on both kinds of session.
class DbError : public std::runtime_error {
public:
    enum class Category { Syntax, Name, Type, Integrity, Conflict, Transaction, Unsupported, Busy, Cancelled, Storage, Raised, Other };

    DbError(Category category, int native, const std::string& message, int line = 0)
        : std::runtime_error(message), category_(category), native_(native), line_(line) {}

    Category category() const { return category_; }
    // The disk, the file or another program is to blame, not what was asked for.
    bool isOfTheStore() const { return category_ == Category::Storage || category_ == Category::Busy; }
    // The server's own number (2627, 547, 102, ...); 0 when the error is not the server's.
    int native() const { return native_; }
    // What ADO reports: kIntegrityError, kSyntaxError, kConflict or kGeneralError.
    std::uint32_t hresult() const;
    // Line of the batch or procedure, from 1; 0 when unknown.
    int line() const { return line_; }
    int severity() const { return severity_; }
    int state() const { return state_; }
    const std::string& procedure() const { return procedure_; }

    DbError& at(int line) {
        line_ = line;
        return *this;
    }
    DbError& in(std::string procedure) {
        procedure_ = std::move(procedure);
        return *this;
    }
    // For errors that ADO itself raises, with a number of its own.
    DbError& withHresult(std::uint32_t hresult) {
        hresult_ = hresult;
        return *this;
    }
    DbError& withSeverity(int severity, int state) {
        severity_ = severity;
        state_ = state;
        return *this;
    }

private:
    Category category_;
    int native_;
    int line_;
    int severity_ = 16;
    int state_ = 1;
    std::uint32_t hresult_ = 0;
    std::string procedure_;
};

} // namespace merchantry::db
