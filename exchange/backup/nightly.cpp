#include "exchange/backup/nightly.h"

#include "app/backuplog.h"
#include "app/db/dberror.h"
#include "app/storefile.h"
#include "base/platform/files.h"

namespace merchantry::exchange {
namespace {

constexpr std::string_view kEnding = ".bki";
constexpr std::string_view kUnprovedEnding = ".unproved.bki"; // see unprovedName
constexpr std::string_view kMoment = "00000000-000000";       // a digit for each 0

bool isMoment(std::string_view text) {
    if (text.size() != kMoment.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (kMoment[i] == '-' ? text[i] != '-' : text[i] < '0' || text[i] > '9')
            return false;
    return true;
}

std::string beginning(const std::filesystem::path& store) {
    return store.stem().string() + "-";
}

// This store's nightly backups in the folder, oldest first: they are called so, and the store's own log tells of them. Another store's,
// or a file that somebody else put there, is not touched.
std::vector<std::filesystem::path> ownBackups(const NightlyPlan& plan, std::string_view ending) {
    const std::string begins = beginning(plan.store);
    std::vector<std::filesystem::path> found;
    std::error_code ignored;
    for (const auto& file : app::loggedBackups(plan.store)) {
        const std::string name = file.filename().string();
        if (name.starts_with(begins) && name.size() == begins.size() + kMoment.size() + ending.size() && name.ends_with(ending) &&
            isMoment(std::string_view(name).substr(begins.size(), kMoment.size())) &&
            std::filesystem::equivalent(file.parent_path(), plan.folder, ignored) && std::filesystem::exists(file, ignored))
            found.push_back(file);
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

// What is more than was to be kept, but for the last proved one; and with a proved one at hand all that were not.
std::vector<std::filesystem::path> surplus(const NightlyPlan& plan) {
    std::vector<std::filesystem::path> all = ownBackups(plan, kEnding);
    const auto last = app::lastProvedBackup(plan.store);
    all.resize(all.size() - std::min(all.size(), static_cast<std::size_t>(plan.keep)));
    std::erase_if(all, [&](const auto& one) { return last && last->file == one; });
    if (last && std::filesystem::exists(last->file))
        for (auto& one : ownBackups(plan, kUnprovedEnding))
            all.push_back(std::move(one));
    return all;
}

std::vector<std::filesystem::path> prune(const NightlyPlan& plan) {
    std::vector<std::filesystem::path> removed;
    std::error_code ignored;
    for (const auto& one : surplus(plan))
        if (std::filesystem::remove(one, ignored))
            removed.push_back(one);
    return removed;
}

void note(const NightlyPlan& plan, app::BackupOutcome what, const NightlyOutcome& outcome, const std::string& sentence) {
    app::noteBackup(plan.store, {plan.now, what, std::filesystem::absolute(outcome.file), sentence});
}

// It has the name of one that is not proved until it is: whoever is ended half-way leaves nothing that looks like a good one.
void prove(const NightlyPlan& plan, const app::StoreFigures& figures, const std::filesystem::path& good, NightlyOutcome& outcome) {
    outcome.proof = proveBackup(outcome.file, figures, folderForProof(plan.store, outcome.file), plan.now, {}, true); // nobody waits
    outcome.good = outcome.proof.proved;
    if (outcome.good) {
        platform::moveInto(outcome.file, good);
        outcome.file = good;
    }
    try {
        noteProof(plan.store, outcome.file, outcome.proof);
    } catch (const db::DbError& error) {
        outcome.complaint = error.what();
    }
}

} // namespace

std::string NightlyOutcome::sentence() const {
    if (proof.proved)
        return proof.sentence() + ". " + file.string();
    return good ? "Backed up, not proved: " + file.string() : proof.sentence() + " It is kept as " + file.string();
}

NightlyOutcome backUpNightly(const NightlyPlan& plan) {
    if (!std::filesystem::is_directory(plan.folder))
        throw db::DbError(db::DbError::Category::Storage, 0, "There is no folder " + plan.folder.string() + ". Nothing was backed up.");
    NightlyOutcome outcome;
    const std::filesystem::path good = plan.folder / (beginning(plan.store) + app::nameOfMoment(plan.now) + std::string(kEnding));
    if (std::filesystem::exists(good))
        throw db::DbError(db::DbError::Category::Storage, 0, "There is a backup " + good.string() + " already. Nothing was backed up.");
    outcome.file = plan.prove ? unprovedName(good) : good;
    app::StoreFigures figures;
    try {
        backUp(plan.store, outcome.file, plan.prove ? &figures : nullptr, {});
    } catch (const db::DbError& error) {
        note(plan, app::BackupOutcome::Failed, outcome, std::string("No backup: ") + error.what());
        throw;
    }
    note(plan, app::BackupOutcome::Unproved, outcome, "Backed up " + plan.now.toShortText() + ", not proved");
    outcome.good = true;
    if (plan.prove)
        prove(plan, figures, good, outcome);
    if (outcome.good && plan.keep > 0)
        outcome.removed = prune(plan);
    return outcome;
}

} // namespace merchantry::exchange
