#pragma once

#include "app/configstore.h"
#include "app/db/ado/connection.h"

#include <functional>

namespace merchantry::ui {
class Desk;
}

namespace merchantry::app {

// Makes a new store file, with or without demo goods. Bound by the programs; throws std::exception with a sentence for the user.
using StoreMaker =
    std::function<void(const std::filesystem::path& file, bool withDemoGoods, const std::function<void(int percent)>& progress)>;

// Keeps the known database configurations and shows the dialog to edit them. Usable before any database is reachable.
class DbConfigurator {
public:
    DbConfigurator(ui::Desk& desk, std::filesystem::path file, StoreMaker maker);

    // Shows the dialog. `confirmed` becomes other than zero when the user confirmed a choice. May replace the connection.
    void EditConfiguration(db::ConnectionPtr& connection, int& confirmed);
    DbConfig GetCurrentConfiguration() const { return current_; }
    // The one marked as default; all empty when none is.
    DbConfig GetDefaultConfiguration();
    void SetCurrentConfiguration(const DbConfig& config) { current_ = config; }
    // Any stored one; all empty when there is none.
    DbConfig GetFirstConfiguration();

    ConfigStore& store() { return store_; }
    const StoreMaker& maker() const { return maker_; }

private:
    ui::Desk& desk_;
    ConfigStore store_;
    StoreMaker maker_;
    DbConfig current_;
};

} // namespace merchantry::app
