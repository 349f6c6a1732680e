#include "app/db/ado/sort.h"

#include "base/lettercase.h"
#include "base/text.h"
#include "base/textorder.h"

namespace merchantry::db {

std::vector<SortField> parseSort(std::string_view text, const RowStore& store) {
    std::vector<SortField> fields;
    if (trimmed(text).empty())
        return fields;
    for (const std::string& piece : split(text, ",")) {
        std::string_view name = trimmed(piece);
        const std::string folded = lowerCase(name);
        SortField field;
        field.descending = folded.ends_with(" desc");
        if (field.descending || folded.ends_with(" asc"))
            name = trimmed(name.substr(0, name.rfind(' ')));
        if (name.size() > 1 && name.front() == '[' && name.back() == ']')
            name = name.substr(1, name.size() - 2);
        field.column = store.columnOf(name);
        if (field.column < 0)
            throw DbError(DbError::Category::Other, 3001, "There is no column \"" + std::string(name) + "\" to sort by.")
                .withHresult(kInvalidArgument);
        fields.push_back(field);
    }
    return fields;
}

int compareCells(const RowStore& store, int left, int right, int column) {
    const bool leftNull = store.isNull(left, column);
    const bool rightNull = store.isNull(right, column);
    if (leftNull || rightNull)
        return static_cast<int>(rightNull) - static_cast<int>(leftNull);
    const auto order = [](const auto& a, const auto& b) { return a < b ? -1 : (b < a ? 1 : 0); };
    const SqlType& type = store.columns()[static_cast<std::size_t>(column)].type;
    if (type.isText())
        return compareText(store.text(left, column), store.text(right, column));
    if (type.isWhole() || type.isMoney() || type.isDate())
        return order(store.number(left, column), store.number(right, column));
    const Value a = store.value(left, column);
    const Value b = store.value(right, column);
    if (a.is<Decimal>() && b.is<Decimal>())
        return order(a.as<Decimal>(), b.as<Decimal>());
    if (a.is<Bytes>() && b.is<Bytes>())
        return order(a.as<Bytes>(), b.as<Bytes>());
    if (a.is<std::string>() && b.is<std::string>())
        return compareText(a.as<std::string>(), b.as<std::string>());
    return order(a.toNumber(), b.toNumber());
}

} // namespace merchantry::db
