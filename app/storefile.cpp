#include "app/storefile.h"

#include "app/db/embedded/filecopy.h"
#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"

namespace merchantry::app {
namespace {

using db::DbError;

[[noreturn]] void refuse(const std::string& sentence) {
    throw DbError(DbError::Category::Storage, 0, sentence);
}

void removeStore(const std::filesystem::path& file) {
    std::error_code ignored;
    for (const char* ending : {"", "-wal", "-shm", "-journal"})
        std::filesystem::remove(file.string() + ending, ignored);
}

// A store takes a backup in one transaction. What cannot be opened is not overwritten, since it may hold what can still be saved.
void requireReplaceable(const std::filesystem::path& file) {
    try {
        db::Store::open(file);
    } catch (const DbError& error) {
        refuse(std::string(error.what()) + " Nothing was restored: move " + file.string() + " to another place first, then restore.");
    }
}

} // namespace

void createStoreFile(const std::filesystem::path& file, const StoreFiller& filler, const std::function<void(int percent)>& progress) {
    if (std::filesystem::exists(file))
        refuse("There is a file " + file.string() + " already. Choose another name; nothing was changed.");
    try {
        const auto store = db::Store::create(file);
        const auto session = store->session();
        db::createSchema(*session);
        if (filler)
            filler(*session, progress);
    } catch (...) {
        removeStore(file);
        throw;
    }
}

std::vector<std::string> checkStoreFile(const std::filesystem::path& file) {
    if (!std::filesystem::exists(file))
        refuse("There is no file " + file.string() + ".");
    std::vector<std::string> found = db::damageOf(file);
    if (!found.empty())
        return found;
    const auto session = db::Store::open(file)->session();
    db::refuseNewerSchema(*session);
    return db::brokenInvariants(*session);
}

bool isOlderStore(const std::filesystem::path& file) {
    try {
        const int version = db::schemaVersion(*db::Store::open(file)->session());
        return version > 0 && version < db::kSchemaVersion;
    } catch (const DbError&) {
        return false;
    }
}

std::filesystem::path upgradeStoreFile(const std::filesystem::path& file) {
    return upgradeStoreFile(file, db::upgradeSteps(), db::kSchemaVersion);
}

std::filesystem::path upgradeStoreFile(const std::filesystem::path& file, std::span<const db::UpgradeStep> steps, int goal) {
    const auto session = db::Store::open(file)->session();
    const int version = db::schemaVersion(*session);
    if (version == goal)
        return {};
    if (version == 0 || version > goal)
        db::checkSchemaVersion(*session);
    const std::filesystem::path copy = file.string() + ".v" + std::to_string(version) + ".bak";
    backupStoreFile(file, copy);
    db::upgradeSchema(*session, steps);
    return copy;
}

void backupStoreFile(const std::filesystem::path& file, const std::filesystem::path& target) {
    if (std::filesystem::exists(target))
        refuse("There is a file " + target.string() + " already. Choose another name; nothing was changed.");
    db::Store::open(file);
    try {
        db::copyStore(file, target);
    } catch (...) {
        removeStore(target);
        throw;
    }
}

void restoreStoreFile(const std::filesystem::path& backup, const std::filesystem::path& file) {
    if (const auto damage = checkStoreFile(backup); !damage.empty())
        refuse("The backup " + backup.string() + " is damaged and was not used: " + damage.front());
    const bool overwrites = std::filesystem::exists(file);
    if (overwrites)
        requireReplaceable(file);
    try {
        db::copyStore(backup, file);
    } catch (...) {
        if (!overwrites)
            removeStore(file);
        throw;
    }
}

} // namespace merchantry::app
