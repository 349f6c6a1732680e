#pragma once

#include "app/db/tsql/binding.h"

#include <memory>
#include <string>
#include <vector>

namespace merchantry::db::tsql {

// The sources of a FROM clause, which the scope knows afterwards. Throws DbError (207, 208, 1013, 8155, ...).
from::Any bindFrom(Binding& binding, const std::vector<TableRefPtr>& refs, Scope& scope);
// One table, view or common table by its name.
from::Any bindTable(Binding& binding, const TableRef& ref, Scope& scope);
from::Any bindView(Binding& binding, const TableRef& ref, const ViewDef& view, Scope& scope);

// A table as a source under an alias of SQLite; an empty one where only its columns can be meant.
Source tableSource(const std::shared_ptr<const TableDef>& table, const std::string& alias);
// A column of the source; a computed one is its expression over the others.
BoundColumn boundColumn(Binding& binding, const Source& source, std::size_t column);
// Makes all columns of a source that were not made yet.
void complete(Binding& binding, Source& source);

} // namespace merchantry::db::tsql
