#include "exchange/flat/flatfile.h"

#include "base/characters.h"
#include "base/lettercase.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/textorder.h"
#include "exchange/flat/csv.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace merchantry::exchange {
namespace {

using db::SqlType;
using db::TypeKind;

constexpr int kRowsBetweenTellings = 500;
constexpr const char* kRowEnd = "\r\n";

[[noreturn]] void badCell(int row, const std::string& column, const std::string& why) {
    throw FlatError(kFlatFile, "Row " + std::to_string(row) + ", column " + column + ": " + why);
}

// What a failure of the store says, with the row that it met.
[[noreturn]] void refusedRow(int row, const std::exception& error) {
    throw FlatError(kFlatStore, "Row " + std::to_string(row) + ": " + error.what());
}

// Writes the chosen columns of every row.
class RowWriter : public db::ResultSink {
public:
    RowWriter(const FlatPackage& package, std::ostream& file, const FlatProgress& goOn) : package_(package), file_(file), goOn_(goOn) {}

    void beginSet(const std::vector<db::Column>& columns) override {
        for (const FlatColumn& column : package_.columns) {
            const auto found =
                std::find_if(columns.begin(), columns.end(), [&](const db::Column& one) { return sameText(one.name, column.table); });
            if (found == columns.end())
                throw FlatError(kFlatStore, std::string("The store gives no column ") + column.table + ".");
            places_.push_back(static_cast<int>(found - columns.begin()));
        }
    }
    void row(const db::RowView& row) override {
        if (stopped)
            return;
        line_.clear();
        for (std::size_t i = 0; i < places_.size(); ++i) {
            line_ += i == 0 ? "" : ",";
            if (!row.isNull(places_[i]))
                appendCsvCell(line_, row.value(places_[i]).toScriptText(), package_.columns[i].quoted);
        }
        file_ << line_ << kRowEnd;
        if (!file_)
            throw FlatError(kFlatFile, "The file cannot be written on. The disk may be full.");
        stopped = ++rows_ % kRowsBetweenTellings == 0 && !goOn_(rows_);
    }

    bool stopped = false;

private:
    const FlatPackage& package_;
    std::ostream& file_;
    const FlatProgress& goOn_;
    std::vector<int> places_; // of the package's columns in the store's rows
    std::string line_;
    int rows_ = 0;
};

struct Range {
    std::int64_t least;
    std::int64_t most;
};

Range rangeOf(TypeKind kind) {
    switch (kind) {
    case TypeKind::Bit:
        return {0, 1};
    case TypeKind::TinyInt:
        return {0, std::numeric_limits<std::uint8_t>::max()};
    case TypeKind::SmallInt:
        return {std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()};
    default:
        return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
    }
}

// A column of the file and what its table can hold.
struct Target {
    std::string name; // as the file has it
    SqlType type;

    Value value(const std::string& cell, int row) const {
        if (type.isText())
            return text(cell, row);
        const std::string_view number = trimmed(cell);
        return type.isFloat() ? fraction(number, row) : whole(number, row);
    }

private:
    Value text(const std::string& cell, int row) const {
        for (std::size_t at = 0; at < cell.size();)
            if (const std::size_t before = at; nextCodePoint(cell, at) == U'\uFFFD' && at - before == 1)
                badCell(row, name, "it holds a byte that is no UTF-8. Please save the file as UTF-8.");
        const bool bounded = type.kind != TypeKind::Text && type.length != SqlType::kMax;
        if (bounded && characterCount(cell) > static_cast<std::size_t>(type.length))
            badCell(row, name, "\"" + cell + "\" is longer than " + std::to_string(type.length) + " characters.");
        return cell;
    }
    Value whole(std::string_view cell, int row) const {
        std::int64_t number = 0;
        const auto [end, problem] = std::from_chars(cell.data(), cell.data() + cell.size(), number);
        const auto [least, most] = rangeOf(type.kind);
        if (problem == std::errc::invalid_argument || end != cell.data() + cell.size())
            badCell(row, name, "\"" + std::string(cell) + "\" is no whole number.");
        if (problem != std::errc() || number < least || number > most)
            badCell(row, name, std::string(cell) + " is not between " + withThousands(least) + " and " + withThousands(most) + ".");
        return number;
    }
    Value fraction(std::string_view cell, int row) const {
        double number = 0;
        const auto [end, problem] = std::from_chars(cell.data(), cell.data() + cell.size(), number, std::chars_format::fixed);
        if (problem != std::errc() || end != cell.data() + cell.size() || !std::isfinite(number))
            badCell(row, name, "\"" + std::string(cell) + "\" is no number.");
        return number;
    }
};

std::vector<Target> targetsOf(db::Session& session, const FlatPackage& package) {
    const db::TableShape shape = session.table(package.table);
    std::vector<Target> targets;
    for (const FlatColumn& column : package.columns) {
        const auto field =
            std::find_if(shape.fields.begin(), shape.fields.end(), [&](const auto& one) { return sameText(one.name, column.table); });
        if (field == shape.fields.end())
            throw FlatError(kFlatStore, std::string("The table ") + package.table + " has no column " + column.table + ".");
        targets.push_back({column.file, field->type});
    }
    return targets;
}

// Where the package's columns stand in the file: by the heading's names, else one after the other.
std::vector<std::size_t> placesOf(const FlatPackage& package, const CsvRow* heading) {
    std::vector<std::size_t> places;
    for (const FlatColumn& column : package.columns) {
        if (heading == nullptr) {
            places.push_back(places.size());
            continue;
        }
        const auto named = std::find_if(heading->cells.begin(), heading->cells.end(),
                                        [&](const CsvCell& cell) { return sameText(trimmed(cell.text), column.file); });
        if (named == heading->cells.end())
            throw FlatError(kFlatFile, std::string("Row 1: the heading names no column ") + column.file + ".");
        places.push_back(static_cast<std::size_t>(named - heading->cells.begin()));
    }
    return places;
}

// A heading in a file that must have none would come into the store as a row.
void refuseHeading(const FlatPackage& package, const CsvRow& row) {
    if (sameText(trimmed(row.cells.front().text), package.columns.front().table))
        throw FlatError(kFlatFile,
                        "Row 1 names the columns. Please take it out: a file of " + lowerCase(package.table) + " has no heading.");
}

class RowReader {
public:
    RowReader(const FlatPackage& package, std::vector<Target> targets, std::istream& file)
        : package_(package), targets_(std::move(targets)), csv_(file) {}

