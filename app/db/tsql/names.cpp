#include "app/db/tsql/bound.h"

#include "app/db/tsql/errors.h"
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

template <class F> void eachColumnNamed(const Source& source, const std::string& name, F&& call) {
    if (source.table) {
        if (const int column = source.table->find(name); column >= 0)
            call(static_cast<std::size_t>(column));
        return;
    }
    for (std::size_t i = 0; i < source.columns.size(); ++i) {
        if (sameName(source.columns[i].name, name))
            call(i);
    }
}

bool qualifierFits(const Source& source, const ObjectName& name) {
    const std::string& qualifier = name.parts[name.parts.size() - 2];
    if (!sameName(source.exposed, qualifier))
        return false;
    if (name.parts.size() == 2)
        return true;
    // An alias has no owner; a table without alias may be named with its owner.
    return !source.name.empty();
}

bool sameType(const TypeName& one, const TypeName& other) {
    const std::optional<SqlType> type = builtInType(one, true);
    return type ? type == builtInType(other, true) : sameName(one.name, other.name);
}

bool areSame(const Scope* scope, const std::vector<ExprPtr>& one, const std::vector<ExprPtr>& other, std::size_t first = 0) {
    if (one.size() != other.size())
        return false;
    for (std::size_t i = first; i < one.size(); ++i) {
        if (!isSame(scope, *one[i], *other[i]))
            return false;
    }
    return true;
}

bool isSame(const Scope* scope, const WindowSpec* one, const WindowSpec* other) {
    if (!one || !other)
        return one == other;
    return one->frame == other->frame && areSame(scope, one->partition, other->partition) &&
           std::equal(
               one->order.begin(), one->order.end(), other->order.begin(), other->order.end(),
               [scope](const OrderItem& a, const OrderItem& b) { return a.descending == b.descending && isSame(scope, *a.expr, *b.expr); });
}

} // namespace

std::optional<ColumnPlace> findColumn(const Scope* innermost, const ObjectName& name, int line, bool* qualifierKnown) {
    const bool qualified = name.parts.size() > 1;
    for (const Scope* scope = innermost; scope; scope = scope->outer) {
        std::optional<ColumnPlace> found;
        bool fits = false;
        for (std::size_t i = 0; i < scope->sources.size(); ++i) {
            const Source& source = scope->sources[i];
            if (qualified && !qualifierFits(source, name))
                continue;
            fits = true;
            eachColumnNamed(source, name.last(), [&](std::size_t column) {
                if (found)
                    throw serverMessage(Message::AmbiguousColumn, {name.last()}, line);
                found = ColumnPlace{scope, i, column};
            });
        }
        if (found)
            return found;
        if (qualified && fits) {
            if (qualifierKnown)
                *qualifierKnown = true;
            return std::nullopt;
        }
    }
    return std::nullopt;
}

Origin originOf(const Scope* scope, const Expr& expr) {
    Origin origin;
    origin.expr = &expr;
    if (expr.kind == ExprKind::Column)
        origin.place = findColumn(scope, expr.name, expr.line);
    return origin;
}

bool isSame(const Scope* scope, const Origin& one, const Origin& other) {
    if (one.place || other.place)
        return one.place == other.place;
    return one.expr && other.expr && isSame(scope, *one.expr, *other.expr);
}

bool isSame(const Scope* scope, const Expr& one, const Expr& other) {
    if (one.kind != other.kind || one.query || other.query || !isSame(scope, one.window.get(), other.window.get()))
        return false;
    if (one.kind == ExprKind::Column) {
        const std::optional<ColumnPlace> place = findColumn(scope, one.name, one.line);
        return place && place == findColumn(scope, other.name, other.line);
    }
    if (one.negated != other.negated || one.distinct != other.distinct || one.star != other.star || one.hasElse != other.hasElse)
        return false;
    if (!sameText(one, other) || !sameNames(one.name, other.name))
        return false;
    if ((one.input == nullptr) != (other.input == nullptr) || (one.input && !isSame(scope, *one.input, *other.input)))
        return false;
    if (one.kind == ExprKind::Cast && !sameType(one.type, other.type))
        return false;
    const bool parted = takesPart(one) && !one.args.empty() && !other.args.empty();
    if (parted && !samePart(*one.args[0], *other.args[0]))
        return false;
    return areSame(scope, one.args, other.args, parted ? 1 : 0);
}

} // namespace merchantry::db::tsql
