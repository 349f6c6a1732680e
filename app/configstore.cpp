#include "app/configstore.h"

#include "base/platform/platform.h"
#include "base/textorder.h"
#include "base/toml.h"

namespace merchantry::app {
namespace {

// The text under the key, empty when nothing stands there. A value of another kind is damage and thrown.
std::string textAt(const toml::Value& table, const char* key) {
    const toml::Value* value = table.find(key);
    return value == nullptr ? "" : value->text();
}

DbConfig configOf(const toml::Value& table) {
    const auto text = [&](const char* key) { return textAt(table, key); };
    return {text("ConfigName"), text("ServerName"), text("RegisterID"), text("Password"), text("InstanceName"), text("IntegratedSecurity")};
}

toml::Table tableOf(const DbConfig& config) {
    return {{"ConfigName", config.ConfigName}, {"ServerName", config.ServerName},     {"RegisterID", config.RegisterID},
            {"Password", config.Password},     {"InstanceName", config.InstanceName}, {"IntegratedSecurity", config.IntegratedSecurity}};
}

} // namespace

void ConfigStore::load() {
    configs_.clear();
    defaultName_.clear();
    problem_.clear();
    if (!std::filesystem::exists(file_))
        return;
    try {
        const toml::Value root = toml::parseFile(file_.string());
        defaultName_ = textAt(root, "Default");
        if (const toml::Value* tables = root.find("Configuration"))
            for (const toml::Value& table : tables->array())
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
    toml::Array tables;
    for (const DbConfig& config : configs_)
        tables.emplace_back(tableOf(config));
    platform::replaceFile(file_, toml::format({{"Default", defaultName_}, {"Configuration", tables}}), true);
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
