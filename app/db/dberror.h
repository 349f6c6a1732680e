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

// The one error of the data floor, the same on both kinds of session.
class DbError : public std::runtime_error {
public:
    enum class Category { Syntax, Name, Type, Integrity, Conflict, Transaction, Unsupported, Busy, Cancelled, Storage, Raised, Other };

    DbError(Category category, int native, const std::string& message, int line = 0)
        : std::runtime_error(message), category_(category), native_(native), line_(line) {}

    Category category() const { return category_; }
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
    std::string procedure_;
};

} // namespace merchantry::db
