#pragma once

#include "app/db/embedded/batch_state.h"
#include "app/db/embedded/connection.h"
#include "app/db/embedded/schema_version.h"
#include "app/db/embedded/session_catalog.h"
#include "app/db/embedded/table_builder.h"
#include "app/db/embedded/temporary_tables.h"

namespace merchantry::db::embedded {

// What those who change definitions work on.
struct DefinitionParts {
    Connection& connection;
    StoreCatalog& store;
    TemporaryTables& temporaries;
    SessionCatalog& catalog;
    TableBuilder& builder;
    SchemaVersion& schema;
    BatchState& batch;
};

} // namespace merchantry::db::embedded
