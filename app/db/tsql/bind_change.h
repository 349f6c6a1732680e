#pragma once

#include "app/db/tsql/binding.h"

#include <map>
#include <string>
#include <vector>

namespace merchantry::db::tsql {

// What INSERT, UPDATE and DELETE have in common.

// What a change is of: a source of its FROM, or the table that it names.
struct ChangeTarget {
    from::Any from; // the source and what stands beside it
    Source source;  // a copy with all its columns
};
// Throws 208, 286, 4403 or 8154 for what cannot be changed. The scope knows the sources afterwards.
ChangeTarget bindChangeTarget(Binding& binding, const ObjectName& name, const std::vector<TableRefPtr>& refs, Scope& scope);

// The default of a column; null where it has none.
Typed bindDefault(Binding& binding, const ColumnDef& column);
// The value as the column takes it.
Typed storedIn(const ColumnDef& column, Typed value, int line);

// OUTPUT: a select over the inserted and deleted rows side by side, and where its rows go.
void bindOutput(Binding& binding, const OutputClause& output, ChangePlan& plan);

// A trigger stands for the statement: the rows of inserted and of deleted that it gets. values are the new ones by column of the source.
enum class InsteadRows { Old, Both };
void bindInstead(ChangePlan& plan, const Source& source, const std::map<std::size_t, Typed>& values, const BoundRows& rows,
                 InsteadRows which);

} // namespace merchantry::db::tsql
