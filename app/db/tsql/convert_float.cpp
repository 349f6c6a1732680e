#include "app/db/tsql/convert_to.h"
#include "base/text.h"

#include "app/db/tsql/errors.h"
#include "base/date.h"
#include "base/decimal.h"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace merchantry::db::tsql {
namespace {

double floatFromText(std::string_view text, const SqlType& from, const SqlType& to) {
    const std::string rest(trimmed(text));
    if (rest.empty())
        return 0;
    char* end = nullptr;
    const bool plain = rest.find_first_not_of("0123456789+-.eE") == std::string::npos;
    const double number = std::strtod(rest.c_str(), &end);
    if (!plain || *end != '\0' || end == rest.c_str())
        throw textConversion(text, from, to);
    return number;
}

} // namespace

Cell toFloat(const CellView& cell, const SqlType& from, const SqlType& to) {
    double number = 0;
    if (from.isText())
        number = floatFromText(cell.bytes, from, to);
    else if (from.isFloat())
        number = cell.real;
    else if (from.isMoney())
        number = static_cast<double>(cell.integer) / 10000.0;
    else if (from.kind == TypeKind::Decimal)
        number = Decimal{digitsOf(cell), from.scale}.toDouble();
    else if (from.isDate())
        number = static_cast<double>(cell.integer) / static_cast<double>(Date::kMsPerDay);
    else
        number = static_cast<double>(cell.integer);
    if (!std::isfinite(number))
        throw overflow(to);
    if (to.kind == TypeKind::Real) {
        if (std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max()))
            throw serverMessage(Message::TypeOverflow, {"real"});
        number = static_cast<double>(static_cast<float>(number));
    }
    return Cell::ofReal(number);
}

} // namespace merchantry::db::tsql
