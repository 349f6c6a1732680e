#pragma once

#include "app/db/tsql/parser.h"

namespace merchantry::db::tsql {

// The only statement of a batch, as what it must be.
template <class T> const T& only(const Batch& batch, StatementKind kind) {
    if (batch.statements.size() != 1 || batch.statements[0]->kind != kind)
        throw std::runtime_error("another statement than wanted");
    return static_cast<const T&>(*batch.statements[0]);
}

} // namespace merchantry::db::tsql
