#pragma once

#include "app/db/server/odbc.h"
#include "app/db/session.h"

#include <memory>
#include <vector>

namespace merchantry::db::server {

// The parameters of one statement while it runs, in the memory that the driver reads from and writes results into. The statement must
// outlive it, and it the statement's run.
class BoundParameters {
public:
    explicit BoundParameters(SQLHANDLE statement) : statement_(statement) {}
    ~BoundParameters();
    BoundParameters(const BoundParameters&) = delete;
    BoundParameters& operator=(const BoundParameters&) = delete;

    // A text by position, however long: what is run, and what its parameters are declared as.
    void addText(std::string text);
    // A parameter by its name, with "@"; by position without one.
    void add(const std::string& name, const Parameter& parameter);
    // What the server gave back into the parameters, which stand behind `first` others. Requires: every result was read.
    void readBack(std::size_t first, std::vector<Parameter>& parameters) const;

private:
    struct Place {
        SqlType type;
        SQLSMALLINT written = SQL_C_CHAR; // as what it lies in the bytes
        std::vector<char> bytes;
        SQLLEN length = 0;
    };
    Place& newPlace(const SqlType& type);
    void put(Place& place, const Value& value);
    void bind(Place& place, bool output);

    SQLHANDLE statement_;
    std::vector<std::unique_ptr<Place>> places_;
};

// The type under which a parameter goes: as it is, but texts of plain letters without their national form, so that indexes serve.
SqlType sentType(const Parameter& parameter);

} // namespace merchantry::db::server
