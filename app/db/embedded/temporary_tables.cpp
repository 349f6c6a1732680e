#include "app/db/embedded/temporary_tables.h"

#include "base/lettercase.h"

namespace merchantry::db::embedded {

std::string TemporaryTables::keyOf(const std::string& name) const {
    return name.front() == '@' ? lowerCase(name) + "/" + std::to_string(scope) : lowerCase(name);
}

TemporaryTables::TablePtr TemporaryTables::find(const std::string& name) const {
    const auto found = tables_.find(keyOf(name));
    return found == tables_.end() || found->second.empty() ? nullptr : found->second.back();
}

TemporaryTables::TablePtr TemporaryTables::byId(std::int64_t id) const {
    for (const auto& [name, stack] : tables_) {
        for (const TablePtr& table : stack) {
            if (table->id == id)
                return table;
        }
    }
    return nullptr;
}

std::vector<TemporaryTables::TablePtr> TemporaryTables::all() const {
    std::vector<TablePtr> tables;
    for (const auto& [name, stack] : tables_)
        tables.insert(tables.end(), stack.begin(), stack.end());
    return tables;
}

void TemporaryTables::push(TablePtr table) {
    tables_[keyOf(table->name)].push_back(std::move(table));
    ++version_;
}

void TemporaryTables::replace(TablePtr table) {
    tables_[keyOf(table->name)].back() = std::move(table);
    ++version_;
}

void TemporaryTables::pop(const std::string& name) {
    const auto found = tables_.find(keyOf(name));
    if (found == tables_.end() || found->second.empty())
        return;
    found->second.pop_back();
    ++version_;
}

} // namespace merchantry::db::embedded
