#pragma once

#include "app/db/tsql/catalog.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace merchantry::db::embedded {

// The temporary tables and table variables of a session, by name. A name may be taken again further in: the innermost one is meant.
class TemporaryTables {
public:
    using TablePtr = std::shared_ptr<const tsql::TableDef>;

    // Null when there is none.
    TablePtr find(const std::string& name) const;
    TablePtr byId(std::int64_t id) const;
    std::vector<TablePtr> all() const;
    // An id that no other one has had; negative, as no table of the file has it.
    std::int64_t nextId() { return -(++lastNumber_); }

    void push(TablePtr table);
    // Puts a changed definition in the place of the innermost one. Requires: the name is known.
    void replace(TablePtr table);
    // Forgets the innermost one.
    void pop(const std::string& name);

    // Changes with every change of them: plans that name one are bound anew.
    std::uint64_t version() const { return version_; }

    // The running batch or module, outside of which a table variable is not known.
    std::int64_t scope = 0;

private:
    std::string keyOf(const std::string& name) const;

    std::map<std::string, std::vector<TablePtr>> tables_;
    std::int64_t lastNumber_ = 0;
    std::uint64_t version_ = 1;
};

} // namespace merchantry::db::embedded
