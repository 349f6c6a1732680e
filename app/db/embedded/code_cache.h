#pragma once

#include "app/db/embedded/code.h"
#include "app/db/embedded/schema_version.h"
#include "app/db/embedded/session_catalog.h"
#include "app/db/embedded/session_state.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace merchantry::db::embedded {

// The parsed batches and modules of a session, with the plans of their statements. Who runs one holds it, so that it lasts as long as it
// runs.
class CodeCache {
public:
    CodeCache(SessionCatalog& catalog, const SchemaVersion& schema, const SessionState& session)
        : catalog_(catalog), schema_(schema), session_(session) {}

    // A text with the parameters as its first variables. Throws DbError Syntax or Name.
    std::shared_ptr<Code> batch(std::string_view text, const std::vector<Parameter>& parameters);
    // A procedure, function or trigger.
    std::shared_ptr<Code> module(const StoredObject& object);

private:
    std::string keyOf(std::string_view text, const std::vector<Parameter>& parameters) const;
    void keep(const std::string& key, const std::shared_ptr<Code>& code);
    std::shared_ptr<Code> parsed(const StoredObject& object);
    void addParameters(Code& code, const std::vector<tsql::ParameterClause>& parameters);
    void addVariables(Code& code, const tsql::Statement& statement);

    SessionCatalog& catalog_;
    const SchemaVersion& schema_;
    const SessionState& session_;
    std::unordered_map<std::string, std::shared_ptr<Code>> batches_;
    std::array<std::size_t, 1024> seen_{}; // hashes of the texts that came lately
    std::unordered_map<std::int64_t, std::shared_ptr<Code>> modules_;
    std::uint64_t reading_ = 0; // of the catalogue that the modules hold for
};

} // namespace merchantry::db::embedded