    // False behind the last.
    bool next(FlatRow& row) {
        while (csv_.next(cells_)) {
            if (places_.empty() && begin())
                continue;
            if (std::all_of(cells_.cells.begin(), cells_.cells.end(), [](const CsvCell& cell) { return cell.absent; }))
                continue;
            row = taken();
            if (std::any_of(row.values.begin(), row.values.end(), [](const Value& value) { return !value.isNull(); }))
                return true;
        }
        return false;
    }

private:
    // Takes the first row; true when it was the heading.
    bool begin() {
        width_ = package_.heading ? cells_.cells.size() : package_.columns.size();
        places_ = placesOf(package_, package_.heading ? &cells_ : nullptr);
        if (!package_.heading)
            refuseHeading(package_, cells_);
        return package_.heading;
    }
    FlatRow taken() const {
        if (cells_.cells.size() != width_)
            throw FlatError(kFlatFile, "Row " + std::to_string(cells_.number) + " has " + std::to_string(cells_.cells.size()) +
                                           " cells in place of " + std::to_string(width_) + ".");
        FlatRow row{cells_.number, {}};
        for (std::size_t i = 0; i < places_.size(); ++i) {
            const CsvCell& cell = cells_.cells[places_[i]];
            const bool empty = cell.absent || (!targets_[i].type.isText() && trimmed(cell.text).empty());
            row.values.push_back(empty ? Value() : targets_[i].value(cell.text, row.number));
        }
        return row;
    }

    const FlatPackage& package_;
    std::vector<Target> targets_;
    CsvReader csv_;
    CsvRow cells_;
    std::vector<std::size_t> places_;
    std::size_t width_ = 0;
};

// The statement that appends a row, without the columns that have no value in it; and its parameters.
std::string appendStatement(const FlatPackage& package, const FlatRow& row, const std::vector<SqlType>& types,
                            std::vector<db::Parameter>& parameters) {
    std::string columns;
    std::string values;
    for (std::size_t i = 0; i < row.values.size(); ++i) {
        if (row.values[i].isNull())
            continue;
        const char* const comma = columns.empty() ? "" : ", ";
        columns += std::string(comma) + "[" + package.columns[i].table + "]";
        values += std::string(comma) + "@" + package.columns[i].table;
        parameters.push_back({package.columns[i].table, types[i], row.values[i]});
    }
    return std::string("INSERT INTO [") + package.table + "] (" + columns + ") VALUES (" + values + ")";
}

} // namespace

bool exportRows(db::Session& session, const FlatPackage& package, std::ostream& file, const FlatProgress& goOn) {
    if (package.heading) {
        std::string names;
        for (const FlatColumn& column : package.columns) {
            names += names.empty() ? "" : ",";
            appendCsvCell(names, column.file, true);
        }
        file << names << kRowEnd;
    }
    RowWriter writer(package, file, goOn);
    try {
        session.execute(package.select, writer);
    } catch (const db::DbError& error) {
        throw FlatError(kFlatStore, error.what());
    }
    return !writer.stopped;
}

bool hasColumns(const FlatPackage& package, std::istream& file) {
    try {
        CsvReader csv(file);
        CsvRow heading;
        if (package.heading && csv.next(heading))
            placesOf(package, &heading);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

std::optional<std::vector<FlatRow>> readRows(db::Session& session, const FlatPackage& package, std::istream& file,
                                             const FlatProgress& goOn) {
    RowReader reader(package, targetsOf(session, package), file);
    std::vector<FlatRow> rows;
    try {
        for (FlatRow row; reader.next(row);) {
            rows.push_back(std::move(row));
            if (rows.size() % kRowsBetweenTellings == 0 && !goOn(static_cast<int>(rows.size())))
                return std::nullopt;
        }
    } catch (const CsvError& error) {
        throw FlatError(kFlatFile, error.what());
    }
    return rows;
}

bool appendRows(db::Session& session, const FlatPackage& package, const std::vector<FlatRow>& rows, const FlatProgress& goOn) {
    std::vector<SqlType> types;
    for (const Target& target : targetsOf(session, package))
        types.push_back(target.type);
    db::NoResult none;
    std::vector<db::Parameter> parameters;
    int done = 0;
    for (const FlatRow& row : rows) {
        parameters.clear();
        const std::string statement = appendStatement(package, row, types, parameters);
        try {
            session.execute(statement, parameters, none);
        } catch (const db::DbError& error) {
            if (error.category() == db::DbError::Category::Cancelled)
                return false;
            refusedRow(row.number, error);
        }
        if (++done % kRowsBetweenTellings == 0 && !goOn(done))
            return false;
    }
    return true;
}

} // namespace merchantry::exchange
