#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace merchantry::app {

// A failure of a procedure that is not the database's: number and sentence as a user knows them (424 "Object required").
class RunTimeError : public std::runtime_error {
public:
    RunTimeError(int number, const std::string& description) : std::runtime_error(description), number_(number) {}
    int number() const { return number_; }

private:
    int number_;
};

// The number that the error log gets: the database's HRESULT, a run-time error's own, 6 overflow, 11 division by zero, 13 type mismatch, 5
// any other.
int errorNumber(const std::exception& error);

// Where a procedure's failures are reported under.
struct FailurePlace {
    std::string tag;       // "MR_frmItems"
    std::string procedure; // "FetchItemData"
    std::string caption = "Critical Error";
    bool logToDatabase = true;
    std::string plain{}; // a sentence for the user, before the number; the log does not keep it
};

// Reports the exception to the error logger; called by guarded only.
void reportFailure(const FailurePlace& place, const std::exception& error);

// The standard failure path: runs the body of a procedure; a database or run-time error in it is reported and the procedure ends, which its
// caller sees as a normal return. False when it failed. The end of the program passes through.
template <class Body> bool guarded(const FailurePlace& place, Body&& body) {
    try {
        body();
        return true;
    } catch (const std::exception& error) {
        reportFailure(place, error);
        return false;
    }
}

} // namespace merchantry::app
