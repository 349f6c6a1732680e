#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace merchantry::reports {

// Conditions that the user kept under a name, for one report.
struct KeptCriteria {
    std::string reportKey;
    std::string name;
    std::vector<std::string> sql;
    std::vector<std::string> display; // as many
    std::string sortBy;               // as the list shows it
    bool ascending = true;
};

// The kept criteria in a file of the user's configuration folder. Nothing is written but by put and remove.
class CriteriaStore {
public:
    // Reads the file if there is one. Throws std::runtime_error with a sentence for the user when it cannot be read; it stays as it is.
    explicit CriteriaStore(std::filesystem::path file);

    // Those of a report, in the order of their names.
    std::vector<KeptCriteria> of(const std::string& reportKey) const;
    // In place of the one of that name, if there is one (case does not matter). Both write the file, and throw as the file system does.
    void put(const KeptCriteria& criteria);
    void remove(const std::string& reportKey, const std::string& name);

private:
    void erase(const std::string& reportKey, const std::string& name);
    void save() const;

    std::filesystem::path file_;
    std::vector<KeptCriteria> all_;
};

} // namespace merchantry::reports
