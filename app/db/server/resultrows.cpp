#include "app/db/server/resultrows.h"

#include "base/textorder.h"

#include <array>
#include <cstring>

namespace merchantry::db::server {
namespace {

constexpr int kLongestShort = 8000;      // characters of a cell that is read with its row
constexpr std::size_t kBytesPerChar = 4; // of UTF-8
constexpr std::size_t kNumberText = 48;  // digits, sign and point of a decimal
constexpr std::size_t kGuidText = 40;
constexpr std::size_t kChunk = 1U << 16U; // of a long cell
constexpr std::size_t kAlignment = 8;
constexpr unsigned kNanosPerMs = 1'000'000;

struct Named {
    std::string_view name;
    TypeKind kind;
};
constexpr Named kTypeNames[] = {
    {"bit", TypeKind::Bit},
    {"tinyint", TypeKind::TinyInt},
    {"smallint", TypeKind::SmallInt},
    {"int", TypeKind::Int},
    {"bigint", TypeKind::BigInt},
    {"decimal", TypeKind::Decimal},
    {"numeric", TypeKind::Decimal},
    {"smallmoney", TypeKind::SmallMoney},
    {"money", TypeKind::Money},
    {"real", TypeKind::Real},
    {"float", TypeKind::Float},
    {"smalldatetime", TypeKind::SmallDateTime},
    {"datetime", TypeKind::DateTime},
    {"datetime2", TypeKind::DateTime},
    {"date", TypeKind::DateTime},
    {"char", TypeKind::Char},
    {"varchar", TypeKind::VarChar},
    {"nchar", TypeKind::NChar},
    {"nvarchar", TypeKind::NVarChar},
    {"text", TypeKind::Text},
    {"ntext", TypeKind::NText},
    {"binary", TypeKind::Binary},
    {"varbinary", TypeKind::VarBinary},
    {"image", TypeKind::Image},
    {"uniqueidentifier", TypeKind::UniqueIdentifier},
};

// By the number of the type, where its name says nothing.
TypeKind kindOfNumber(SQLLEN number) {
    switch (number) {
    case SQL_BIT:
        return TypeKind::Bit;
    case SQL_TINYINT:
        return TypeKind::TinyInt;
    case SQL_SMALLINT:
        return TypeKind::SmallInt;
    case SQL_INTEGER:
        return TypeKind::Int;
    case SQL_BIGINT:
        return TypeKind::BigInt;
    case SQL_DECIMAL:
    case SQL_NUMERIC:
        return TypeKind::Decimal;
    case SQL_REAL:
        return TypeKind::Real;
    case SQL_FLOAT:
    case SQL_DOUBLE:
        return TypeKind::Float;
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
        return TypeKind::DateTime;
    case SQL_CHAR:
        return TypeKind::Char;
    case SQL_WCHAR:
        return TypeKind::NChar;
    case SQL_WVARCHAR:
        return TypeKind::NVarChar;
    case SQL_LONGVARCHAR:
        return TypeKind::Text;
    case SQL_WLONGVARCHAR:
        return TypeKind::NText;
    case SQL_BINARY:
        return TypeKind::Binary;
    case SQL_VARBINARY:
        return TypeKind::VarBinary;
    case SQL_LONGVARBINARY:
        return TypeKind::Image;
    case SQL_GUID:
        return TypeKind::UniqueIdentifier;
    default:
        return TypeKind::VarChar;
    }
}

SQLLEN numberAttribute(SQLHANDLE statement, SQLUSMALLINT column, SQLUSMALLINT attribute) {
    SQLLEN number = 0;
    SQLColAttribute(statement, column, attribute, nullptr, 0, nullptr, &number);
    return number;
}

std::string textAttribute(SQLHANDLE statement, SQLUSMALLINT column, SQLUSMALLINT attribute) {
    std::array<char, 520> text{};
    SQLColAttribute(statement, column, attribute, text.data(), static_cast<SQLSMALLINT>(text.size()), nullptr, nullptr);
    return text.data();
}

SqlType typeAt(SQLHANDLE statement, SQLUSMALLINT column) {
    SqlType type;
    type.kind = kindOfNumber(numberAttribute(statement, column, SQL_DESC_CONCISE_TYPE));
    const std::string name = textAttribute(statement, column, SQL_DESC_TYPE_NAME);
    for (const Named& named : kTypeNames)
        if (sameText(named.name, name))
            type.kind = named.kind;
    if (type.isText() || type.isBinary()) {
        const bool large = type.kind == TypeKind::Text || type.kind == TypeKind::NText || type.kind == TypeKind::Image;
        const SQLLEN length = numberAttribute(statement, column, SQL_DESC_LENGTH);
        if (!large)
            type.length = length <= 0 || length > kLongestShort ? SqlType::kMax : static_cast<int>(length);
    }
    if (type.kind == TypeKind::Decimal) {
        type.precision = static_cast<int>(numberAttribute(statement, column, SQL_DESC_PRECISION));
        type.scale = static_cast<int>(numberAttribute(statement, column, SQL_DESC_SCALE));
    }
    return type;
}

// As what the driver gives a cell of a type, and how many bytes that takes; none for a long one.
std::pair<SQLSMALLINT, std::size_t> reading(const SqlType& type) {
    if (type.isWhole())
        return {SQL_C_SBIGINT, sizeof(std::int64_t)};
    if (type.isFloat())
        return {SQL_C_DOUBLE, sizeof(double)};
    if (type.isDate())
        return {SQL_C_TYPE_TIMESTAMP, sizeof(SQL_TIMESTAMP_STRUCT)};
    if (type.isMoney() || type.kind == TypeKind::Decimal)
        return {SQL_C_CHAR, kNumberText};
    if (type.kind == TypeKind::UniqueIdentifier)
        return {SQL_C_CHAR, kGuidText};
    const auto length = static_cast<std::size_t>(std::max(0, type.length));
    if (type.isBinary())
        return {SQL_C_BINARY, length};
    return {SQL_C_CHAR, length == 0 ? 0 : length * kBytesPerChar + 1};
}

} // namespace

std::vector<Column> columnsOf(SQLHANDLE statement) {
    SQLSMALLINT count = 0;
    SQLNumResultCols(statement, &count);
    std::vector<Column> columns(static_cast<std::size_t>(std::max<SQLSMALLINT>(0, count)));
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const auto place = static_cast<SQLUSMALLINT>(i + 1);
        columns[i].name = textAttribute(statement, place, SQL_DESC_NAME);
        columns[i].type = typeAt(statement, place);
        columns[i].nullable = numberAttribute(statement, place, SQL_DESC_NULLABLE) != SQL_NO_NULLS;
        columns[i].identity = numberAttribute(statement, place, SQL_DESC_AUTO_UNIQUE_VALUE) == SQL_TRUE;
    }
    return columns;
}

