// An online backup of a store of some size, and its proof, beside a plain copy of the file that is synced once.
//
//     bench_backup [MEGABYTES [FOLDER]]     1000 and the folder for temporary files when not given

#include "bench/ratio.h"

#include "app/db/embedded/store.h"
#include "app/storefile.h"
#include "base/platform/files.h"
#include "demo/demostore.h"
#include "exchange/backup/provedbackup.h"

#include <cstdlib>
#include <random>

using namespace merchantry;
using namespace merchantry::bench;

namespace {

constexpr int kRuns = 5;
constexpr int kSalesOfMegabyte = 6; // a day, over two years
constexpr double kMegabyte = 1e6;
constexpr const char* kCopying = "online backup with its figures / plain copy, one sync";
constexpr const char* kProving = "proof of it / the same";

class Folder {
public:
    explicit Folder(const std::filesystem::path& in) : path_(in / ("merchantry-bench-" + std::to_string(std::random_device()()))) {
        std::filesystem::create_directories(path_);
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::filesystem::path operator/(const char* name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

void plainCopy(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::filesystem::copy_file(from, to);
    platform::syncFile(to);
}

// The copy goes, and its pages with it, so that every copy is written anew.
void removed(const std::filesystem::path& file) {
    std::filesystem::remove(file);
}

} // namespace

int main(int count, char** arguments) {
    const int megabytes = count > 1 ? std::atoi(arguments[1]) : 1000;
    const Folder folder(count > 2 ? std::filesystem::path(arguments[2]) : std::filesystem::temp_directory_path());
    const auto store = folder / "shop.store";
    const demo::DemoPlan plan{
        .dataFolder = "demo/data", .today = *Date::fromParts(2026, 11, 21, 15), .salesPerDay = kSalesOfMegabyte * megabytes};
    app::createStoreFile(
        store, [&](db::Session& session, const auto& progress) { demo::fillDemoStore(session, plan, progress); }, [](int) {});
    const app::StoreFigures figures = app::figuresOf(store);
    std::printf("%.0f MB, %lld rows\n", static_cast<double>(std::filesystem::file_size(store)) / kMegabyte,
                static_cast<long long>(figures.rowCount()));
    std::vector<double> plain;
    std::vector<double> ours;
    std::vector<double> proofs;
    for (int i = 0; i < kRuns; ++i) {
        plain.push_back(msOf([&] { plainCopy(store, folder / "plain.bki"); }));
        removed(folder / "plain.bki");
        app::StoreFigures original;
        exchange::BackupProof proof;
        ours.push_back(msOf([&] { exchange::backUp(store, folder / "ours.bki", &original, [](int) { return true; }); }));
        proofs.push_back(msOf([&] { proof = exchange::proveBackup(folder / "ours.bki", original, store.parent_path(), Date(), {}); }));
        if (!proof.proved)
            std::printf("DIFFERENT: %s\n", proof.fault.c_str());
        removed(folder / "ours.bki");
    }
    print(kCopying, median(ours), median(plain));
    print(kProving, median(proofs), median(plain));
    return 0;
}
