#pragma once

#include "base/date.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace merchantry::app {

// What became of a backup or restore, by its word in the log.
enum class BackupOutcome { Proved, Failed, Unproved, Restored };

// The small log beside a store, "shop.store.backups.log": a line for each backup and restore, its parts between tabs: when it was, its
// outcome, the file, and a sentence. It is only ever added to.
std::filesystem::path backupLogOf(const std::filesystem::path& store);

struct BackupNote {
    Date at;
    BackupOutcome outcome = BackupOutcome::Proved;
    std::filesystem::path file;
    std::string sentence; // "Proved 11/21/2026 14:02: 48,210 rows, stock $18,204.11"
};

// Adds a line. Throws DbError Storage with a sentence.
void noteBackup(const std::filesystem::path& store, const BackupNote& note);
// The newest line of a proved backup; nothing when there is none, or no log. Lines that are none are passed over.
std::optional<BackupNote> lastProvedBackup(const std::filesystem::path& store);
// The files that the log tells of, as backups that were made, proved or not.
std::vector<std::filesystem::path> loggedBackups(const std::filesystem::path& store);
// The newest line of any outcome.
std::optional<BackupNote> lastBackupNote(const std::filesystem::path& store);

// What the main window says of backups, empty as long as the last proved one is at most a day old. A store that has none is given a day
// from its making.
std::string backupReminder(const std::filesystem::path& store, Date made, Date now);

} // namespace merchantry::app
