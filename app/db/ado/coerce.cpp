#include "app/db/ado/coerce.h"

#include "app/db/dberror.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/textorder.h"

namespace merchantry::db {
namespace {

[[noreturn]] void mismatch(const Value& value, const SqlType& type) {
    throw DbError(DbError::Category::Type, 0, "Type mismatch: \"" + value.toText() + "\" is no value of type " + type.toText() + ".")
        .withHresult(kTypeMismatch);
}

double numberFor(const Value& value, const SqlType& type) {
    if (!value.is<std::string>())
        return value.toNumber();
    const auto number = numberOf(value.as<std::string>());
    if (!number)
        mismatch(value, type);
    return *number;
}

Value moneyFor(const Value& value, const SqlType& type) {
    if (!value.is<std::string>())
        return value.toCurrency();
    const auto amount = amountOf(value.as<std::string>());
    if (!amount)
        mismatch(value, type);
    return *amount;
}

Value flagFor(const Value& value, const SqlType& type) {
    if (value.is<std::string>() && (sameText(value.as<std::string>(), "True") || sameText(value.as<std::string>(), "False")))
        return value.toFlag();
    return numberFor(value, type) != 0;
}

Value decimalFor(const Value& value, const SqlType& type) {
    if (value.is<Decimal>())
        return value;
    const auto number =
        Decimal::fromText(value.is<std::string>() ? std::string(trimmed(value.as<std::string>())) : shortestDecimal(value.toNumber()));
    if (!number)
        mismatch(value, type);
    return *number;
}

Value dateFor(const Value& value, const SqlType& type) {
    if (value.is<Date>())
        return value;
    const auto date = value.is<std::string>() ? Date::fromText(value.as<std::string>()) : std::nullopt;
    if (!date)
        mismatch(value, type);
    return *date;
}

} // namespace

Value coerced(const Value& value, const SqlType& type) {
    if (value.isNull())
        return value;
    try {
        if (type.isText() || type.kind == TypeKind::UniqueIdentifier)
            return value.toText();
        if (type.kind == TypeKind::Bit)
            return flagFor(value, type);
        if (type.isWhole())
            return Value(numberFor(value, type)).toInteger();
        if (type.isMoney())
            return moneyFor(value, type);
        if (type.isFloat())
            return numberFor(value, type);
        if (type.isDate())
            return dateFor(value, type);
        if (type.kind == TypeKind::Decimal)
            return decimalFor(value, type);
        return value;
    } catch (const OverflowError&) {
        mismatch(value, type);
    } catch (const std::invalid_argument&) {
        mismatch(value, type);
    }
}

} // namespace merchantry::db
