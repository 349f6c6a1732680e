#include "app/db/embedded/store.h"

#include "app/db/embedded/engine.h"
#include "app/db/embedded/store_catalog.h"
#include "app/db/embedded/store_session.h"

#include <array>
#include <atomic>
#include <fstream>
#include <map>
#include <mutex>

namespace merchantry::db::embedded {
namespace {

constexpr std::int64_t kApplicationId = 0x4D524331; // "MRC1"

DbError storageError(const std::string& message) {
    return DbError(DbError::Category::Storage, 0, message).withSeverity(17, 1);
}

// The open stores of this process by their file.
struct OpenStores {
    std::mutex mutex;
    std::map<std::filesystem::path, std::weak_ptr<Store>> byFile;
};

OpenStores& openStores() {
    static OpenStores stores;
    return stores;
}

} // namespace

void requireStoreFile(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::exists(file, error))
        throw storageError(error ? "The store " + file.string() + " cannot be reached: " + error.message() + "."
                                 : "There is no store file " + file.string() + ".");
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw storageError("The store " + file.string() + " may not be read by this user.");
    // The words that every file of SQLite begins with, and behind them this program's mark, its highest byte first.
    constexpr std::string_view kWords("SQLite format 3\0", 16);
    constexpr std::size_t kMarkAt = 68;
    std::array<char, kMarkAt + 4> head{};
    stream.read(head.data(), head.size());
    std::int64_t mark = 0;
    for (std::size_t i = kMarkAt; i < head.size(); ++i)
        mark = mark * 256 + static_cast<unsigned char>(head[i]);
    if (std::string_view(head.data(), kWords.size()) != kWords || mark != kApplicationId)
        throw storageError("The file " + file.string() + " is no Merchantry store, or its beginning is damaged. It was not changed.");
}

struct Store::State {
    std::filesystem::path file;
    bool scratch = false;
    std::shared_ptr<SharedState> shared = std::make_shared<SharedState>();
    std::mutex mutex;
    std::vector<std::unique_ptr<Engine>> idle;
};

Store::Store(std::unique_ptr<State> state) : state_(std::move(state)) {}

Store::~Store() {
    state_->idle.clear();
    if (!state_->scratch)
        return;
    std::error_code ignored;
    for (const char* suffix : {"", "-wal", "-shm"})
        std::filesystem::remove(state_->file.string() + suffix, ignored);
}

std::shared_ptr<Store> Store::create(const std::filesystem::path& file) {
    if (std::filesystem::exists(file))
        throw storageError("The file " + file.string() + " exists already.");
    {
        Connection connection(file, true);
        connection.run("PRAGMA application_id=" + std::to_string(kApplicationId));
        StoreCatalog::create(connection);
        connection.run("PRAGMA user_version=1");
    }
    return open(file);
}

std::shared_ptr<Store> Store::open(const std::filesystem::path& file) {
    requireStoreFile(file);
    const std::filesystem::path full = std::filesystem::canonical(file);
    OpenStores& stores = openStores();
    const std::lock_guard lock(stores.mutex);
    if (std::shared_ptr<Store> known = stores.byFile[full].lock())
        return known;
    auto state = std::make_unique<State>();
    state->file = full;
    const Connection trial(full, true);
    const std::shared_ptr<Store> store(new Store(std::move(state)));
    stores.byFile[full] = store;
    return store;
}

std::shared_ptr<Store> Store::scratch() {
    static std::atomic<int> number = 0;
    const auto seed = static_cast<unsigned long long>(std::chrono::steady_clock::now().time_since_epoch().count());
    auto state = std::make_unique<State>();
    state->scratch = true;
    state->file =
        std::filesystem::temp_directory_path() / ("merchantry-" + std::to_string(seed) + "-" + std::to_string(++number) + ".store");
    {
        Connection connection(state->file, false);
        connection.run("PRAGMA application_id=" + std::to_string(kApplicationId));
        StoreCatalog::create(connection);
        connection.run("PRAGMA user_version=1");
    }
    return std::shared_ptr<Store>(new Store(std::move(state)));
}

std::unique_ptr<Session> Store::session() {
    std::unique_ptr<Engine> engine;
    {
        const std::lock_guard lock(state_->mutex);
        if (!state_->idle.empty()) {
            engine = std::move(state_->idle.back());
            state_->idle.pop_back();
        }
    }
    if (!engine)
        engine = std::make_unique<Engine>(state_->file, !state_->scratch, state_->shared);
    return std::make_unique<StoreSession>(shared_from_this(), std::move(engine));
}

const std::filesystem::path& Store::file() const {
    return state_->file;
}

void Store::giveBack(std::unique_ptr<Engine> engine) {
    const std::lock_guard lock(state_->mutex);
    state_->idle.push_back(std::move(engine));
}

} // namespace merchantry::db::embedded
