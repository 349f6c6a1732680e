#pragma once

#include "app/storefigures.h"

#include <filesystem>
#include <functional>
#include <string>

namespace merchantry::exchange {

// Takes how much of the work is done, in percent; false stops it: DbError Cancelled.
using BackupProgress = std::function<bool(int percent)>;

// A backup counts when it came back: whether it did.
struct BackupProof {
    bool proved = false;
    Date at;
    std::int64_t rows = 0;
    Currency stock;    // at average cost
    std::string fault; // why not, a sentence

    // "Proved 11/21/2026 14:02: 48,210 rows, stock $18,204.11", or what is wrong.
    std::string sentence() const;
};

// Copies a store that may be in use into a new file, whole and on the disk or not there at all; with figures wanted, what the store came
// to at the very moment that was copied. Throws DbError with a sentence.
void backUp(const std::filesystem::path& store, const std::filesystem::path& target, app::StoreFigures* figures,
            const BackupProgress& progress);

// Where a scratch store finds room: beside the store, else beside the backup.
std::filesystem::path folderForProof(const std::filesystem::path& store, const std::filesystem::path& backup);

// Restores a backup into a scratch store in the folder, which goes again, compares it with what the store came to, and looks at every page
// of its tables and indexes. The backup is read from its disk. Thoroughly: every row is looked for in every index, too, which takes some
// times as long. Throws DbError Cancelled only: whatever else goes wrong is the proof's fault.
BackupProof proveBackup(const std::filesystem::path& backup, const app::StoreFigures& original, const std::filesystem::path& folder,
                        Date now, const BackupProgress& progress, bool thoroughly = false);

// Where a backup that failed its proof is kept: "shop.bki" as "shop.unproved.bki", or with a number when there is one already.
std::filesystem::path unprovedName(const std::filesystem::path& backup);

// What a proved backup makes needless: the stores that restores replaced and kept aside. The outcome goes to the store's log either way.
// Throws DbError Storage when the log cannot be written.
void noteProof(const std::filesystem::path& store, const std::filesystem::path& backup, const BackupProof& proof);

} // namespace merchantry::exchange
