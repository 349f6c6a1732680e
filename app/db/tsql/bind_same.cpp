#include "app/db/tsql/binder.h"

#include "app/db/tsql/functions.h"
#include "app/db/tsql/token.h"

#include <algorithm>

namespace merchantry::db::tsql {
namespace {

bool sameText(const Expr& one, const Expr& other) {
    switch (one.kind) {
    case ExprKind::Text:
    case ExprKind::WideText:
        return one.text == other.text;
    case ExprKind::Cast: // CAST and CONVERT are one, TRY_ is another
        return (one.text.rfind("TRY_", 0) == 0) == (other.text.rfind("TRY_", 0) == 0);
    default:
        return sameName(one.text, other.text);
    }
}

bool sameNames(const ObjectName& one, const ObjectName& other) {
    return std::equal(one.parts.begin(), one.parts.end(), other.parts.begin(), other.parts.end(),
                      [](const std::string& a, const std::string& b) { return sameName(a, b); });
}

// yy and year are one part of a date.
bool samePart(const Expr& one, const Expr& other) {
    if (one.kind != ExprKind::Column || other.kind != ExprKind::Column || one.name.parts.size() != 1 || other.name.parts.size() != 1)
        return false;
    const int part = datePartOf(one.name.last());
    return part >= 0 && part == datePartOf(other.name.last());
}

bool takesPart(const Expr& expr) {
    static constexpr std::string_view kFunctions[] = {"DATEPART", "DATENAME", "DATEADD", "DATEDIFF"};
    return expr.kind == ExprKind::Function && std::any_of(std::begin(kFunctions), std::end(kFunctions),
                                                          [&](std::string_view name) { return sameName(name, expr.name.last()); });
}

} // namespace

Origin Binder::originOf(const Expr& expr) const {
    Origin origin;
    origin.expr = &expr;
    if (expr.kind == ExprKind::Column)
        origin.place = findColumn(expr.name, expr.line);
    return origin;
}

bool Binder::isSame(const Origin& one, const Origin& other) const {
    if (one.place || other.place)
        return one.place == other.place;
    return one.expr && other.expr && isSame(*one.expr, *other.expr);
}

// Whether two expressions stand for one value wherever they are asked: alike in all but the way in which names are written.
bool Binder::isSame(const Expr& one, const Expr& other) const {
    if (one.kind != other.kind || one.query || other.query || !isSame(one.window.get(), other.window.get()))
        return false;
    if (one.kind == ExprKind::Column) {
        const std::optional<ColumnPlace> place = findColumn(one.name, one.line);
        return place && place == findColumn(other.name, other.line);
    }
    if (one.negated != other.negated || one.distinct != other.distinct || one.star != other.star || one.hasElse != other.hasElse)
        return false;
    if (!sameText(one, other) || !sameNames(one.name, other.name))
        return false;
    if ((one.input == nullptr) != (other.input == nullptr) || (one.input && !isSame(*one.input, *other.input)))
        return false;
    if (one.kind == ExprKind::Cast && !(typeOfCast(one) == typeOfCast(other)))
        return false;
    const bool parted = takesPart(one) && !one.args.empty() && !other.args.empty();
    if (parted && !samePart(*one.args[0], *other.args[0]))
        return false;
    return areSame(one.args, other.args, parted ? 1 : 0);
}

bool Binder::isSame(const WindowSpec* one, const WindowSpec* other) const {
    if (!one || !other)
        return one == other;
    return one->frame == other->frame && areSame(one->partition, other->partition, 0) &&
           std::equal(one->order.begin(), one->order.end(), other->order.begin(), other->order.end(),
                      [this](const OrderItem& a, const OrderItem& b) { return a.descending == b.descending && isSame(*a.expr, *b.expr); });
}

bool Binder::areSame(const std::vector<ExprPtr>& one, const std::vector<ExprPtr>& other, std::size_t first) const {
    if (one.size() != other.size())
        return false;
    for (std::size_t i = first; i < one.size(); ++i) {
        if (!isSame(*one[i], *other[i]))
            return false;
    }
    return true;
}

} // namespace merchantry::db::tsql
