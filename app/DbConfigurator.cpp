#include "app/DbConfigurator.h"

#include "app/frmDbConfig.h"
#include "ui/desk.h"

namespace merchantry::app {

DbConfigurator::DbConfigurator(ui::Desk& desk, std::filesystem::path file, StoreMaker maker)
    : desk_(desk), store_(std::move(file)), maker_(std::move(maker)) {}

void DbConfigurator::EditConfiguration(db::ConnectionPtr& connection, int& confirmed) {
    auto& dialog = desk_.form<frmDbConfig>();
    const auto chosen = dialog.Choose(*this, connection == nullptr);
    confirmed = chosen ? 1 : 0;
    if (chosen)
        current_ = *chosen;
}

DbConfig DbConfigurator::GetDefaultConfiguration() {
    store_.load();
    const DbConfig* config = store_.find(store_.defaultName());
    return config == nullptr || store_.defaultName().empty() ? DbConfig{} : *config;
}

DbConfig DbConfigurator::GetFirstConfiguration() {
    store_.load();
    return store_.all().empty() ? DbConfig{} : store_.all().front();
}

} // namespace merchantry::app
