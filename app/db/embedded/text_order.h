#pragma once

#include <sqlite3.h>

namespace merchantry::db::embedded {

// A store's indexes keep texts in the order in which they were when the rows came. Another order finds nothing in them: each file tells
// which one is its own, and is read in that until it is reindexed.
enum class TextOrder {
    ByCode = 1, // letters with accents behind z, signs where their numbers put them
    ByRule = 2, // compareText
};

constexpr TextOrder kNewestTextOrder = TextOrder::ByRule;

// The order of the open file; that of the first stores when it tells none.
TextOrder textOrderOf(sqlite3* db);
// Makes the collations of the engine known to a connection, or known anew. Requires: no statement is running.
void registerCollations(sqlite3* db, TextOrder order);
// Puts all indexes of the file into the newest order and notes it. Requires: a write transaction, and no statement is running.
// Throws DbError Storage.
void reorderTexts(sqlite3* db);

} // namespace merchantry::db::embedded
