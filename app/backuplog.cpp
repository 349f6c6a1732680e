#include "app/backuplog.h"

#include "app/db/dberror.h"
#include "base/counted.h"
#include "base/platform/files.h"
#include "base/text.h"

#include <array>
#include <fstream>
#include <functional>
#include <utility>

namespace merchantry::app {
namespace {

constexpr std::array<std::pair<BackupOutcome, std::string_view>, 4> kWords{{{BackupOutcome::Proved, "proved"},
                                                                            {BackupOutcome::Failed, "failed"},
                                                                            {BackupOutcome::Unproved, "not proved"},
                                                                            {BackupOutcome::Restored, "restored"}}};
constexpr std::size_t kParts = 4;

std::string_view wordOf(BackupOutcome outcome) {
    for (const auto& [one, word] : kWords)
        if (one == outcome)
            return word;
    return "";
}

// A part of a line: it holds no separator.
std::string part(const std::string& text) {
    return replaced(replaced(replaced(text, "\t", " "), "\r", " "), "\n", " ");
}

std::optional<BackupNote> noteOf(const std::string& line) {
    const std::vector<std::string> parts = split(line, "\t");
    const auto at = parts.size() == kParts ? Date::fromText(parts[0]) : std::nullopt;
    if (!at)
        return std::nullopt;
    for (const auto& [outcome, word] : kWords)
        if (parts[1] == word)
            return BackupNote{*at, outcome, parts[2], parts[3]};
    return std::nullopt;
}

std::optional<BackupNote> lastNote(const std::filesystem::path& store, const std::function<bool(const BackupNote&)>& wanted) {
    std::optional<BackupNote> last;
    std::ifstream stream(backupLogOf(store));
    for (std::string line; std::getline(stream, line);)
        if (auto note = noteOf(line); note && wanted(*note))
            last = std::move(note);
    return last;
}

std::string daysText(std::int64_t days) {
    return counted(days, "day");
}

} // namespace

std::filesystem::path backupLogOf(const std::filesystem::path& store) {
    return store.string() + ".backups.log";
}

void noteBackup(const std::filesystem::path& store, const BackupNote& note) {
    try {
        platform::appendLine(backupLogOf(store), note.at.toIsoText() + "\t" + std::string(wordOf(note.outcome)) + "\t" +
                                                     part(note.file.string()) + "\t" + part(note.sentence));
    } catch (const std::filesystem::filesystem_error& error) {
        throw db::DbError(db::DbError::Category::Storage, 0,
                          "The log " + backupLogOf(store).string() + " cannot be written: " + error.code().message() + ".");
    }
}

std::optional<BackupNote> lastProvedBackup(const std::filesystem::path& store) {
    return lastNote(store, [](const BackupNote& note) { return note.outcome == BackupOutcome::Proved; });
}

std::vector<std::filesystem::path> loggedBackups(const std::filesystem::path& store) {
    std::vector<std::filesystem::path> files;
    lastNote(store, [&](const BackupNote& note) {
        if (note.outcome != BackupOutcome::Restored)
            files.push_back(note.file);
        return false;
    });
    return files;
}

std::optional<BackupNote> lastBackupNote(const std::filesystem::path& store) {
    return lastNote(store, [](const BackupNote&) { return true; });
}

std::string backupReminder(const std::filesystem::path& store, Date made, Date now) {
    const auto last = lastProvedBackup(store);
    const std::int64_t days = (now.ms() - (last ? last->at : made).ms()) / Date::kMsPerDay;
    if (days < 1)
        return "";
    return last ? "The last proved backup is " + daysText(days) + " old." : "This store has no proved backup yet.";
}

} // namespace merchantry::app
