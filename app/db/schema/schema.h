#pragma once

#include "app/db/session.h"

#include <span>
#include <string_view>
#include <vector>

namespace merchantry::db {

// One file of the store's schema: a table with its indexes, a trigger, a procedure, or the first rows.
struct SchemaFile {
    std::string_view name; // "tables/Item.sql"
    std::string_view text; // one batch
};

// All files in an order in which they can be run.
std::span<const SchemaFile> schemaFiles();

// The version that this program knows and makes.
constexpr int kSchemaVersion = 1;

// Makes the schema with its first rows in an empty store, in one transaction. Throws DbError, naming the file; nothing is left then.
void createSchema(Session& session);

// A store that breaks one of the program's own rules, in a sentence each; empty for a sound store.
std::vector<std::string> brokenInvariants(Session& session);

} // namespace merchantry::db
