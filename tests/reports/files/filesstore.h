#pragma once

#include "app/db/embedded/store.h"
#include "reports/engine/report.h"
#include "tools/registersim/query.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace merchantry::reports {

inline const std::filesystem::path kReportFiles = "reports/files";

// A store of a few months with something in every table that a report reads; made once a run.
db::Store& filesStore();

// The first cell of a select.
inline Value cellOf(db::Session& session, const std::string& select) {
    const auto rows = registersim::query(session, select);
    return rows.empty() ? Value() : rows[0][0];
}

// The parameters that a report wants where nobody chose criteria: an order, a receipt, a transaction that the store has.
ParameterTexts parametersFor(const std::string& file, db::Session& session);

} // namespace merchantry::reports
