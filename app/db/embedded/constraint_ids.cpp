#include "app/db/embedded/constraint_ids.h"

namespace merchantry::db::embedded {
namespace {

constexpr std::int64_t kMostOfAKind = 2048;
constexpr std::int64_t kKinds = 4;

} // namespace

void eachConstraint(const tsql::TableDef& table, const std::function<void(const Constraint&)>& show) {
    std::int64_t first = table.id * kKinds * kMostOfAKind;
    std::int64_t id = first;
    for (const tsql::KeyDef& key : table.keys)
        show({++id, key.name, key.primary ? "PK" : "UQ", ""});
    id = first += kMostOfAKind;
    for (const tsql::CheckDef& check : table.checks)
        show({++id, check.name, "C", "(" + check.expr->source + ")"});
    id = first += kMostOfAKind;
    for (const tsql::ForeignKeyDef& key : table.foreignKeys)
        show({++id, key.name, "F", ""});
    id = first + kMostOfAKind;
    for (const tsql::ColumnDef& column : table.columns) {
        ++id; // by the column's place: another default does not move it
        if (column.defaultValue)
            show({id, column.defaultName, "D", "(" + column.defaultValue->source + ")"});
    }
}

} // namespace merchantry::db::embedded
