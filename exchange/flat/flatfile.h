#pragma once

#include "app/db/session.h"
#include "exchange/flat/packages.h"

#include <functional>
#include <istream>
#include <ostream>
#include <stdexcept>
#include <string>

namespace merchantry::exchange {

// Takes how many rows are done; false stops the work.
using FlatProgress = std::function<bool(int rows)>;

// Why a package's step failed: on which side, and what is wrong there, with row and column of the first bad cell.
class FlatError : public std::runtime_error {
public:
    FlatError(std::string source, const std::string& description) : std::runtime_error(description), source_(std::move(source)) {}
    const std::string& source() const { return source_; }

private:
    std::string source_;
};

constexpr const char* kFlatFile = "Text file"; // the sources of failures
constexpr const char* kFlatStore = "Store";

// Writes the rows of an export: UTF-8, rows end with CR LF, a cell without a value has not even quotes. Flags are 1 and 0, numbers in
// shortest form, dates yyyy-mm-dd hh:mm:ss. False when it was stopped. Throws FlatError.
bool exportRows(db::Session& session, const FlatPackage& package, std::ostream& file, const FlatProgress& goOn);

struct FlatRow {
    int number = 0;            // in the file
    std::vector<Value> values; // in the order of the package's columns; null where the file has none
};

// Whether the file's first row names all columns of the package, and of a package without a heading: always.
bool hasColumns(const FlatPackage& package, std::istream& file);

// Reads all rows of an import and checks each cell against the table, so that nothing was written yet when one is bad. Rows without any
// value are passed over. Nothing when it was stopped. Throws FlatError for a column that the file lacks, a row with more or fewer cells
// than the file has columns, a cell that the table cannot hold.
std::optional<std::vector<FlatRow>> readRows(db::Session& session, const FlatPackage& package, std::istream& file,
                                             const FlatProgress& goOn);

// Appends the rows to the package's table; a column without a value gets its default. False when it was stopped. Throws FlatError: a row
// whose key is taken is refused, nothing is changed in place of it. Requires: a transaction that the caller ends.
bool appendRows(db::Session& session, const FlatPackage& package, const std::vector<FlatRow>& rows, const FlatProgress& goOn);

} // namespace merchantry::exchange
