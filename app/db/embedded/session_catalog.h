#pragma once

#include "app/db/embedded/rowset.h"
#include "app/db/embedded/store_catalog.h"
#include "app/db/embedded/temporary_tables.h"
#include "app/db/messages.h"

#include <map>
#include <memory>
#include <string>

namespace merchantry::db::embedded {

// The catalogue as one session sees it: what the file holds, its own temporary tables and the catalogue views. Statements are bound
// against it. The parts that it looks into must outlive it.
class SessionCatalog : public tsql::Catalog {
public:
    SessionCatalog(StoreCatalog& store, TemporaryTables& temporaries, RowsetRegistry& rows)
        : store_(store), temporaries_(temporaries), rows_(rows) {}

    std::shared_ptr<const tsql::TableDef> table(const tsql::ObjectName& name) override;
    std::shared_ptr<const tsql::ViewDef> view(const tsql::ObjectName& name) override;
    std::shared_ptr<const tsql::FunctionDef> function(const tsql::ObjectName& name) override;
    bool userType(std::string_view name, SqlType& type, bool& nullable) override { return store_.userType(name, type, nullable); }
    bool identityInsert(const tsql::TableDef& table) override { return identityInsertTable == table.id; }
    bool hasInsteadTrigger(std::int64_t tableOrView, std::string_view event) override;

    // A table of the file or, under a negative id, a temporary one; null when there is none.
    std::shared_ptr<const tsql::TableDef> tableById(std::int64_t id);
    // The same of a table that statements may change; throws DbError Name with that number.
    std::shared_ptr<const tsql::TableDef> requireTable(const tsql::ObjectName& name, Message missing);

    // The type of a declared variable, parameter or column; nullable as its own type says.
    SqlType declaredType(const tsql::TypeName& name, bool* nullable = nullptr);

    // As a new session has it. The temporary tables are not touched.
    void reset();

    // What the session chose: the table whose identity column INSERT may name, the database in use.
    std::int64_t identityInsertTable = 0;
    std::string databaseName = kDatabase;
    // The table or view whose instead-of trigger runs: what it writes there is written.
    std::int64_t inInstead = 0;
    // Set when a name of a temporary table was asked for.
    bool sawTemporary = false;

private:
    std::shared_ptr<const tsql::TableDef> systemTable(const tsql::ObjectName& name);
    bool isOwnDatabase(const tsql::ObjectName& name) const;

    StoreCatalog& store_;
    TemporaryTables& temporaries_;
    RowsetRegistry& rows_;
    std::map<std::string, std::shared_ptr<const tsql::TableDef>> system_;
};

// The catalogue views (sys.objects, INFORMATION_SCHEMA.TABLES, ...): shapes and rows.
struct SystemView {
    const char* name; // "sys.objects", lower case
    std::vector<std::pair<const char*, SqlType>> columns;
    Rowset (*rows)(StoreCatalog& catalog, const std::string& database);
};
const std::vector<SystemView>& systemViews();

} // namespace merchantry::db::embedded
