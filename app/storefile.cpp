#include "app/storefile.h"

#include "app/db/embedded/filecopy.h"
#include "app/db/embedded/store.h"
#include "app/db/schema/content.h"
#include "app/db/schema/schema.h"
#include "app/db/schema/tableparts.h"
#include "base/textorder.h"

#include <random>
#include <set>

namespace merchantry::app {
namespace {

using db::DbError;

[[noreturn]] void refuse(const std::string& sentence) {
    throw DbError(DbError::Category::Storage, 0, sentence);
}

// The name of the copy that an upgrade leaves: an older copy, which is whole, stays.
std::filesystem::path copyName(const std::filesystem::path& file, int version) {
    const std::string name = file.string() + ".v" + std::to_string(version);
    std::filesystem::path copy = name + ".bak";
    for (int number = 2; std::filesystem::exists(copy); ++number)
        copy = name + "." + std::to_string(number) + ".bak";
    return copy;
}

// The program's own text of a procedure, trigger or view; null for one that is not the program's.
const db::SchemaFile* ownFile(const db::StoredText& stored) {
    const std::string name = stored.kind + "s/" + stored.name + ".sql";
    for (const db::SchemaFile& file : db::schemaFiles())
        if (sameText(file.name, name))
            return &file;
    return nullptr;
}

// A text as the store keeps it: without the comment above it and the blank lines around it.
std::string_view withoutComment(std::string_view text) {
    while (text.starts_with("--") || text.starts_with("\n"))
        text.remove_prefix(std::min(text.find('\n') + 1, text.size()));
    return text.substr(0, text.find_last_not_of(" \r\n") + 1);
}

std::vector<std::string> damagedTexts(const std::vector<db::StoredText>& stored) {
    std::vector<std::string> found;
    for (const db::StoredText& one : stored)
        if (!one.damage.empty())
            found.push_back("The text of the " + one.kind + " " + one.name + " in the store is damaged: " + one.damage);
    return found;
}

// What the store has otherwise than this program made it, but for those files.
std::vector<std::string> changedTexts(const std::vector<db::StoredText>& stored, const std::set<std::string, std::less<>>& but) {
    std::vector<std::string> found;
    std::set<std::string_view> seen;
    for (const db::StoredText& one : stored) {
        const db::SchemaFile* own = one.kind == "table" ? nullptr : ownFile(one);
        if (own == nullptr)
            continue;
        seen.insert(own->name);
        if (but.count(own->name) == 0 && withoutComment(own->text) != withoutComment(one.text))
            found.push_back("The " + one.kind + " " + one.name + " is not as this program made it: it was changed or is damaged.");
    }
    for (const db::SchemaFile& file : db::schemaFiles()) {
        const bool module = file.name.starts_with("procedures/") || file.name.starts_with("triggers/") || file.name.starts_with("views/");
        if (module && seen.count(file.name) == 0 && but.count(file.name) == 0)
            found.push_back("The store lacks " +
                            std::string(file.name.substr(file.name.find('/') + 1, file.name.rfind('.') - file.name.find('/') - 1)) + ".");
    }
    return found;
}

// The tables as this program makes them: those of a store made for the purpose, which goes again.
std::map<std::string, std::string> ownTableParts(bool withIndexes) {
    const db::NewStoreFile scratch(std::filesystem::temp_directory_path() / ("merchantry-check-" + std::to_string(std::random_device()())));
    const auto session = db::Store::create(scratch.path())->session();
    db::createSchema(*session);
    return db::tableParts(*session, withIndexes);
}

constexpr const char* kReplaced = ".replaced-";

} // namespace

void createStoreFile(const std::filesystem::path& file, const StoreFiller& filler, const std::function<void(int percent)>& progress) {
    db::NewStoreFile made(file);
    {
        const auto session = db::Store::create(made.path())->session();
        db::createSchema(*session);
        if (filler)
            filler(*session, progress);
    }
    made.finish();
}

std::vector<std::string> damageOfStoreFile(const std::filesystem::path& file) {
    const std::vector<std::string> found = db::damageOf(file);
    return found.empty() ? damagedTexts(db::storedTexts(file)) : found;
}

std::vector<std::string> checkStoreFile(const std::filesystem::path& file) {
    std::vector<std::string> found = damageOfStoreFile(file);
    if (!found.empty())
        return found;
    const std::vector<db::StoredText> texts = db::storedTexts(file);
    const auto session = db::Store::open(file)->session();
    db::refuseNewerSchema(*session);
    if (db::schemaVersion(*session) == db::kSchemaVersion)
        found = changesOf(*session, texts);
    for (std::string& broken : db::brokenInvariants(*session))
        found.push_back(std::move(broken));
    return found;
}

std::vector<std::string> changesOf(db::Session& session, const std::vector<db::StoredText>& texts, bool withIndexes) {
    std::vector<std::string> found = changedTexts(texts, db::otherContent(session).files);
    for (std::string& changed : db::changedTables(db::tableParts(session, withIndexes), ownTableParts(withIndexes)))
        found.push_back(std::move(changed));
    return found;
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
    const std::filesystem::path copy = copyName(file, version);
    backupStoreFile(file, copy);
    db::upgradeSchema(*session, steps);
    return copy;
}

void backupStoreFile(const std::filesystem::path& file, const std::filesystem::path& target) {
    db::Store::open(file);
    db::NewStoreFile made(target);
    db::copyStore(file, made.path(), {.beside = true});
    made.finish();
}

void requireReplaceable(const std::filesystem::path& file) {
    try {
        db::Store::open(file);
    } catch (const DbError& error) {
        refuse(std::string(error.what()) + " Nothing was restored: move " + file.string() + " to another place first, then restore.");
    }
}

std::string nameOfMoment(Date moment) {
    std::string text;
    for (const char c : moment.toIsoText())
        text += c == ' ' ? "-" : c == '-' || c == ':' ? "" : std::string(1, c);
    return text;
}

std::filesystem::path replacedName(const std::filesystem::path& file, Date now) {
    const std::string name = file.string() + kReplaced + nameOfMoment(now);
    std::filesystem::path kept = name;
    for (int number = 2; std::filesystem::exists(kept); ++number)
        kept = name + "." + std::to_string(number);
    return kept;
}

std::vector<std::filesystem::path> replacedStores(const std::filesystem::path& file) {
    const std::filesystem::path folder = std::filesystem::absolute(file).parent_path();
    std::vector<std::filesystem::path> kept;
    std::error_code ignored;
    for (const auto& one : std::filesystem::directory_iterator(folder, ignored))
        if (one.path().filename().string().starts_with(file.filename().string() + kReplaced) && !one.path().string().ends_with(".making"))
            kept.push_back(one.path());
    return kept;
}

void restoreStoreFile(const std::filesystem::path& backup, const std::filesystem::path& file) {
    if (const auto damage = checkStoreFile(backup); !damage.empty())
        refuse("The backup " + backup.string() + " is damaged and was not used: " + damage.front());
    if (!std::filesystem::exists(file))
        return backupStoreFile(backup, file);
    requireReplaceable(file);
    db::copyStore(backup, file);
}

} // namespace merchantry::app
