#include "app/db/server/boundparameters.h"

#include "app/db/server/resultrows.h"
#include "app/db/tsql/cell.h"
#include "base/characters.h"

#include <algorithm>
#include <cstring>

namespace merchantry::db::server {
namespace {

constexpr int kLongestVarChar = 8000;
constexpr int kLongestNVarChar = 4000;
constexpr std::size_t kLongestOutput = 8000 * 4 + 1;
constexpr SQLSMALLINT kMoneyScale = 4;
constexpr SQLULEN kMoneyPrecision = 19;
constexpr SQLULEN kSmallMoneyPrecision = 10;
constexpr SQLULEN kTimestampPrecision = 23;
constexpr SQLSMALLINT kTimestampScale = 3;
constexpr SQLULEN kFloatPrecision = 53;

bool isPlain(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; });
}

// How a type is told to the driver.
struct Told {
    SQLSMALLINT type;
    SQLULEN size;
    SQLSMALLINT scale;
    SQLSMALLINT written;
};

Told toldText(const SqlType& type) {
    const bool national = type.kind == TypeKind::NChar || type.kind == TypeKind::NVarChar || type.kind == TypeKind::NText;
    const int longest = national ? kLongestNVarChar : kLongestVarChar;
    if (type.kind == TypeKind::Text || type.kind == TypeKind::NText || type.length == SqlType::kMax || type.length > longest)
        return {static_cast<SQLSMALLINT>(national ? SQL_WLONGVARCHAR : SQL_LONGVARCHAR), SQLULEN{0x3FFFFFFF}, 0, SQL_C_CHAR};
    return {static_cast<SQLSMALLINT>(national ? SQL_WVARCHAR : SQL_VARCHAR), static_cast<SQLULEN>(std::max(1, type.length)), 0, SQL_C_CHAR};
}

Told told(const SqlType& type) {
    switch (type.kind) {
    case TypeKind::Bit:
        return {SQL_BIT, 1, 0, SQL_C_BIT};
    case TypeKind::TinyInt:
        return {SQL_TINYINT, 3, 0, SQL_C_SBIGINT};
    case TypeKind::SmallInt:
        return {SQL_SMALLINT, 5, 0, SQL_C_SBIGINT};
    case TypeKind::Int:
        return {SQL_INTEGER, 10, 0, SQL_C_SBIGINT};
    case TypeKind::BigInt:
        return {SQL_BIGINT, 19, 0, SQL_C_SBIGINT};
    case TypeKind::Money:
        return {SQL_DECIMAL, kMoneyPrecision, kMoneyScale, SQL_C_CHAR};
    case TypeKind::SmallMoney:
        return {SQL_DECIMAL, kSmallMoneyPrecision, kMoneyScale, SQL_C_CHAR};
    case TypeKind::Decimal:
        return {SQL_DECIMAL, static_cast<SQLULEN>(type.precision), static_cast<SQLSMALLINT>(type.scale), SQL_C_CHAR};
    case TypeKind::Real:
    case TypeKind::Float:
        return {SQL_DOUBLE, kFloatPrecision, 0, SQL_C_DOUBLE};
    case TypeKind::SmallDateTime:
    case TypeKind::DateTime:
        return {SQL_TYPE_TIMESTAMP, kTimestampPrecision, kTimestampScale, SQL_C_TYPE_TIMESTAMP};
    case TypeKind::Binary:
    case TypeKind::VarBinary:
        if (type.length != SqlType::kMax)
            return {SQL_VARBINARY, static_cast<SQLULEN>(std::max(1, type.length)), 0, SQL_C_BINARY};
        return {SQL_LONGVARBINARY, SQLULEN{0x7FFFFFFF}, 0, SQL_C_BINARY};
    case TypeKind::Image:
        return {SQL_LONGVARBINARY, SQLULEN{0x7FFFFFFF}, 0, SQL_C_BINARY};
    case TypeKind::Null:
    case TypeKind::UniqueIdentifier:
        return {SQL_VARCHAR, 40, 0, SQL_C_CHAR};
    default:
        return toldText(type);
    }
}

template <class T> void putPlain(std::vector<char>& bytes, const T& value) {
    bytes.resize(std::max(bytes.size(), sizeof value));
    std::memcpy(bytes.data(), &value, sizeof value);
}

template <class T> T plain(const std::vector<char>& bytes) {
    T value{};
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

// A number as text for the driver, exactly.
std::string exactText(const Value& value) {
    if (value.is<Currency>())
        return value.as<Currency>().toFixedText();
    if (value.is<Decimal>())
        return value.as<Decimal>().toText();
    return value.toText();
}

} // namespace

