#pragma once

#include "app/db/tsql/catalog.h"

#include <functional>

namespace merchantry::db::tsql {

// Looks up a declared type; sets whether its columns may be null when they do not say it.
using TypeLookup = std::function<SqlType(const TypeName& type, bool& nullable)>;

// The definition that CREATE TABLE stands for; constraints without names get names made of the table's name and the number.
// Types of computed columns are left open. Throws DbError (2705, 2744, 2749, 8110, 8111, 1911, ...) for what cannot be a table.
TableDef defineTable(const ObjectName& name, const TableBody& body, std::int64_t id, const TypeLookup& types);

// Adds the columns and constraints of ALTER TABLE ... ADD to a definition.
void addToTable(TableDef& table, const TableBody& body, const TypeLookup& types, bool creating);

} // namespace merchantry::db::tsql
