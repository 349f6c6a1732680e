#pragma once

#include "app/DbConfigurator.h"
#include "ui/play/playhost.h"

#include <filesystem>

namespace merchantry::programs {

// The application for a play, on a store file. One at a time: it owns the module-level state while it lives.
class StoreHost : public ui::play::PlayHost {
public:
    // The configurations are kept in a folder of the host's own, which goes with it; so does a store that is its copy.
    StoreHost(std::filesystem::path store, bool ownCopy);
    ~StoreHost() override;

    void start(ui::play::PlayDesk& desk, const ui::play::StartUp& startUp) override;
    ui::Form* formNamed(ui::play::PlayDesk& desk, const std::string& name) override;
    std::vector<std::vector<Value>> query(const std::string& batch) override;
    std::optional<ui::play::LogEntry> newestLogEntry() override;
    std::string storePath() const override { return store_.string(); }
    void setClock(Date now) override { clock_.set(now); }

private:
    std::filesystem::path store_;
    std::filesystem::path folder_;
    Clock clock_;
};

// Makes store files for the configurator and the console, with the demo goods where they are wanted.
app::StoreMaker storeMaker();

} // namespace merchantry::programs
