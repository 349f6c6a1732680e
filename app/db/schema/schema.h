#pragma once

#include "app/db/session.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::db {

// One file of the store's schema: a table with its indexes, a view, a trigger, a procedure, or the first rows.
struct SchemaFile {
    std::string_view name; // "tables/Item.sql"
    std::string_view text; // one batch
};

// All files in an order in which they can be run.
std::span<const SchemaFile> schemaFiles();

// The version that this program knows and makes.
// A release that changes a table gets the next one and its step in upgradeSteps(); all else is renewed by its content (content.h).
constexpr int kSchemaVersion = 13;

// Makes the schema with its first rows in an empty store, in one transaction. Throws DbError, naming the file; nothing is left then.
// Progress in percent.
void createSchema(Session& session, const std::function<void(int percent)>& progress = {});

// The same with other rows in the place of the first ones: `fill` puts them into the tables before there is any trigger.
void createSchemaWith(Session& session, const std::function<void()>& fill);

// The tables of the schema, each behind those that it refers to.
std::vector<std::string> schemaTables();

// The schema version of a store; 0 for a file that has no schema of this program.
int schemaVersion(Session& session);

// Throws DbError (category Storage) with a sentence for the user when the store's schema is newer than this program: nothing may be read
// from it or written to it by rules that no longer hold.
void refuseNewerSchema(Session& session);

// Throws DbError (category Storage) with a sentence for the user unless the store has just the schema that this program knows.
void checkSchemaVersion(Session& session);

// What brings a store from the version before to `to`.
struct UpgradeStep {
    int to = 0;
    std::string_view batch;
};
// All steps that this program knows, in their order.
std::span<const UpgradeStep> upgradeSteps();

// Runs the steps that the store lacks and puts this program's views, procedures, triggers and first rows in the place of the store's, in
// one transaction. Throws DbError, naming the version or file; nothing is changed then.
void upgradeSchema(Session& session, std::span<const UpgradeStep> steps);

// A store that breaks one of the program's own rules, in a sentence each; empty for a sound store.
std::vector<std::string> brokenInvariants(Session& session);

} // namespace merchantry::db
