#include "exchange/import/matchedtable.h"

#include "exchange/import/importwriting.h"

#include <algorithm>

namespace merchantry::exchange {

void MatchedTable::matchAnew(db::Session& session) {
    match = matched(target, table);
    const std::string key = headingsKey(table, match.headingRow);
    const std::string before = key.empty() ? "" : rememberedColumns(session, target, key);
    if (!before.empty())
        recall(target, before, match);
}

bool MatchedTable::matchBy(int rowNumber) {
    const int row = table.rowAt(rowNumber);
    const bool there = rowNumber > 0 && row < table.rows() && table.number(row) == rowNumber;
    const int wanted = there ? row : -1;
    if (wanted == match.headingRow)
        return false;
    match = matchedBy(target, table, wanted);
    return true;
}

bool MatchedTable::goesAnywhere() const {
    return std::any_of(match.fields.begin(), match.fields.end(), [](int field) { return field >= 0; });
}

} // namespace merchantry::exchange
