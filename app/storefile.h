#pragma once

#include "app/db/embedded/storedtexts.h"
#include "app/db/schema/schema.h"
#include "app/db/session.h"
#include "base/date.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace merchantry::app {

// Fills a new store with goods; progress in percent.
using StoreFiller = std::function<void(db::Session& session, const std::function<void(int percent)>& progress)>;

// Makes a store file with the schema and first rows, and what the filler adds. Throws std::exception with a sentence for the user; an
// existing file is never touched, and nothing is left of a store that could not be made whole.
void createStoreFile(const std::filesystem::path& file, const StoreFiller& filler, const std::function<void(int percent)>& progress);

// What is wrong with a store, in a sentence each: damage of the file, and rules of the program that its rows break. Empty for a sound
// store.
std::vector<std::string> checkStoreFile(const std::filesystem::path& file);

// Damage of the file only, in a sentence each: of its pages, and of the texts of its tables and procedures.
std::vector<std::string> damageOfStoreFile(const std::filesystem::path& file);
// What a store of this version has otherwise than this program made it, in a sentence each; `texts` are its procedures, triggers and views.
// Those of another program's files are no fault: they wait to be renewed, or are newer. Indexes are left out where a server names them in
// its own way.
std::vector<std::string> changesOf(db::Session& session, const std::vector<db::StoredText>& texts, bool withIndexes = true);

// Whether the file is a store that an earlier version of the program made, so that upgradeStoreFile helps; false for anything else.
bool isOlderStore(const std::filesystem::path& file);

// Brings an older store to this program's schema, with a copy of the old one beside it (".v1.bak"); the copy's path, empty when the store
// is of this version already. Throws with a sentence, the store unchanged.
std::filesystem::path upgradeStoreFile(const std::filesystem::path& file);
// The same with other steps and another goal; for tests.
std::filesystem::path upgradeStoreFile(const std::filesystem::path& file, std::span<const db::UpgradeStep> steps, int goal);

// Copies a store that may be in use. The target must not exist (backup), or must be a store that is overwritten as a whole in one
// transaction (restore).
void backupStoreFile(const std::filesystem::path& file, const std::filesystem::path& target);
void restoreStoreFile(const std::filesystem::path& backup, const std::filesystem::path& file);

// Throws DbError Storage with a sentence when the store that a backup is to replace cannot be opened: it is not overwritten, since it may
// hold what can still be saved.
void requireReplaceable(const std::filesystem::path& file);

// Where the store that a restore replaces is kept: "shop.store.replaced-20261121-140205".
std::filesystem::path replacedName(const std::filesystem::path& file, Date now);
// Those that are kept.
std::vector<std::filesystem::path> replacedStores(const std::filesystem::path& file);
// "20261121-140205": a moment in the name of a file, so that names sort by time.
std::string nameOfMoment(Date moment);

} // namespace merchantry::app
