#include "exchange/backup/restoring.h"

#include "app/backuplog.h"
#include "app/db/embedded/filecopy.h"
#include "app/db/embedded/filestage.h"
#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"
#include "app/storefigures.h"
#include "app/storefile.h"
#include "base/platform/files.h"
#include "base/text.h"

namespace merchantry::exchange {
namespace {

[[noreturn]] void refuse(const std::string& sentence) {
    throw db::DbError(db::DbError::Category::Storage, 0, sentence);
}

// What is no store of this program's, or one that it does not know yet.
app::StoreMark requireOurs(const std::filesystem::path& backup) {
    const app::StoreMark mark = app::markOf(backup);
    if (mark.version > db::kSchemaVersion)
        refuse("The backup " + backup.string() + " was made by a newer version of the program (its store is of version " +
               std::to_string(mark.version) + ", this program knows " + std::to_string(db::kSchemaVersion) +
               "). Nothing was restored: install that version and restore with it.");
    if (mark.version == 0)
        refuse("The file " + backup.string() + " is no backup of a Merchantry store. Nothing was restored.");
    return mark;
}

void requireFree(const std::filesystem::path& store) {
    if (const auto holders = platform::holdersOf(store); !holders.empty())
        refuse("The store is open in " + platform::namesOf(holders) + ". Nothing was restored. Close " +
               (holders.size() == 1 ? "it" : "them") + " and try again.");
}

// Half of the work each: the store that was there, then the new one.
std::function<bool(int)> halfOf(const std::function<bool(int)>& progress, int from) {
    if (!progress)
        return {};
    return [progress, from](int percent) { return progress(from + percent / 2); };
}

std::filesystem::path setAside(const std::filesystem::path& store, Date now, const std::function<bool(int)>& progress) {
    const std::filesystem::path aside = app::replacedName(store, now);
    db::NewStoreFile made(aside);
    db::copyStore(store, made.path(), {.beside = true, .progress = halfOf(progress, 0)});
    made.finish();
    return aside;
}

// Whoever restores a file that may only be read, from a disc or a careful folder, wants a store to be written.
void makeWritable(const std::filesystem::path& file) {
    std::error_code ignored;
    std::filesystem::permissions(file, std::filesystem::perms::owner_write, std::filesystem::perm_options::add, ignored);
}

} // namespace

// Rows that break a rule are no damage: the store had them, and goes on with them.
void requireSound(const std::filesystem::path& backup) {
    const auto damage = app::damageOfStoreFile(backup);
    if (damage.empty())
        return;
    std::vector<std::string> lines = split(joined(damage, "\n"), "\n");
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("***"); }); // where the file's check begins
    refuse("The backup is damaged and was not used" + (lines.empty() ? "." : ": " + lines.front()));
}

RestoreOutlook outlookOf(const std::filesystem::path& backup, const std::filesystem::path& store) {
    std::error_code error;
    if (std::filesystem::equivalent(backup, store, error))
        refuse("That file is the store itself. Choose a backup of it.");
    const app::StoreMark mark = requireOurs(backup);
    RestoreOutlook outlook{mark.version < db::kSchemaVersion, mark.version, false, mark.newest, Date()};
    if (std::filesystem::exists(store))
        outlook.storeNewest = app::markOf(store).newest;
    outlook.storeIsNewer = outlook.storeNewest > outlook.backupNewest;
    return outlook;
}

std::filesystem::path restoreStore(const std::filesystem::path& backup, const std::filesystem::path& store, Date now,
                                   const std::function<bool(int percent)>& progress) {
    requireFree(store);
    requireOurs(backup);
    makeWritable(backup);
    if (app::isOlderStore(backup))
        app::upgradeStoreFile(backup);
    if (!std::filesystem::exists(store)) {
        db::NewStoreFile made(store);
        db::copyStore(backup, made.path(), {.progress = progress});
        makeWritable(made.path());
        made.finish();
        return {};
    }
    app::requireReplaceable(store);
    const std::filesystem::path aside = setAside(store, now, progress);
    try {
        requireFree(store);
        db::copyStore(backup, store, {.progress = halfOf(progress, 50)});
    } catch (const db::DbError& error) {
        std::error_code ignored;
        if (error.category() == db::DbError::Category::Cancelled) // the store is what it was
            std::filesystem::remove(aside, ignored);
        throw;
    }
    return aside;
}

std::filesystem::path restoreFrom(const std::filesystem::path& chosen, const std::filesystem::path& store, Date now) {
    outlookOf(chosen, store);
    db::FileStage stage(chosen, std::filesystem::absolute(store).parent_path());
    const std::filesystem::path taken = stage.taken();
    requireSound(taken);
    const std::filesystem::path aside = restoreStore(taken, store, now, {});
    app::noteBackup(store, {now, app::BackupOutcome::Restored, std::filesystem::absolute(chosen),
                            "Restored " + now.toShortText() + " from " + std::filesystem::absolute(chosen).string()});
    return aside;
}

} // namespace merchantry::exchange
