#include "exchange/backup/provedbackup.h"

#include "app/backuplog.h"
#include "app/db/embedded/filecontent.h"
#include "app/db/embedded/filecopy.h"
#include "app/db/embedded/store.h"
#include "app/db/schema/schema.h"
#include "app/storefile.h"
#include "base/errortext.h"
#include "base/numbers.h"
#include "base/platform/files.h"

#include <array>
#include <cstdio>

namespace merchantry::exchange {
namespace {

using db::DbError;

constexpr int kAlmost = 99;
constexpr int kCopied = 50; // percent of a proof, when the scratch store stands

// "11/21/2026 14:02".
std::string momentText(Date at) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%d/%d/%d %02d:%02d", at.month(), at.day(), at.year(), at.hour(), at.minute());
    return text.data();
}

// A store that is gone with the object, also when its program was killed: at the next proof.
class ScratchStore {
public:
    explicit ScratchStore(const std::filesystem::path& folder)
        : file_(folder / (".merchantry-proof-" + std::to_string(platform::ownProcess()) + ".store")) {
        removeLeft(folder);
    }
    ~ScratchStore() { remove(); }
    ScratchStore(const ScratchStore&) = delete;
    ScratchStore& operator=(const ScratchStore&) = delete;

    const std::filesystem::path& file() const { return file_; }

private:
    void remove() const {
        std::error_code ignored;
        for (const char* ending : {"", "-wal", "-shm", "-journal"})
            std::filesystem::remove(file_.string() + ending, ignored);
    }
    void removeLeft(const std::filesystem::path& folder) const {
        constexpr std::string_view kName = ".merchantry-proof-";
        std::error_code ignored;
        for (const auto& one : std::filesystem::directory_iterator(folder, ignored)) {
            const std::string name = one.path().filename().string();
            const bool proof = name.starts_with(kName);
            if (proof && !platform::isRunning(std::atoi(name.c_str() + kName.size())))
                std::filesystem::remove(one.path(), ignored);
        }
        remove();
    }

    std::filesystem::path file_;
};

std::string damageIn(const std::filesystem::path& restored) {
    const auto damage = app::damageOfStoreFile(restored);
    return damage.empty() ? "" : "It is damaged: " + damage.front();
}

// Why the restored store is not the original; empty when it is.
std::string faultOf(const std::filesystem::path& restored, const app::StoreFigures& original, app::StoreFigures& found,
                    const BackupProgress& progress) {
    const auto goOn = [&progress, percent = kCopied]() mutable { return progress(percent < kAlmost ? ++percent : percent); };
    found = app::figuresOfOwn(restored, progress ? app::GoOn(goOn) : app::GoOn());
    if (found.version == db::kSchemaVersion)
        db::checkSchemaVersion(*db::Store::open(restored)->session()); // the program itself can open it
    return app::differenceOf(original, found);
}

} // namespace

std::string BackupProof::sentence() const {
    if (!proved)
        return "Not proved " + momentText(at) + ": " + fault;
    return "Proved " + momentText(at) + ": " + withThousands(rows) + " rows, stock " + stock.toDisplay();
}

void backUp(const std::filesystem::path& store, const std::filesystem::path& target, app::StoreFigures* figures,
            const BackupProgress& progress) {
    db::NewStoreFile made(target);
    db::CopyPlan plan{.beside = true, .progress = progress};
    if (figures != nullptr)
        plan.sameMoment = [&](db::embedded::Connection& original) { *figures = app::figuresOf(original); };
    std::uint64_t content = 0;
    if (figures != nullptr)
        plan.content = &content;
    db::copyStore(store, made.path(), plan);
    made.finish();
    if (figures != nullptr)
        figures->content = content;
}

std::filesystem::path folderForProof(const std::filesystem::path& store, const std::filesystem::path& backup) {
    std::error_code error;
    const auto space = std::filesystem::space(store.parent_path(), error);
    const bool roomy = !error && space.available > std::filesystem::file_size(backup);
    return roomy && std::filesystem::exists(store) ? store.parent_path() : backup.parent_path();
}

BackupProof proveBackup(const std::filesystem::path& backup, const app::StoreFigures& original, const std::filesystem::path& folder,
                        Date now, const BackupProgress& progress, bool thoroughly) {
    BackupProof proof;
    proof.at = now;
    try {
        platform::forgetCached(backup);
        const ScratchStore scratch(folder);
        const auto half = [&](int percent) { return !progress || progress(percent * kCopied / 100); };
        db::copyStore(backup, scratch.file(), {.progress = half, .lasting = false});
        app::StoreFigures found;
        if (thoroughly)
            proof.fault = damageIn(scratch.file());
        if (proof.fault.empty())
            proof.fault = faultOf(scratch.file(), original, found, progress);
        if (proof.fault.empty() && original.content && db::contentOf(backup) != *original.content)
            proof.fault = "What stands on the disk is not what was written.";
        proof.rows = found.rowCount();
        proof.stock = found.stockValue;
    } catch (const DbError& error) {
        if (error.category() == DbError::Category::Cancelled)
            throw;
        proof.fault = error.what();
    } catch (const std::exception& error) {
        proof.fault = sentenceOf(error);
    }
    proof.proved = proof.fault.empty();
    return proof;
}

std::filesystem::path unprovedName(const std::filesystem::path& backup) {
    const auto named = [&](const std::string& number) {
        return backup.parent_path() / (backup.stem().string() + ".unproved" + number + backup.extension().string());
    };
    std::filesystem::path name = named("");
    for (int number = 2; std::filesystem::exists(name); ++number)
        name = named("." + std::to_string(number));
    return name;
}

void noteProof(const std::filesystem::path& store, const std::filesystem::path& backup, const BackupProof& proof) {
    const auto outcome = proof.proved ? app::BackupOutcome::Proved : app::BackupOutcome::Failed;
    app::noteBackup(store, {proof.at, outcome, std::filesystem::absolute(backup), proof.sentence()});
    std::error_code ignored;
    if (proof.proved)
        for (const auto& replaced : app::replacedStores(store))
            std::filesystem::remove(replaced, ignored);
}

} // namespace merchantry::exchange
