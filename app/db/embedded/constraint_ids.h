#pragma once

#include "app/db/tsql/catalog.h"

#include <cstdint>
#include <functional>
#include <string>

namespace merchantry::db::embedded {

// A constraint as OBJECT_ID and the views of objects show it. It is no object of the file's: its id follows from that of its table.
struct Constraint {
    std::int64_t id;
    std::string name;
    const char* kind; // PK, UQ, C, F or D
    std::string definition;
};

// Keys, checks, references and defaults, in this order. No two objects of a store have one id while a table has at most 2,047 of each and
// the store fewer than 262,000 objects.
void eachConstraint(const tsql::TableDef& table, const std::function<void(const Constraint&)>& show);

} // namespace merchantry::db::embedded
