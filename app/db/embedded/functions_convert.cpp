#include "app/db/embedded/functions.h"

#include "app/db/messages.h"
#include "app/db/tsql/convert.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/types.h"

#include <array>
#include <cmath>

namespace merchantry::db::embedded {
namespace {

using tsql::ConvertFor;

int styleOf(const Call& call) {
    return call.count > 3 && !call.isNull(3) ? static_cast<int>(call.integer(3)) : -1;
}

// (value, from, to, optional style): the conversion of CAST, variables and comparisons.
void convert(const Call& call) {
    if (call.isNull(0))
        return call.giveNull();
    call.give(tsql::converted(call.cell(0), tsql::typeOfCode(call.integer(1)), tsql::typeOfCode(call.integer(2)), ConvertFor::Value,
                              styleOf(call)));
}

// The same for a value that a column takes.
void store(const Call& call) {
    if (call.isNull(0))
        return call.giveNull();
    call.give(tsql::converted(call.cell(0), tsql::typeOfCode(call.integer(1)), tsql::typeOfCode(call.integer(2)), ConvertFor::Column));
}

// A whole decimal as a number that SQLite compares with integers: what no integer holds is beyond all of them.
void whole(const Call& call) {
    const __int128 digits = tsql::digitsOf(call.cell(0));
    const auto number = static_cast<std::int64_t>(digits);
    if (number == digits)
        call.give(number);
    else
        call.give(static_cast<double>(digits));
}

// Null where the conversion fails.
void tryConvert(const Call& call) {
    if (call.isNull(0))
        return call.giveNull();
    try {
        call.give(tsql::converted(call.cell(0), tsql::typeOfCode(call.integer(1)), tsql::typeOfCode(call.integer(2)), ConvertFor::Value,
                                  styleOf(call)));
    } catch (const DbError&) {
        call.giveNull();
    }
}

void joinBytes(const Call& call) {
    call.give(Cell::ofBlob(std::string(call.cell(0).bytes) + std::string(call.cell(1).bytes)));
}

// Gives its last argument; the others are there for what they do.
void last(const Call& call) {
    sqlite3_result_value(call.context, call.values[call.count - 1]);
}

// The number of TOP, OFFSET or FETCH. (number, the least one, the message for a lesser one)
void top(const Call& call) {
    if (call.isNull(0))
        throw serverMessage(Message::NullTop);
    if (call.integer(0) < call.integer(1))
        throw serverMessage(static_cast<Message>(call.integer(2)));
    call.give(call.integer(0));
}

// So many of a hundred rows, rounded up. (rows, percent)
void percent(const Call& call) {
    const double share = call.isNull(1) ? 0 : call.real(1);
    if (call.isNull(1) || share < 0 || share > 100)
        throw call.isNull(1) ? serverMessage(Message::NullTop) : serverMessage(Message::PercentOutOfRange);
    call.give(static_cast<std::int64_t>(std::ceil(static_cast<double>(call.integer(0)) * share / 100)));
}

// How deep a recursive common table expression is. (level, most)
void level(const Call& call) {
    const std::int64_t next = call.integer(0) + 1;
    const std::int64_t most = call.integer(1);
    if (most > 0 && next > most)
        throw serverMessage(Message::RecursionExhausted, {std::to_string(most)}).withSeverity(16, 1);
    call.give(next);
}

void newId(const Call& call) {
    std::array<unsigned char, 16> bytes{};
    sqlite3_randomness(static_cast<int>(bytes.size()), bytes.data());
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0FU) | 0x40U);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3FU) | 0x80U);
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            text += '-';
        text += kDigits[bytes[i] >> 4U];
        text += kDigits[bytes[i] & 15U];
    }
    call.giveText(text);
}

} // namespace

void registerConvertFunctions(sqlite3* db, FunctionHost& host) {
    static constexpr auto kEntries = std::to_array<FunctionEntry>({
        {"ts_cv", -1, convert, true, false},
        {"ts_st", 3, store, true, false},
        {"ts_whole", 1, whole},
        {"ts_try", 4, tryConvert, true, false},
        {"ts_bytes", 2, joinBytes},
        {"ts_last", -1, last, false, false},
        {"ts_top", 3, top, true, false},
        {"ts_percent", 2, percent, true, false},
        {"ts_level", 2, level},
        {"ts_newid", 0, newId, false},
    });
    registerEntries(db, host, kEntries.data(), kEntries.size());
}

} // namespace merchantry::db::embedded
