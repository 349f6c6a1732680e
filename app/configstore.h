#pragma once

#include "app/DbConfig.h"

#include <filesystem>
#include <string>
#include <vector>

namespace merchantry::app {

// The file in which the known database configurations are kept between runs: TOML in the user's configuration folder, readable by its owner
// only.
class ConfigStore {
public:
    explicit ConfigStore(std::filesystem::path file) : file_(std::move(file)) {}

    // What the file holds. A file that is not there holds nothing; one that cannot be read as configurations holds nothing, is left as it
    // is, and problem() says so.
    void load();
    // Writes the file in one step. A damaged file is first put aside as "….damaged". Throws std::filesystem::filesystem_error.
    void save();

    const std::vector<DbConfig>& all() const { return configs_; }
    const DbConfig* find(const std::string& name) const;
    const std::string& defaultName() const { return defaultName_; }
    void setDefault(std::string name) { defaultName_ = std::move(name); }
    // Adds or replaces by name.
    void put(const DbConfig& config);
    void remove(const std::string& name);
    const std::string& problem() const { return problem_; }

private:
    std::filesystem::path file_;
    std::vector<DbConfig> configs_;
    std::string defaultName_;
    std::string problem_;
};

} // namespace merchantry::app
