#include "app/db/embedded/store.h"

#include "app/db/embedded/engine.h"
#include "app/db/embedded/filehead.h"
#include "app/db/embedded/store_catalog.h"
#include "app/db/embedded/store_session.h"
#include "base/platform/platform.h"

#include <atomic>
#include <map>
#include <mutex>

namespace merchantry::db::embedded {
namespace {

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

// A store with nothing but the engine's own tables. Durable: it is there for good when this returns.
void makeEmpty(const std::filesystem::path& file, bool durable) {
    try {
        platform::createPrivateFile(file);
    } catch (const std::filesystem::filesystem_error& error) {
        throw storageError("The store " + file.string() + " cannot be made: " + error.code().message() + ".");
    }
    Connection connection(file, durable);
    connection.readyToWrite();
    connection.run("PRAGMA application_id=" + std::to_string(kApplicationId));
    StoreCatalog::create(connection);
    connection.run("PRAGMA user_version=1");
    connection.putToRest();
}

} // namespace

struct Store::State {
    std::filesystem::path file;
    bool scratch = false;
    std::shared_ptr<SharedState> shared = std::make_shared<SharedState>();
    std::mutex mutex;
    std::vector<std::unique_ptr<Engine>> idle;
};

Store::Store(std::unique_ptr<State> state) : state_(std::move(state)) {}

Store::~Store() {
    if (!state_->scratch) {
        putToRest();
        return;
    }
    state_->idle.clear();
    std::error_code ignored;
    for (const char* suffix : {"", "-wal", "-shm"})
        std::filesystem::remove(state_->file.string() + suffix, ignored);
}

// The last one of this process leaves the file as the last of all should.
void Store::putToRest() {
    if (state_->idle.empty())
        return;
    state_->idle.erase(state_->idle.begin() + 1, state_->idle.end());
    state_->idle.front()->connection().putToRest();
    state_->idle.clear();
}

std::shared_ptr<Store> Store::create(const std::filesystem::path& file) {
    if (std::filesystem::exists(file))
        throw storageError("The file " + file.string() + " exists already.");
    makeEmpty(file, true);
    return heldOrOpened(file);
}

std::shared_ptr<Store> Store::open(const std::filesystem::path& file) {
    requireStoreFile(file);
    return heldOrOpened(file);
}

std::shared_ptr<Store> Store::heldOrOpened(const std::filesystem::path& file) {
    const std::filesystem::path full = std::filesystem::canonical(file);
    OpenStores& stores = openStores();
    const std::lock_guard lock(stores.mutex);
    if (std::shared_ptr<Store> known = stores.byFile[full].lock())
        return known;
    auto state = std::make_unique<State>();
    state->file = full;
    putForeignLogAside(full);
    state->idle.push_back(std::make_unique<Engine>(full, true, state->shared)); // says at once that the file cannot be used
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
    makeEmpty(state->file, false);
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
