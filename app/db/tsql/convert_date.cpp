#include "app/db/tsql/convert_to.h"

#include "app/db/tsql/datetext.h"
#include "app/db/tsql/errors.h"
#include "app/db/tsql/types.h"
#include "base/date.h"

#include <cmath>

namespace merchantry::db::tsql {
namespace {

Cell dateFromMs(std::int64_t ms, const SqlType& to) {
    const bool small = to.kind == TypeKind::SmallDateTime;
    ms = small ? roundedToMinute(ms) : roundedToTick(ms);
    if (small ? (ms < 0 || ms >= kEndOfSmallDateTime) : (ms < kFirstDateTime || ms >= kEndOfDateTime))
        throw overflow(to);
    return Cell::ofInteger(ms);
}

Cell dateFromText(std::string_view text, const SqlType& from, const SqlType& to, int style) {
    std::int64_t ms = 0;
    const DateTextResult result = readDate(text, std::max(style, 0), ms);
    if (result == DateTextResult::NoDate)
        throw serverMessage(Message::TextIsNoDate);
    const bool small = to.kind == TypeKind::SmallDateTime;
    if (result == DateTextResult::OutOfRange || ms >= kEndOfDateTime || (small && (ms < 0 || ms >= kEndOfSmallDateTime)))
        throw serverMessage(Message::DateOutOfRange, {kindNameOf(from), kindNameOf(to)});
    return dateFromMs(ms, to);
}

} // namespace

Cell toDate(const CellView& cell, const SqlType& from, const SqlType& to, int style) {
    if (from.isText())
        return dateFromText(cell.bytes, from, to, style);
    if (from.isDate()) {
        if (to.kind == TypeKind::SmallDateTime && (cell.integer < 0 || cell.integer >= kEndOfSmallDateTime))
            throw serverMessage(Message::DateOutOfRange, {"datetime", "smalldatetime"});
        return dateFromMs(cell.integer, to);
    }
    const double days = toFloat(cell, from, {TypeKind::Float, 0, 0, 0}).real;
    if (!(std::fabs(days) < 4e6))
        throw overflow(to);
    return dateFromMs(static_cast<std::int64_t>(std::llround(days * static_cast<double>(Date::kMsPerDay))), to);
}

} // namespace merchantry::db::tsql