ResultRows::ResultRows(SQLHANDLE statement, const std::vector<Column>& columns) : statement_(statement), cells_(columns.size()) {
    std::size_t size = 0;
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        CellPlace& cell = cells_[i];
        cell.type = columns[i].type;
        std::tie(cell.read, cell.room) = reading(cell.type);
        cell.at = size;
        size += (cell.room + kAlignment - 1) / kAlignment * kAlignment;
        hasLong_ = hasLong_ || cell.room == 0;
    }
    buffer_.resize(size);
    for (std::size_t i = 0; i < cells_.size(); ++i)
        if (CellPlace& cell = cells_[i]; cell.room > 0)
            SQLBindCol(statement_, static_cast<SQLUSMALLINT>(i + 1), cell.read, buffer_.data() + cell.at, static_cast<SQLLEN>(cell.room),
                       &cell.length);
}

ResultRows::~ResultRows() {
    SQLFreeStmt(statement_, SQL_UNBIND);
}

SQLRETURN ResultRows::next() {
    const SQLRETURN got = SQLFetch(statement_);
    if (!SQL_SUCCEEDED(got) || !hasLong_)
        return got;
    for (std::size_t i = 0; i < cells_.size(); ++i)
        if (cells_[i].room == 0)
            if (const SQLRETURN read = readLong(static_cast<SQLUSMALLINT>(i + 1), cells_[i]); !SQL_SUCCEEDED(read))
                return read;
    return got;
}