SqlType sentType(const Parameter& parameter) {
    SqlType type = parameter.type.kind == TypeKind::Null ? tsql::typeOf(parameter.value) : parameter.type;
    if (!type.isText() || parameter.output)
        return type;
    const std::string_view text = parameter.value.is<std::string>() ? std::string_view(parameter.value.as<std::string>()) : "";
    const bool large = type.kind == TypeKind::Text || type.kind == TypeKind::NText || type.length == SqlType::kMax;
    const bool plain = isPlain(text);
    if (large) {
        type.kind = plain ? TypeKind::VarChar : TypeKind::NVarChar;
        type.length = SqlType::kMax;
    } else if (plain && type.kind == TypeKind::NVarChar)
        type.kind = TypeKind::VarChar;
    else if (plain && type.kind == TypeKind::NChar)
        type.kind = TypeKind::Char;
    else if (!plain && (type.kind == TypeKind::VarChar || type.kind == TypeKind::Char))
        type.kind = TypeKind::NVarChar;
    if (const int longest = type.kind == TypeKind::NVarChar || type.kind == TypeKind::NChar ? kLongestNVarChar : kLongestVarChar;
        type.length > longest)
        type.length = SqlType::kMax;
    return type;
}

BoundParameters::~BoundParameters() {
    SQLFreeStmt(statement_, SQL_RESET_PARAMS);
}

BoundParameters::Place& BoundParameters::newPlace(const SqlType& type) {
    places_.push_back(std::make_unique<Place>());
    places_.back()->type = type;
    places_.back()->written = told(type).written;
    return *places_.back();
}

void BoundParameters::addText(std::string text) {
    const auto count = static_cast<int>(std::max<std::size_t>(1, characterCount(text)));
    Place& place = newPlace({TypeKind::NVarChar, count > kLongestNVarChar ? SqlType::kMax : count, 0, 0});
    put(place, Value(std::move(text)));
    bind(place, false);
}

void BoundParameters::add(const std::string& name, const Parameter& parameter) {
    Place& place = newPlace(sentType(parameter));
    put(place, parameter.value);
    if (parameter.output)
        place.bytes.resize(std::max(place.bytes.size(), kLongestOutput));
    bind(place, parameter.output);
    if (name.empty())
        return;
    SQLHANDLE descriptor = SQL_NULL_HANDLE;
    SQLGetStmtAttr(statement_, SQL_ATTR_IMP_PARAM_DESC, &descriptor, 0, nullptr);
    SQLSetDescField(descriptor, static_cast<SQLSMALLINT>(places_.size()), SQL_DESC_NAME, const_cast<char*>(name.c_str()), SQL_NTS);
}

void BoundParameters::put(Place& place, const Value& value) {
    if (value.isNull()) {
        place.length = SQL_NULL_DATA;
        return;
    }
    switch (place.written) {
    case SQL_C_BIT:
        putPlain(place.bytes, static_cast<unsigned char>(value.toFlag() ? 1 : 0));
        return;
    case SQL_C_SBIGINT:
        putPlain(place.bytes, value.toInteger());
        return;
    case SQL_C_DOUBLE:
        putPlain(place.bytes, value.toNumber());
        return;
    case SQL_C_TYPE_TIMESTAMP: {
        const Date date = value.is<Date>() ? value.as<Date>() : Date::fromText(value.toText()).value_or(Date());
        putPlain(place.bytes, timestampOf(date));
        return;
    }
    case SQL_C_BINARY:
        if (value.is<Bytes>())
            place.bytes.assign(value.as<Bytes>().begin(), value.as<Bytes>().end());
        break;
    default:
        const std::string text = exactText(value);
        place.bytes.assign(text.begin(), text.end());
        break;
    }
    place.length = static_cast<SQLLEN>(place.bytes.size());
}

void BoundParameters::bind(Place& place, bool output) {
    if (place.bytes.empty())
        place.bytes.resize(1); // the driver wants an address also for nothing
    const Told how = told(place.type);
    const SQLRETURN bound = SQLBindParameter(statement_, static_cast<SQLUSMALLINT>(places_.size()),
                                             output ? SQL_PARAM_INPUT_OUTPUT : SQL_PARAM_INPUT, place.written, how.type, how.size,
                                             how.scale, place.bytes.data(), static_cast<SQLLEN>(place.bytes.size()), &place.length);
    if (!SQL_SUCCEEDED(bound))
        throw DbError(DbError::Category::Type, 0, "The driver takes no parameter of the type " + place.type.toText() + ".");
}

void BoundParameters::readBack(std::size_t first, std::vector<Parameter>& parameters) const {
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (!parameters[i].output)
            continue;
        const Place& place = *places_[first + i];
        const std::string_view text(place.bytes.data(), static_cast<std::size_t>(std::max<SQLLEN>(0, place.length)));
        Value& value = parameters[i].value;
        if (place.length == SQL_NULL_DATA)
            value = Value();
        else if (place.written == SQL_C_BIT)
            value = Value(place.bytes[0] != 0);
        else if (place.written == SQL_C_SBIGINT)
            value = Value(plain<std::int64_t>(place.bytes));
        else if (place.written == SQL_C_DOUBLE)
            value = Value(plain<double>(place.bytes));
        else if (place.written == SQL_C_TYPE_TIMESTAMP)
            value = Value(dateOf(plain<SQL_TIMESTAMP_STRUCT>(place.bytes)));
        else if (place.type.isMoney())
            value = Value(Currency::fromText(text));
        else if (place.type.kind == TypeKind::Decimal)
            value = Value(Decimal::fromText(text).value_or(Decimal()));
        else if (place.type.isBinary())
            value = Value(Bytes(text.begin(), text.end()));
        else
            value = Value(text);
    }
}

} // namespace merchantry::db::server
