#pragma once

#include "app/db/embedded/session_catalog.h"
#include "app/db/tsql/cell.h"

#include <string_view>

namespace merchantry::db::embedded {

// What the functions of T-SQL that ask for the catalogue answer: OBJECT_ID, COLUMNPROPERTY and their kin. Null for what is not there.
class CatalogFunctions {
public:
    CatalogFunctions(StoreCatalog& store, SessionCatalog& catalog) : store_(store), catalog_(catalog) {}

    tsql::Cell objectId(std::string_view name, std::string_view kind);
    tsql::Cell objectName(std::int64_t id);
    tsql::Cell objectProperty(std::int64_t id, std::string_view property);
    tsql::Cell columnInfo(std::int64_t table, std::string_view column, std::string_view property);
    tsql::Cell columnName(std::int64_t table, std::int64_t number);
    tsql::Cell columnLength(std::string_view table, std::string_view column);
    std::shared_ptr<const tsql::TableDef> table(std::string_view name);

private:
    tsql::Cell constraintId(std::string_view name, std::string_view kind);

    StoreCatalog& store_;
    SessionCatalog& catalog_;
};

// A name as a text has it: dbo.[my table].
tsql::ObjectName objectNameOf(std::string_view text);

} // namespace merchantry::db::embedded