SQLRETURN ResultRows::readLong(SQLUSMALLINT column, CellPlace& cell) {
    cell.text.clear();
    const std::size_t end = cell.read == SQL_C_CHAR ? 1 : 0; // the driver closes each piece of text with a zero
    std::vector<char> piece(kChunk);
    while (true) {
        SQLLEN left = 0;
        const SQLRETURN got = SQLGetData(statement_, column, cell.read, piece.data(), static_cast<SQLLEN>(piece.size()), &left);
        if (got == SQL_NO_DATA)
            break;
        if (!SQL_SUCCEEDED(got))
            return got;
        if (left == SQL_NULL_DATA) {
            cell.length = SQL_NULL_DATA;
            return SQL_SUCCESS;
        }
        const bool whole = got == SQL_SUCCESS;
        cell.text.append(piece.data(), whole ? static_cast<std::size_t>(left) : piece.size() - end);
        if (whole)
            break;
    }
    cell.length = static_cast<SQLLEN>(cell.text.size());
    return SQL_SUCCESS;
}

std::string_view ResultRows::bytes(const CellPlace& cell) const {
    if (cell.room == 0)
        return cell.text;
    return {buffer_.data() + cell.at, std::min(cell.room, static_cast<std::size_t>(std::max<SQLLEN>(0, cell.length)))};
}

template <class T> T ResultRows::held(const CellPlace& cell) const {
    T value;
    std::memcpy(&value, buffer_.data() + cell.at, sizeof value);
    return value;
}

Value ResultRows::numberValue(const CellPlace& cell) const {
    const auto number = held<std::int64_t>(cell);
    return cell.type.kind == TypeKind::Bit ? Value(number != 0) : Value(number);
}

Value ResultRows::value(int column) const {
    const CellPlace& cell = cellAt(column);
    if (cell.length == SQL_NULL_DATA)
        return {};
    if (cell.type.isWhole())
        return numberValue(cell);
    if (cell.type.isFloat())
        return held<double>(cell);
    if (cell.type.isDate())
        return dateOf(held<SQL_TIMESTAMP_STRUCT>(cell));
    if (cell.type.isMoney())
        return Currency::fromText(bytes(cell));
    if (cell.type.kind == TypeKind::Decimal)
        return Decimal::fromText(bytes(cell)).value_or(Decimal());
    const std::string_view all = bytes(cell);
    if (cell.type.isBinary())
        return Bytes(all.begin(), all.end());
    return all;
}

std::string_view ResultRows::text(int column) const {
    return bytes(cellAt(column));
}

std::int64_t ResultRows::number(int column) const {
    const CellPlace& cell = cellAt(column);
    if (cell.type.isMoney())
        return Currency::fromText(bytes(cell)).units();
    if (cell.type.isDate())
        return dateOf(held<SQL_TIMESTAMP_STRUCT>(cell)).ms();
    return held<std::int64_t>(cell);
}

Date dateOf(const SQL_TIMESTAMP_STRUCT& time) {
    const Date whole = Date::fromParts(time.year, time.month, time.day, time.hour, time.minute, time.second).value_or(Date());
    return Date::fromMs(whole.ms() + (time.fraction + kNanosPerMs / 2) / kNanosPerMs);
}

SQL_TIMESTAMP_STRUCT timestampOf(Date date) {
    SQL_TIMESTAMP_STRUCT time{};
    time.year = static_cast<SQLSMALLINT>(date.year());
    time.month = static_cast<SQLUSMALLINT>(date.month());
    time.day = static_cast<SQLUSMALLINT>(date.day());
    time.hour = static_cast<SQLUSMALLINT>(date.hour());
    time.minute = static_cast<SQLUSMALLINT>(date.minute());
    time.second = static_cast<SQLUSMALLINT>(date.second());
    time.fraction = static_cast<SQLUINTEGER>(date.millisecond()) * kNanosPerMs;
    return time;
}

} // namespace merchantry::db::server
