#pragma once

#include "app/db/session.h"

#include <filesystem>
#include <memory>
#include <string_view>

namespace merchantry::db::embedded {

class Engine;

// A store in one file, and the sessions of this process on it. Sessions are pooled: one that is let go leaves its open connection and its
// compiled statements to the next. Several processes may have the same file open. May be used from several threads; each session from one.
// A session keeps its store alive.
class Store : public std::enable_shared_from_this<Store> {
public:
    // Makes an empty store (no tables but the engine's own) in a new file that only this user may read. Throws DbError Storage when the
    // file exists or cannot be written.
    static std::shared_ptr<Store> create(const std::filesystem::path& file);
    // Opens a store; the same file gives the same store while someone holds it. Throws DbError Storage with a clear sentence when there is
    // no such file, when it is no store, or when it cannot be opened. Which version its tables have is not looked at here.
    static std::shared_ptr<Store> open(const std::filesystem::path& file);
    // An empty store that is gone when its last session is, for tests and trials.
    static std::shared_ptr<Store> scratch();

    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    // A session with everything as new: no transaction, no temporary tables, the usual settings.
    std::unique_ptr<Session> session();
    const std::filesystem::path& file() const;

    // For sessions: gives the engine back.
    void giveBack(std::unique_ptr<Engine> engine);

private:
    struct State;
    explicit Store(std::unique_ptr<State> state);
    static std::shared_ptr<Store> heldOrOpened(const std::filesystem::path& file);
    void putToRest();
    std::unique_ptr<State> state_;
};

} // namespace merchantry::db::embedded

namespace merchantry::db {
using embedded::Store;
} // namespace merchantry::db
