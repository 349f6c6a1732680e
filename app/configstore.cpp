#include "app/configstore.h"

#include "base/platform/platform.h"
#include "base/text.h"

#include <fstream>
#include <sstream>
#include <toml.hpp>

namespace merchantry::app {
namespace {

// What stands under the key; nothing when nothing does. A value of another kind is damage and thrown.
template <class T> T valueAt(const toml::value& table, const char* key) {
    return table.contains(key) ? toml::find<T>(table, key) : T();
}

DbConfig configOf(const toml::value& table) {
    const auto text = [&](const char* key) { return valueAt<std::string>(table, key); };
    return {text("ConfigName"), text("ServerName"), text("RegisterID"), text("Password"), text("InstanceName"), text("IntegratedSecurity")};
}

toml::value tableOf(const DbConfig& config) {
    return toml::table{{"ConfigName", config.ConfigName},     {"ServerName", config.ServerName},
                       {"RegisterID", config.RegisterID},     {"Password", config.Password},
                       {"InstanceName", config.InstanceName}, {"IntegratedSecurity", config.IntegratedSecurity}};
}

} // namespace

void ConfigStore::load() {
    configs_.clear();
    defaultName_.clear();
    problem_.clear();
    if (!std::filesystem::exists(file_))
        return;
    try {
        const toml::value root = toml::parse(file_.string());
        defaultName_ = valueAt<std::string>(root, "Default");
        for (const toml::value& table : valueAt<std::vector<toml::value>>(root, "Configuration"))
            configs_.push_back(configOf(table));
    } catch (const std::exception&) {
        configs_.clear();
        defaultName_.clear();
        problem_ = "The file of database configurations, " + file_.string() +
                   ", cannot be read. It is kept as it is; when a configuration is saved, it is put aside under the ending .damaged.";
    }
}

void ConfigStore::save() {
    std::filesystem::create_directories(file_.parent_path());
    if (!problem_.empty()) {
        std::filesystem::path aside = file_;
        aside += ".damaged";
        std::filesystem::rename(file_, aside);
        problem_.clear();
    }
    toml::array tables;
    for (const DbConfig& config : configs_)
        tables.push_back(tableOf(config));
    std::ostringstream text;
    text << toml::value(toml::table{{"Default", defaultName_}, {"Configuration", tables}});
    platform::replaceFile(file_, text.str(), true);
}

const DbConfig* ConfigStore::find(const std::string& name) const {
    for (const DbConfig& config : configs_)
        if (sameText(config.ConfigName, name))
            return &config;
    return nullptr;
}

void ConfigStore::put(const DbConfig& config) {
    for (DbConfig& known : configs_)
        if (sameText(known.ConfigName, config.ConfigName)) {
            known = config;
            return;
        }
    configs_.push_back(config);
}

void ConfigStore::remove(const std::string& name) {
    std::erase_if(configs_, [&](const DbConfig& config) { return sameText(config.ConfigName, name); });
    if (sameText(defaultName_, name))
        defaultName_.clear();
}

} // namespace merchantry::app
