#include "app/db/tsql/convert_to.h"

#include "app/db/tsql/errors.h"
#include "app/db/tsql/types.h"

namespace merchantry::db::tsql {

DbError overflow(const SqlType& type) {
    return serverMessage(Message::ArithmeticOverflow, {"expression", kindNameOf(type)});
}

Cell converted(const CellView& cell, const SqlType& from, const SqlType& to, ConvertFor purpose, int style) {
    if (cell.isNull())
        return {};
    if (to.isWhole())
        return toWhole(cell, from, to);
    if (to.kind == TypeKind::Decimal)
        return toDecimal(cell, from, to);
    if (to.isMoney())
        return toMoney(cell, from, to);
    if (to.isFloat())
        return toFloat(cell, from, to);
    if (to.isDate())
        return toDate(cell, from, to, style);
    if (to.isText())
        return toText(cell, from, to, purpose, style);
    if (to.isBinary())
        return toBinary(cell, from, to, purpose);
    if (to.kind == TypeKind::UniqueIdentifier)
        return toUniqueIdentifier(cell);
    return cell.copy();
}

bool sameCells(const SqlType& from, const SqlType& to) {
    if (from == to || to.kind == TypeKind::Null || from.kind == TypeKind::Null)
        return true;
    const auto fits = [&] { return to.length == SqlType::kMax || (from.length != SqlType::kMax && from.length <= to.length); };
    if (from.isText() && to.isText()) {
        if (to.kind == TypeKind::Text || to.kind == TypeKind::NText)
            return true;
        if (from.kind == TypeKind::Text || from.kind == TypeKind::NText)
            return to.length == SqlType::kMax && to.kind != TypeKind::Char && to.kind != TypeKind::NChar;
        const bool toFixed = to.kind == TypeKind::Char || to.kind == TypeKind::NChar;
        const bool fromFixed = from.kind == TypeKind::Char || from.kind == TypeKind::NChar;
        return toFixed ? fromFixed && from.length == to.length : fits();
    }
    if (from.isBinary() && to.isBinary())
        return to.kind != TypeKind::Binary && (to.kind == TypeKind::Image || fits());
    if (from.isWhole() && to.isWhole())
        return from.kind <= to.kind && to.kind != TypeKind::Bit;
    if (from.isMoney() && to.isMoney())
        return to.kind == TypeKind::Money;
    if (from.isDate() && to.isDate())
        return to.kind == TypeKind::DateTime;
    if (from.isFloat() && to.isFloat())
        return to.kind == TypeKind::Float;
    if (from.kind == TypeKind::Decimal && to.kind == TypeKind::Decimal)
        return from.scale == to.scale && from.precision <= to.precision && (from.precision > 18) == (to.precision > 18);
    return false;
}

} // namespace merchantry::db::tsql
