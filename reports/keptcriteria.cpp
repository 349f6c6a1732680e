#include "reports/keptcriteria.h"

#include "base/lettercase.h"
#include "base/platform/platform.h"
#include "base/toml.h"
#include "reports/conditions.h"

#include <algorithm>

namespace merchantry::reports {

CriteriaStore::CriteriaStore(std::filesystem::path file) : file_(std::move(file)) {
    if (!std::filesystem::exists(file_))
        return;
    try {
        const toml::Value root = toml::parseFile(file_.string());
        for (const toml::Value& table : root.at("Criteria").array()) {
            KeptCriteria one{table.at("Report").text(), table.at("Name").text(),   table.at("Conditions").texts(),
                             table.at("Shown").texts(), table.at("SortBy").text(), table.at("Ascending").flag()};
            if (one.sql.size() != one.display.size() || one.sql.size() > Criteria::kMost)
                throw std::runtime_error("too many conditions");
            all_.push_back(std::move(one));
        }
    } catch (const std::exception&) {
        throw std::runtime_error("The file of kept criteria, " + file_.string() + ", cannot be read. It stays as it is.");
    }
}

std::vector<KeptCriteria> CriteriaStore::of(const std::string& reportKey) const {
    std::vector<KeptCriteria> found;
    std::copy_if(all_.begin(), all_.end(), std::back_inserter(found), [&](const KeptCriteria& one) { return one.reportKey == reportKey; });
    std::sort(found.begin(), found.end(),
              [](const KeptCriteria& a, const KeptCriteria& b) { return lowerCase(a.name) < lowerCase(b.name); });
    return found;
}

void CriteriaStore::erase(const std::string& reportKey, const std::string& name) {
    std::erase_if(all_, [&](const KeptCriteria& one) { return one.reportKey == reportKey && lowerCase(one.name) == lowerCase(name); });
}

void CriteriaStore::put(const KeptCriteria& criteria) {
    erase(criteria.reportKey, criteria.name);
    all_.push_back(criteria);
    save();
}

void CriteriaStore::remove(const std::string& reportKey, const std::string& name) {
    erase(reportKey, name);
    save();
}

void CriteriaStore::save() const {
    const auto list = [](const std::vector<std::string>& texts) { return toml::Array(texts.begin(), texts.end()); };
    toml::Array tables;
    for (const KeptCriteria& one : all_)
        tables.emplace_back(toml::Table{{"Report", one.reportKey},
                                        {"Name", one.name},
                                        {"Conditions", list(one.sql)},
                                        {"Shown", list(one.display)},
                                        {"SortBy", one.sortBy},
                                        {"Ascending", one.ascending}});
    std::filesystem::create_directories(file_.parent_path());
    platform::replaceFile(file_, toml::format({{"Criteria", tables}}), true);
}

} // namespace merchantry::reports
