#pragma once

#include "base/date.h"

#include <filesystem>
#include <functional>
#include <string>

namespace merchantry::exchange {

// What a restore would do, known before anything is done.
struct RestoreOutlook {
    bool upgrades = false;     // an earlier version of the program made the backup
    int version = 0;           // of its schema
    bool storeIsNewer = false; // the store has postings that the backup lacks
    Date backupNewest;         // posting in each, 1900 for none
    Date storeNewest;
};

// Looks at a backup and the store that it is to replace, which need not be there. Throws DbError with a sentence when it cannot be
// restored: it is no store, a newer program's, or the store itself.
RestoreOutlook outlookOf(const std::filesystem::path& backup, const std::filesystem::path& store);

// Looks through every page of a backup. Throws DbError with a sentence when it is damaged.
void requireSound(const std::filesystem::path& backup);

// Puts a backup in the store's place as a whole: whoever is stopped or killed half-way leaves the store as it was. One
// of an earlier version is brought up to date, for which this file is written: a copy of the chosen one, not that itself.
// Requires: it is sound, see requireSound. The store that was there is kept, its path is the result; empty when there was none. Throws
// DbError with a sentence: while other programs hold the store, with their names; with Cancelled when the progress gave false.
std::filesystem::path restoreStore(const std::filesystem::path& backup, const std::filesystem::path& store, Date now,
                                   const std::function<bool(int percent)>& progress);

// The same for a file that stays as it is, after a look at it: what no question is asked about.
std::filesystem::path restoreFrom(const std::filesystem::path& chosen, const std::filesystem::path& store, Date now);

} // namespace merchantry::exchange
