#pragma once

#include "app/DbConfigurator.h"
#include "ui/play/playhost.h"

#include <filesystem>

namespace merchantry::programs {

// The application for a play, on a store file or on a server. One at a time: it owns the module-level state while it lives.
class StoreHost : public ui::play::PlayHost {
public:
    // The store is the path of a file or a connection string. The configurations are kept in a folder of the host's own, which goes with
    // it; so does a store file that is its copy. A store on a server is never copied.
    StoreHost(const std::string& store, bool ownCopy);
    ~StoreHost() override;

    void start(ui::play::PlayDesk& desk, const ui::play::StartUp& startUp) override;
    ui::Form* formNamed(ui::play::PlayDesk& desk, const std::string& name) override;
    std::vector<std::vector<Value>> query(const std::string& batch) override;
    std::optional<ui::play::LogEntry> newestLogEntry() override;
    std::string storePath() const override { return store_; }
    void setClock(Date now) override { clock_.set(now); }

private:
    std::string store_;      // path of the file, or what a configuration names as the server
    std::string password_;   // of the server
    std::string connection_; // the whole, for the play's own queries
    std::filesystem::path folder_;
    Clock clock_;
};

// Makes store files for the configurator and the console, with the demo goods where they are wanted.
app::StoreMaker storeMaker();

} // namespace merchantry::programs
