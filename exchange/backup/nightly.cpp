#include "exchange/backup/nightly.h"

#include "app/backuplog.h"
#include "app/db/dberror.h"
#include "app/storefile.h"
#include "base/platform/files.h"

namespace merchantry::exchange {
namespace {

constexpr std::string_view kEnding = ".bki";
constexpr std::string_view kMoment = "00000000-000000"; // a digit for each 0

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

// Those that this program made of the store, oldest first.
std::vector<std::filesystem::path> ownBackups(const NightlyPlan& plan) {
    const std::string begins = beginning(plan.store);
    std::vector<std::filesystem::path> found;
    for (const auto& one : std::filesystem::directory_iterator(plan.folder)) {
        const std::string name = one.path().filename().string();
        if (name.starts_with(begins) && name.ends_with(kEnding) && name.size() == begins.size() + kMoment.size() + kEnding.size() &&
            isMoment(std::string_view(name).substr(begins.size(), kMoment.size())))
            found.push_back(one.path());
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<std::filesystem::path> prune(const NightlyPlan& plan) {
    std::vector<std::filesystem::path> removed;
    std::vector<std::filesystem::path> backups = ownBackups(plan);
    const auto last = app::lastProvedBackup(plan.store);
    std::error_code ignored;
    const auto surplus = static_cast<std::ptrdiff_t>(backups.size()) - plan.keep;
    for (std::ptrdiff_t i = 0; i < surplus; ++i) {
        const auto& one = backups[static_cast<std::size_t>(i)];
        if (last && std::filesystem::equivalent(last->file, one, ignored))
            continue;
        if (std::filesystem::remove(one, ignored))
            removed.push_back(one);
    }
    return removed;
}

// A backup that failed is not taken for one.
void mark(NightlyOutcome& outcome) {
    const auto name = unprovedName(outcome.file);
    std::error_code error;
    std::filesystem::rename(outcome.file, name, error);
    if (!error)
        outcome.file = name;
}

void prove(const NightlyPlan& plan, const app::StoreFigures& figures, NightlyOutcome& outcome) {
    outcome.proof = proveBackup(outcome.file, figures, plan.folder, plan.now, {}, true); // nobody waits
    outcome.good = outcome.proof.proved;
    if (!outcome.good)
        mark(outcome);
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
    outcome.file = plan.folder / (beginning(plan.store) + app::nameOfMoment(plan.now) + std::string(kEnding));
    app::StoreFigures figures;
    backUp(plan.store, outcome.file, plan.prove ? &figures : nullptr, {});
    outcome.good = true;
    if (plan.prove)
        prove(plan, figures, outcome);
    if (outcome.good && plan.keep > 0)
        outcome.removed = prune(plan);
    return outcome;
}

} // namespace merchantry::exchange
